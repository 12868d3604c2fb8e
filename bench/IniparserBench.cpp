// iniparser. It drops comments, and truncates the file that it writes.
extern "C" {
#include <iniparser/iniparser.h>
}

#include <cstdio>
#include <memory>

#include "bench/IniPeer.h"

namespace {

const std::string kEntry = std::string(kLastSection) + ":" + kLastKey;

struct DictionaryCloser {
  void operator()(dictionary* file) const { iniparser_freedict(file); }
};
using DictionaryPtr = std::unique_ptr<dictionary, DictionaryCloser>;

bool Lookup(const char* path, std::string& value) {
  const DictionaryPtr file(iniparser_load(path));
  if (!file) return false;
  value = iniparser_getstring(file.get(), kEntry.c_str(), "");
  return true;
}

bool Rewrite(const char* path, const char* number) {
  const DictionaryPtr file(iniparser_load(path));
  if (!file || iniparser_set(file.get(), kEntry.c_str(), number) != 0) return false;
  std::FILE* const stream = std::fopen(path, "we");
  if (stream == nullptr) return false;
  iniparser_dump_ini(file.get(), stream);
  return std::fclose(stream) == 0;
}

const bool registered = RegisterIniPeer("iniparser", Lookup, Rewrite);

}  // namespace
