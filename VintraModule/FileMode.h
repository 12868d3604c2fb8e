// The file modes, a row each. Only this unit knows them all.
#ifndef VINTRA_VINTRAMODULE_FILEMODE_H
#define VINTRA_VINTRAMODULE_FILEMODE_H

#include "VintraModule/LogHandle.h"

namespace vintra {

struct FileMode {
  LogMode mode;
  // Opens the mode's current file at start-up, while nobody else knows the handle, and sets the mode's own
  // fields. file_name is scratch of 256 bytes; log_file_name, of 260, receives the full path.
  sint32 (*start)(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                  sint8* log_file_name);
  // Runs before every record, under the lock and with a file open, which it may replace. Both texts are
  // scratch of 260 bytes. The record is written only after 0.
  sint32 (*rollover)(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name);
};

// The mode's row; an unknown mode behaves as the simple mode.
const FileMode& FindFileMode(LogMode mode);

}  // namespace vintra

#endif
