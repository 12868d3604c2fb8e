// inih, which reads a file into callbacks and writes none.
#include <ini.h>

#include <cstring>

#include "bench/IniPeer.h"

namespace {

int Take(void* found, const char* section, const char* name, const char* value) {
  if (std::strcmp(section, kLastSection) == 0 && std::strcmp(name, kLastKey) == 0) {
    *static_cast<std::string*>(found) = value;
  }
  return 1;
}

bool Lookup(const char* path, std::string& value) { return ini_parse(path, Take, &value) == 0; }

const bool registered = RegisterIniPeer("inih", Lookup, nullptr);

}  // namespace
