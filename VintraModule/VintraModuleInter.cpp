#include "VintraModule/VintraModuleInter.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string_view>

#include "Common/Handles.h"
#include "Common/Text.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/FileMode.h"
#include "VintraModule/LogFile.h"
#include "VintraModule/LogNames.h"
#include "VintraModule/Retention.h"
#include "VintraModule/Scrambling.h"

const LogHandleRec null_log_handle_rec = {};

namespace {

using vintra::HeapText;

constexpr std::size_t kMessageSize = 1024;  // of the first attempt, which nearly always fits

// CR LF 2, date 63, time 63, ".%03u " 5, tag 10, two names of 63, line number 10, blanks and brackets 8: 287.
constexpr std::size_t kHeaderSize = 1024;

class HeaderText {
 public:
  // Appends piece whole, or returns false and appends nothing.
  [[nodiscard]] bool Append(std::string_view piece) {
    if (piece.size() > text_.size() - length_) return false;
    if (!piece.empty()) std::memcpy(text_.data() + length_, piece.data(), piece.size());
    length_ += piece.size();
    return true;
  }

  std::span<sint8> Bytes() { return {text_.data(), length_}; }

 private:
  std::array<sint8, kHeaderSize> text_;  // only what is appended is ever read
  std::size_t length_ = 0;
};

// The errno of the host, which a record neither changes nor loses sight of.
class HostErrno {
 public:
  HostErrno() = default;
  HostErrno(const HostErrno&) = delete;
  HostErrno& operator=(const HostErrno&) = delete;
  ~HostErrno() { Restore(); }
  void Restore() const { errno = value_; }

 private:
  const int value_ = errno;
};

// Formats a whole message of any length. Returns null without memory, or when no buffer could hold the
// message.
HeapText FormatMessage(const HostErrno& host_errno, const sint8* format, va_list args)
    __attribute__((format(printf, 2, 0)));

HeapText FormatMessage(const HostErrno& host_errno, const sint8* format, va_list args) {
  std::size_t size = kMessageSize;
  HeapText text(static_cast<sint8*>(std::malloc(size)));
  while (text) {
    va_list attempt;  // one formatting uses a va_list up
    va_copy(attempt, args);
    host_errno.Restore();  // for "%m"
    const int length = std::vsnprintf(text.get(), size, format, attempt);
    va_end(attempt);
    if (length >= 0 && static_cast<std::size_t>(length) < size) break;
    if (length < 0 && (errno == EILSEQ || errno == EOVERFLOW || size > INT_MAX)) return nullptr;
    size = length < 0 ? size * 2 : static_cast<std::size_t>(length) + 1;
    auto* const grown = static_cast<sint8*>(std::realloc(text.get(), size));
    if (grown == nullptr) return nullptr;
    static_cast<void>(text.release());
    text.reset(grown);
  }
  return text;
}

struct SourcePosition {
  sint8 file[vintra::kTextSize];
  uint32 line;
};

SourcePosition LoadSource(LogHandleRec& handle) {
  SourcePosition source{};
  source.line = std::atomic_ref(handle.src_line).load(std::memory_order_relaxed);
  for (std::size_t at = 0; at + 1 < sizeof source.file; ++at) {
    source.file[at] = std::atomic_ref(handle.src_file[at]).load(std::memory_order_relaxed);
    if (source.file[at] == '\0') break;
  }
  return source;
}

// Appends "[%s] " and "[%d] " with the stored position, as far as there is one and the line shows it.
bool AppendSource(LogHandleRec& handle, HeaderText& header) {
  if (!handle.log_src_file && !handle.log_src_line) return true;
  const SourcePosition source = LoadSource(handle);
  const bool shows_file = handle.log_src_file && source.file[0] != '\0';
  if (shows_file && !(header.Append("[") && header.Append(source.file) && header.Append("] "))) return false;
  if (!handle.log_src_line || source.line == 0) return true;
  sint8 digits[10];  // of the largest uint32
  const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), source.line);
  return header.Append("[") && header.Append({digits, end.ptr}) && header.Append("] ");
}

// Appends the pieces of a line's header in their fixed order. Reports and returns 10 when one cannot be
// formatted.
sint32 AppendHeader(LogHandleRec& handle, std::string_view tag, HeaderText& header) {
  const vintra::ClockReading& now = handle.now;
  const vintra::SecondText& second = handle.second_text;
  if ((handle.log_date && second.date_length == 0) || (handle.log_time && second.time_length == 0)) {
    REPORT_ERROR("logMsgWriteFile strftime failed(errorcode:%d).", 0);
    return vintra::kHeaderFailed;
  }
  if (handle.log_time && now.millisecond > 999) {  // no clock says so, and the field has three digits
    REPORT_ERROR("logMsgWriteFile strftime sprintf(errorcode:%d).", -1);
    return vintra::kHeaderFailed;
  }
  const auto digit = [&now](uint32 place) { return static_cast<sint8>('0' + now.millisecond / place % 10); };
  const sint8 milliseconds[] = {'.', digit(100), digit(10), digit(1), ' '};

  const bool complete = (!handle.log_new_line || handle.file_size == 0 || header.Append("\r\n")) &&
                        header.Append(second.View(handle.log_date != 0, handle.log_time != 0)) &&
                        (!handle.log_time || header.Append({milliseconds, sizeof milliseconds})) &&
                        (!handle.log_level_info || header.Append(tag)) &&
                        header.Append(vintra::FieldText(handle.log_module_name)) && header.Append("  ") &&
                        AppendSource(handle, header);
  if (complete) return vintra::kSuccess;
  REPORT_ERROR("logMsgWriteFile sprintf failed(errorcode:%d).", -1);
  return vintra::kHeaderFailed;
}

// Writes one piece of a record as one item and counts it. Returns the number of items written. The stream
// locks itself: a host that calls fflush(nullptr) reaches it without the handle's mutex.
std::size_t WritePiece(LogHandleRec& handle, FILE* file_out, std::span<sint8> piece) {
  if (handle.log_encrypt == 1) vintra::Scramble(piece);
  const std::size_t items = std::fwrite(piece.data(), piece.size(), 1, file_out);
  if (items == 1) {
    // Saturates: a file of 4 GiB is full, not empty.
    const std::size_t room = UINT32_MAX - handle.file_size;
    handle.file_size += static_cast<uint32>(std::min(piece.size(), room));
  }
  return items;
}

// Opens the next file, emptied. The one before it has been ended.
sint32 OpenNextFile(LogHandleRec& handle, const sint8* name, sint8* path) {
  if (vintra::OpenLogFile(handle, name, vintra::OpenMode::kEmpty, path)) return vintra::kSuccess;
  REPORT_ERROR("LogMsg open file(%s) for write failed.", path);
  return vintra::kNoFile;
}

}  // namespace

namespace vintra {

sint32 FormatAndLog(LOGHANDLE log_handle, const LevelRow& row, const sint8* format, va_list args) {
  const LogHandleRec* const handle = LiveHandle(log_handle);
  if (format == nullptr || handle == nullptr) return kInvalidArgument;
  if (handle->log_level > row.level) return kSuccess;
  const HostErrno host_errno;
  const HeapText message = FormatMessage(host_errno, format, args);
  if (!message) return kNoMemory;
  return LogRecord(log_handle, row.word, format, message.get());
}

void StoreSource(LogHandleRec& handle, const sint8* source_file_name, sint32 source_file_line) {
  const PathParts source = SplitPathParts(source_file_name);
  std::size_t at = 0;
  for (const std::string_view part : {source.name, source.ext}) {
    for (const sint8 character : part.substr(0, sizeof handle.src_file - 1 - at)) {
      std::atomic_ref(handle.src_file[at++]).store(character, std::memory_order_relaxed);
    }
  }
  std::atomic_ref(handle.src_file[at]).store('\0', std::memory_order_relaxed);
  std::atomic_ref(handle.src_line).store(static_cast<uint32>(source_file_line), std::memory_order_relaxed);
}

}  // namespace vintra

sint32 LogRecord(LOGHANDLE log_handle, const sint8* level, const sint8* format, sint8* msg) {
  LogHandleRec* const handle = vintra::LiveHandle(log_handle);
  if (level == nullptr || format == nullptr || msg == nullptr || handle == nullptr)
    return vintra::kInvalidArgument;
  sint8 tag[vintra::kTagSize];
  LogLevel record_level{};
  GetLogLevel(level, tag, record_level);
  if (handle->log_level > record_level) return vintra::kSuccess;
  return LogMsg(handle, tag, msg);
}

void GetLogLevel(const sint8* level, sint8* str, LogLevel& log_level) {
  log_level = Log_Level_Disable;
  *str = '\0';
  const std::string_view word = level;
  for (const vintra::LevelRow& row : vintra::kLevels) {
    if (row.word != word) continue;
    log_level = row.level;
    std::memcpy(str, row.tag.data(), row.tag.size());
    str[row.tag.size()] = '\0';
    return;
  }
}

sint32 LogMsg(LogHandleRec* log_handle, const sint8* log_level, sint8* msg) {
  sint8 file_name[vintra::kPathSize];
  sint8 path[vintra::kPathSize];
  file_name[0] = path[0] = '\0';

  const vintra::MutexLock lock(log_handle->Critical_Section);
  if (log_handle->file_out == nullptr) return vintra::kInvalidArgument;
  log_handle->now = vintra::ReadClock(log_handle->second_text);
  const vintra::FileMode& mode = vintra::FindFileMode(log_handle->log_mode);
  if (const sint32 code = mode.rollover(log_handle, file_name, path); code != 0) return code;
  const sint32 code = logMsgWriteFile(log_handle, log_handle->file_out, log_level, msg);
  if (code != 0 || !log_handle->first_flush_due) return code;
  // The arithmetic with the kept flush_size mostly sees to the first record of a rolled file, but not where
  // flush_size was 0 or the record is longer.
  return vintra::FlushLogFile(*log_handle);
}

sint32 logMsgWriteFile(LogHandleRec* log_handle, FILE* file_out, const sint8* log_level, sint8* str) {
  if (!log_handle->now.valid) return vintra::kClockUnreadable;
  HeaderText header;
  if (const sint32 code = AppendHeader(*log_handle, log_level, header); code != 0) return code;

  if (const std::size_t items = WritePiece(*log_handle, file_out, header.Bytes()); items != 1) {
    REPORT_ERROR("logMsgWriteFile fwrite failed(errorcode:%d).", static_cast<int>(items));
    return vintra::kWriteFailed;
  }
  if (const std::size_t length = std::strlen(str); length != 0) {
    if (const std::size_t items = WritePiece(*log_handle, file_out, {str, length}); items != 1) {
      REPORT_ERROR("logMsgWriteFile vfprintf failed(errorcode:%d).", static_cast<int>(items));
      return vintra::kWriteFailed;
    }
  }

  // Unsigned: behind a rollover the difference to the kept flush_size is huge.
  const uint32 unflushed = log_handle->file_size - log_handle->flush_size;
  if (log_handle->file_flush_size > unflushed) return vintra::kSuccess;
  return vintra::FlushLogFile(*log_handle);
}

sint32 SimpleMode(LogHandleRec* log_handle, sint8* log_file_name) {
  if (log_handle->file_size < log_handle->max_file_size) return vintra::kSuccess;
  const vintra::CancellationPause pause;
  vintra::EndLogFile(*log_handle);
  return OpenNextFile(*log_handle, log_handle->log_file_name, log_file_name);
}

sint32 RollbackMode(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name) {
  // Unlike in the simple mode, a record that lands exactly on the limit is followed by one more.
  if (log_handle->file_size <= log_handle->max_file_size) return vintra::kSuccess;
  const vintra::CancellationPause pause;
  vintra::EndLogFile(*log_handle);
  log_handle->cur_log_file_ID =
      vintra::RingNumber(log_handle->cur_log_file_ID + 1, log_handle->max_backup_index);
  vintra::RollbackName(*log_handle, log_handle->cur_log_file_ID, file_name);
  return OpenNextFile(*log_handle, file_name, log_file_name);
}

sint32 DateMode(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name) {
  const uint32 day = log_handle->second_text.day;
  if (day == 0) return vintra::kClockUnreadable;
  const bool same_day = day == log_handle->cur_date_ID;
  if (same_day && log_handle->file_size <= log_handle->max_file_size) return vintra::kSuccess;
  const vintra::CancellationPause pause;
  vintra::EndLogFile(*log_handle);
  vintra::RemoveExpiredFiles(*log_handle);
  log_handle->cur_log_file_ID =
      same_day ? vintra::RingNumber(log_handle->cur_log_file_ID + 1, log_handle->max_backup_index) : 0;
  log_handle->cur_date_ID = day;
  vintra::DateName(*log_handle, log_handle->cur_log_file_ID, file_name);
  return OpenNextFile(*log_handle, file_name, log_file_name);
}
