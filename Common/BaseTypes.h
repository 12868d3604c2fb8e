/*
 * The types and compiler marks that every public header of Vintra shares.
 *
 * C99 and C++11 or later. Hosts need not include this header themselves.
 */
#ifndef VINTRA_COMMON_BASETYPES_H
#define VINTRA_COMMON_BASETYPES_H

#include <stdint.h>

/* The version of these headers, as MAJOR.MINOR.PATCH. Libraries of one MAJOR run programs that were built
 * with an equal or lower MINOR. */
#define VINTRA_VERSION_MAJOR 1
#define VINTRA_VERSION_MINOR 0
#define VINTRA_VERSION_PATCH 0

/* One byte of text. Plain char, so that string literals and char buffers pass without a cast. */
typedef char sint8;
typedef int32_t sint32;
typedef uint32_t uint32;
/* 1 is true, 0 is false. */
typedef sint32 BOOL;

/* Marks what the library exports; everything else stays hidden. */
#define VINTRA_API __attribute__((visibility("default")))

/* Lets the compiler check a printf-style call: position of the format and of its first argument, from 1. */
#define VINTRA_PRINTF(format_at, first_at) __attribute__((format(printf, format_at, first_at)))

/* Gives an enumeration that crosses the interface 32 bits in C++ too, so that a value outside its list can be
 * passed and is refused instead of being undefined. */
#ifdef __cplusplus
#define VINTRA_ENUM_BASE : uint32
#else
#define VINTRA_ENUM_BASE
#endif

#endif
