#include "VintraModule/FileMode.h"

#include "VintraModule/VintraModuleExtract.h"
#include "VintraModule/VintraModuleInter.h"

namespace vintra {

namespace {

constexpr FileMode kFileModes[] = {
    {Log_Mode_Simple,
     [](const LogConfigRecEx*, LogHandleRec* handle, sint8*, sint8* path) {
       return SetVintraFileName(handle, path);
     },
     [](LogHandleRec* handle, sint8*, sint8* path) { return SimpleMode(handle, path); }},
};

// Null for a mode without a row.
const FileMode* FindRow(LogMode mode) {
  for (const FileMode& row : kFileModes) {
    if (row.mode == mode) return &row;
  }
  return nullptr;
}

}  // namespace

bool OffersFileMode(LogMode mode) { return FindRow(mode) != nullptr; }

const FileMode& FindFileMode(LogMode mode) {
  const FileMode* const row = FindRow(mode);
  return row == nullptr ? kFileModes[0] : *row;
}

}  // namespace vintra
