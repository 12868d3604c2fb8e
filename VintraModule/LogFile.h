// The current log file of a handle: opening, closing and flushing, the same for all modes. A mode decides
// when and which name.
#ifndef VINTRA_VINTRAMODULE_LOGFILE_H
#define VINTRA_VINTRAMODULE_LOGFILE_H

#include "VintraModule/LogHandle.h"

namespace vintra {

enum class OpenMode {
  kAppend,  // keep what is there; created if missing
  kEmpty,   // start over
};

// Opens <log_file_path><name><log_file_ext> as the current file. path (260 bytes) receives the full name; one
// that does not fit is never opened, and path then holds its beginning. Returns false with file_out null on
// failure. The caller reports: each operation owns its message.
bool OpenLogFile(LogHandleRec& handle, const sint8* name, OpenMode mode, sint8* path);

// Ends the current file in favour of the next one, which starts at size 0. flush_size stays, and the next
// file's first record is due for a flush.
void EndLogFile(LogHandleRec& handle);

// Closes the current file, if any, and starts the file at path over.
bool RestartLogFile(LogHandleRec& handle, const sint8* path);

// Closes the current file, if any. Records that cannot be stored any more are reported.
void CloseLogFile(LogHandleRec& handle);

// Writes what the current file still holds back, before it is left for the next one. Where the disk has no
// room for it, room is made of the next file, which is to be emptied in any case. path is scratch of 260
// bytes. Reports and returns false when there still is no room, as long as that is worth waiting for.
bool HandOverRecords(LogHandleRec& handle, const sint8* next_name, sint8* path);

// Flushes the open file and notes how far. Reports and returns 7 on failure, with flush_size unchanged; what
// could not be written is kept and tried again with the next flush.
sint32 FlushLogFile(LogHandleRec& handle);

// Reports that the open file could not be flushed. Returns 7.
sint32 ReportNotFlushed(const LogHandleRec& handle);

// What identifies a stream in a message.
int StreamNumber(FILE* stream);

}  // namespace vintra

#endif
