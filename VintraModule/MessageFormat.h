// A message's text from its format and arguments, for the conversions that messages are mostly made of.
#ifndef VINTRA_VINTRAMODULE_MESSAGEFORMAT_H
#define VINTRA_VINTRAMODULE_MESSAGEFORMAT_H

#include <cstdarg>
#include <cstddef>

#include "Common/BaseTypes.h"

namespace vintra {

constexpr int kNotCommon = -1;

// Formats as vsnprintf does, byte for byte and with the same result, but faster. It knows
//
//   %%  %p                                       without anything between
//   %c  %s                                       with -, a width, and for %s a precision
//   %f  %lf  %d  %i  %u  %x  %X  %o              with -, 0, +, a width and a precision
//   hh  h  l  ll  z  j  t                        as the sizes of integers
//
// with widths and precisions of up to 9999, and of up to 99 for decimals. Where a format holds something
// else, or an argument or the thread's settings ask for more, it returns kNotCommon with anything in text:
// for a null pointer, a NUL for %c, a decimal point that is not ".", another rounding than to the nearest.
// The whole message is then vsnprintf's. What it does format holds no NUL.
//
// size is at least 1. args is not used up.
int FormatCommon(sint8* text, std::size_t size, const sint8* format, va_list args)
    __attribute__((format(printf, 3, 0)));

// vsnprintf itself, for everything else. args is not used up.
int FormatAny(sint8* text, std::size_t size, const sint8* format, va_list args)
    __attribute__((format(printf, 3, 0)));

}  // namespace vintra

#endif
