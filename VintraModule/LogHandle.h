// The state of one handle, and the names of the result codes.
#ifndef VINTRA_VINTRAMODULE_LOGHANDLE_H
#define VINTRA_VINTRAMODULE_LOGHANDLE_H

#include <pthread.h>

#include <cstdint>
#include <cstdio>
#include <string_view>

#include "VintraModule/LogClock.h"
#include "VintraModule/VintraModule.h"

namespace vintra {

constexpr std::size_t kPathSize = VINTRA_PATH_SIZE;
constexpr std::size_t kTextSize = VINTRA_TEXT_SIZE;
constexpr std::size_t kFileNameSize = 256;  // of a file name that a mode composes, or of a folder's entry
constexpr uint32 kLiveMark = 0xF0F0;

enum ResultCode : sint32 {
  kSuccess = 0,
  kInvalidArgument = 1,   // also a record for a handle without an open file
  kNoMemory = 2,          // also a message that no buffer can hold
  kNoFolder = 4,          // the log folder could not be made
  kNoFile = 5,            // a log file could not be opened or emptied, or its size not read
  kWriteFailed = 7,       // writing or flushing failed
  kFolderTooLong = 9,     // the library's folder with the name's relative folder
  kBadConfiguration = 9,  // what LOG_MODULE_INIT says where the common start-up says kInvalidArgument
  kHeaderFailed = 10,     // a header field could not be formatted
  kClockUnreadable = 12,
  kNoSystemInfo = 13,  // the host name or the system identification could not be read
};

struct FileMode;

constexpr std::size_t kTagSize = 32;     // of a tag, of which the longest has ten characters
constexpr std::size_t kLabelSize = 120;  // of tag, module name and two blanks, with a block behind

// What every record of a level has behind its stamp: the tag and the module's name with its two blanks.
struct LineLabel {
  std::size_t length;
  sint8 text[kLabelSize];

  std::string_view View() const { return {text, length}; }
};

static_assert(kLabelSize >= kTagSize + kTextSize + kCopyBlock);

}  // namespace vintra

// The fields up to log_encrypt keep their names and their order, since debuggers and scripts read them in the
// memory of a process or in its core. Start-up fills the record before anybody else knows it; from then on
// the groups below say who writes.
struct LogHandleRec {
  // Start-up only; instance_effective also by the destruction.
  uint32 instance_effective;  // kLiveMark while the handle is live
  LogMode log_mode;
  LogLevel log_level;

  // Under Critical_Section.
  FILE* file_out;  // null: no file is open
  pthread_mutex_t Critical_Section;
  uint32 cur_date_ID;
  uint32 cur_log_file_ID;
  uint32 file_size;   // bytes in the current file
  uint32 flush_size;  // file_size at the last flush

  // Start-up only.
  uint32 max_file_size;
  uint32 max_backup_index;
  sint8 log_file_path[VINTRA_PATH_SIZE];  // ends in '/'
  sint8 log_file_name[VINTRA_TEXT_SIZE];
  sint8 log_file_ext[VINTRA_TEXT_SIZE];

  // SourceInfo, without the lock: read and written as atomics only, the name byte by byte, whose last one
  // stays 0.
  uint32 src_line;
  sint8 src_file[VINTRA_TEXT_SIZE];

  // Start-up only: switches, 0 or 1, and what a line and the flush policy need.
  uint32 log_date;
  uint32 log_time;
  uint32 log_level_info;
  uint32 log_src_file;
  uint32 log_src_line;
  uint32 log_new_line;
  uint32 log_swith;  // empty the file at start-up
  uint32 log_time_span;
  uint32 file_flush_size;
  uint32 sys_none;
  uint32 sys_os;
  uint32 sys_cpu;
  uint32 sys_memory;
  uint32 log_pid;
  uint32 log_tid;
  uint32 log_none;
  sint8 log_module_name[VINTRA_TEXT_SIZE];
  uint32 log_encrypt;

  // The library's own, free to change. Start-up only.
  vintra::LineLabel labels[Log_Level_Disable];  // of level 1, 2 and so on, the last one for a word that is no
                                                // level; those below log_level stay empty
  const vintra::FileMode* file_mode;            // null: the handle opens no file

  // Under Critical_Section.
  vintra::Stamp stamp;      // one for a record: what decides its file is also what it is stamped with
  sint8* stream_buffer;     // lent to file_out; null where there was no memory for it
  sint8* held;              // what LendBuffer has returned for file_out
  std::time_t futile_pass;  // the quarter of an hour of a retention pass that did not make the room that the
                            // log waits for; 0: it does not wait
  bool first_flush_due;     // a roll has started the file, and nothing of it has been flushed yet
};

// All zero. Start-up copies it, so that every field it does not set is 0 or empty.
extern const LogHandleRec null_log_handle_rec;

namespace vintra {

// The record behind a handle, or null when the handle is not live.
inline LogHandleRec* LiveHandle(LOGHANDLE log_handle) {
  const auto address = static_cast<std::intptr_t>(log_handle);
  auto* const handle =
      reinterpret_cast<LogHandleRec*>(address);  // NOLINT(performance-no-int-to-ptr): by contract
  return handle != nullptr && handle->instance_effective == kLiveMark ? handle : nullptr;
}

}  // namespace vintra

#endif
