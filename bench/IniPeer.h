// What finding and rewriting one key of an INI file of 10,000 keys in 100 sections costs.
//
// The lookup is of the last key, so that the whole file is read. A rewrite loads the file, sets the last key
// and saves it. A peer is two functions, either of which may be null: Lookup puts the key's value into value,
// Rewrite gives the key a number. Both return whether that went well.
#ifndef VINTRA_BENCH_INIPEER_H
#define VINTRA_BENCH_INIPEER_H

#include <string>

inline const char* const kLastSection = "section_99";
inline const char* const kLastKey = "key_99";

bool RegisterIniPeer(const char* name, bool (*lookup)(const char* path, std::string& value),
                     bool (*rewrite)(const char* path, const char* number));

#endif
