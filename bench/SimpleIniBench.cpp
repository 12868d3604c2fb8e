// SimpleIni. It keeps comments, and truncates the file that it writes.
#define SI_NO_CONVERSION  // texts stay as they are
#include <SimpleIni.h>

#include "bench/IniPeer.h"

namespace {

bool Lookup(const char* path, std::string& value) {
  CSimpleIniA file;
  if (file.LoadFile(path) < 0) return false;
  value = file.GetValue(kLastSection, kLastKey, "");
  return true;
}

bool Rewrite(const char* path, const char* number) {
  CSimpleIniA file;
  return file.LoadFile(path) >= 0 && file.SetValue(kLastSection, kLastKey, number) >= 0 &&
         file.SaveFile(path, false) >= 0;
}

const bool registered = RegisterIniPeer("SimpleIni", Lookup, Rewrite);

}  // namespace
