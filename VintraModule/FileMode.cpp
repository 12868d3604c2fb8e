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
    {Log_Mode_Rollback, SetRollbackLogFileName, RollbackMode},
    {Log_Mode_Date, SetDateLogFileName, DateMode},
};

}  // namespace

const FileMode& FindFileMode(LogMode mode) {
  for (const FileMode& row : kFileModes) {
    if (row.mode == mode) return row;
  }
  return kFileModes[0];
}

}  // namespace vintra
