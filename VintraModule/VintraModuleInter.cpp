#include "VintraModule/VintraModuleInter.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include "Common/Copy.h"
#include "Common/Handles.h"
#include "Common/Text.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/FileMode.h"
#include "VintraModule/LogFile.h"
#include "VintraModule/LogNames.h"
#include "VintraModule/MessageFormat.h"
#include "VintraModule/Retention.h"
#include "VintraModule/Scrambling.h"
#include "VintraModule/StreamBuffer.h"

const LogHandleRec null_log_handle_rec = {};

namespace {

using vintra::HeapText;

constexpr std::size_t kMessageSize = 1024;  // of the first attempt, which nearly always fits

// The longest header: stamp and label, each with room for a block, source file, the ten digits of its
// line, and "[] " around both.
constexpr std::size_t kHeaderSize = vintra::kStampSize + vintra::kLabelSize + vintra::kTextSize + 10 + 6;

// What puts a header together takes its end, and returns the new one.

// Copies whole blocks, of which the rest is overwritten or left out later: for the stamp and the label, which
// have room behind them, that costs half of an exact copy.
sint8* AppendBlocks(sint8* end, std::string_view piece) {
  for (std::size_t at = 0; at < piece.size(); at += vintra::kCopyBlock) {
    std::memcpy(end + at, piece.data() + at, vintra::kCopyBlock);
  }
  return end + piece.size();
}

sint8* Append(sint8* end, std::string_view piece) {
  std::memcpy(end, piece.data(), piece.size());
  return end + piece.size();
}

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

// FormatAny, which knows the host's errno for "%m".
int Print(const HostErrno& host_errno, sint8* text, std::size_t size, const sint8* format, va_list args)
    __attribute__((format(printf, 4, 0)));

int Print(const HostErrno& host_errno, sint8* text, std::size_t size, const sint8* format, va_list args) {
  host_errno.Restore();
  return vintra::FormatAny(text, size, format, args);
}

// Formats a message that FormatCommon has left, with length saying why, or found too long for the buffer that
// every message starts with. The buffer grows to any length. Returns the length of the message up to its
// first NUL, where the record ends; or -1 when there is no memory, or no buffer could hold the message.
std::ptrdiff_t FormatAnyMessage(HeapText& text, int length, const HostErrno& host_errno, const sint8* format,
                                va_list args) __attribute__((format(printf, 4, 0), noinline));

std::ptrdiff_t FormatAnyMessage(HeapText& text, int length, const HostErrno& host_errno, const sint8* format,
                                va_list args) {
  std::size_t size = kMessageSize;
  if (length == vintra::kNotCommon) length = Print(host_errno, text.get(), size, format, args);
  while (length < 0 || static_cast<std::size_t>(length) >= size) {
    if (length < 0 && (errno == EILSEQ || errno == EOVERFLOW || size > INT_MAX)) return -1;
    size = length < 0 ? size * 2 : static_cast<std::size_t>(length) + 1;
    auto* const grown = static_cast<sint8*>(std::realloc(text.get(), size));
    if (grown == nullptr) return -1;
    static_cast<void>(text.release());
    text.reset(grown);
    length = vintra::FormatCommon(text.get(), size, format, args);
    if (length == vintra::kNotCommon) length = Print(host_errno, text.get(), size, format, args);
  }
  return static_cast<std::ptrdiff_t>(std::strlen(text.get()));
}

struct SourcePosition {
  sint8 file[vintra::kTextSize];
  uint32 line;
};

SourcePosition LoadSource(const LogHandleRec& handle) {
  SourcePosition source{};
  source.line = __atomic_load_n(&handle.src_line, __ATOMIC_RELAXED);
  for (std::size_t at = 0; at + 1 < sizeof source.file; ++at) {
    source.file[at] = __atomic_load_n(&handle.src_file[at], __ATOMIC_RELAXED);
    if (source.file[at] == '\0') break;
  }
  return source;
}

// Appends "[%s] " and "[%d] " with the stored position, as far as there is one and the line shows it.
sint8* AppendSource(sint8* end, const LogHandleRec& handle) {
  if (!handle.log_src_file && !handle.log_src_line) return end;
  const SourcePosition source = LoadSource(handle);
  if (handle.log_src_file && source.file[0] != '\0') {
    end = Append(Append(Append(end, "["), source.file), "] ");
  }
  if (handle.log_src_line && source.line != 0) {
    end = Append(std::to_chars(Append(end, "["), end + 11, source.line).ptr, "] ");
  }
  return end;
}

// Puts the pieces of a line's header together in their fixed order. Reports and returns null when the stamp
// could not be formatted.
sint8* AppendHeader(sint8* end, const LogHandleRec& handle, LogLevel level) {
  const vintra::Stamp& stamp = handle.stamp;
  if (!stamp.is_complete) {
    REPORT_ERROR("logMsgWriteFile strftime failed(errorcode:%d).", 0);
    return nullptr;
  }
  if (stamp.shows_time && stamp.millisecond > vintra::kLastMillisecond) {  // no clock says so
    REPORT_ERROR("logMsgWriteFile strftime sprintf(errorcode:%d).", -1);
    return nullptr;
  }
  end = AppendBlocks(end, stamp.View(handle.log_new_line && handle.file_size != 0));
  end = AppendBlocks(end, handle.labels[level - 1].View());
  return AppendSource(end, handle);
}

// Does what fwrite_unlocked does for one item, without a call where the stream's buffer has room. The item
// may be in that room already.
inline std::size_t PutItem(std::span<const sint8> item, FILE* stream) {
  sint8* const room = vintra::FindRoom(stream, item.size());
  if (room == nullptr) return fwrite_unlocked(item.data(), item.size(), 1, stream);
  if (item.data() != room) vintra::CopyShort(room, item.data(), item.size());
  vintra::TakeRoom(stream, item.size());
  return 1;
}

// Counts bytes of a record. Saturates: a file of 4 GiB is full, not empty.
inline void CountBytes(LogHandleRec& handle, std::size_t count) {
  const std::uint64_t size = std::uint64_t{handle.file_size} + count;
  handle.file_size = static_cast<uint32>(std::min<std::uint64_t>(size, UINT32_MAX));
}

// Writes one piece of a record as one item and counts it. Returns the number of items written. The stream is
// locked.
inline std::size_t WritePiece(LogHandleRec& handle, FILE* file_out, std::span<sint8> piece) {
  if (handle.log_encrypt == 1) vintra::Scramble(piece);
  const std::size_t items = PutItem(piece, file_out);
  if (items == 1) CountBytes(handle, piece.size());
  return items;
}

// Writes header and message to file_out, counts them and flushes when enough bytes have gathered, or when a
// roll has started the file: the unsigned difference to the kept flush_size is then huge, but not where
// flush_size was 0 or the record is longer. A record that cannot be flushed is refused and taken back, but
// stays counted; those before it, which were accepted, go on waiting. The stamp is the handle's. The lock is
// held.
sint32 logMsgWriteFile(LogHandleRec* log_handle, FILE* file_out, LogLevel log_level, std::span<sint8> str) {
  if (!log_handle->stamp.is_valid) return vintra::kClockUnreadable;
  const vintra::StreamLock lock(file_out);
  // The header comes to be in its place where there is room for all: to copy what has just been put together
  // in pieces makes a processor wait.
  sint8 own_room[kHeaderSize];
  sint8* const room = vintra::FindRoom(file_out, kHeaderSize + str.size());
  sint8* const header = room != nullptr ? room : own_room;
  const sint8* const end = AppendHeader(header, *log_handle, log_level);
  if (end == nullptr) return vintra::kHeaderFailed;
  const std::span<sint8> header_text(header, static_cast<std::size_t>(end - header));
  const std::size_t size = header_text.size() + str.size();
  if (room == nullptr && !vintra::MakeRoom(file_out, log_handle->held, size)) {
    CountBytes(*log_handle, size);
    return vintra::ReportNotFlushed(*log_handle);
  }

  if (const std::size_t items = WritePiece(*log_handle, file_out, header_text); items != 1) {
    REPORT_ERROR("logMsgWriteFile fwrite failed(errorcode:%d).", static_cast<int>(items));
    return vintra::kWriteFailed;
  }
  if (!str.empty()) {
    if (const std::size_t items = WritePiece(*log_handle, file_out, str); items != 1) {
      REPORT_ERROR("logMsgWriteFile vfprintf failed(errorcode:%d).", static_cast<int>(items));
      return vintra::kWriteFailed;
    }
  }

  const uint32 unflushed = log_handle->file_size - log_handle->flush_size;
  if (log_handle->file_flush_size > unflushed && !log_handle->first_flush_due) return vintra::kSuccess;
  const sint32 code = vintra::FlushLogFile(*log_handle);
  if (code != 0) vintra::DropPending(file_out, log_handle->held, size);
  return code;
}

// Leaves the current file for the next one, which is started empty. Does not where the current one holds
// accepted records that are worth waiting for: it stays the current one, and the result is 7.
sint32 MoveOn(LogHandleRec& handle, const sint8* name, sint8* path) {
  if (!vintra::HandOverRecords(handle, name, path)) return vintra::kWriteFailed;
  vintra::EndLogFile(handle);
  if (vintra::OpenLogFile(handle, name, vintra::OpenMode::kEmpty, path)) return vintra::kSuccess;
  REPORT_ERROR("LogMsg open file(%s) for write failed.", path);
  return vintra::kNoFile;
}

// The rolls stand apart from the checks, which run before every record and would pay for a roll's stack.

[[gnu::noinline]] sint32 RollFile(LogHandleRec& handle, sint8* path) {
  const vintra::CancellationPause pause;
  return MoveOn(handle, handle.log_file_name, path);
}

[[gnu::noinline]] sint32 RollRing(LogHandleRec& handle, sint8* name, sint8* path) {
  const vintra::CancellationPause pause;
  const uint32 number = vintra::RingNumber(handle.cur_log_file_ID + 1, handle.max_backup_index);
  vintra::RollbackName(handle, number, name);
  const sint32 code = MoveOn(handle, name, path);
  if (code != vintra::kWriteFailed) handle.cur_log_file_ID = number;
  return code;
}

// Removes expired files, which may make the room that the current file waits for. A log that goes on waiting
// does not list its folder for each record that it refuses: ages change with the day, and days begin at
// quarters of an hour, wherever people live.
void RemoveBeforeRoll(LogHandleRec& handle) {
  constexpr std::time_t kQuarter = 900;
  const std::time_t quarter = handle.stamp.second / kQuarter + 1;  // not 0 on a machine that boots in 1970
  if (std::exchange(handle.futile_pass, quarter) != quarter) vintra::RemoveExpiredFiles(handle);
}

[[gnu::noinline]] sint32 RollDay(LogHandleRec& handle, uint32 day, sint8* name, sint8* path) {
  const vintra::CancellationPause pause;
  RemoveBeforeRoll(handle);
  const uint32 old_day = std::exchange(handle.cur_date_ID, day);
  const uint32 number =
      day == old_day ? vintra::RingNumber(handle.cur_log_file_ID + 1, handle.max_backup_index) : 0;
  vintra::DateName(handle, number, name);
  const sint32 code = MoveOn(handle, name, path);
  if (code == vintra::kWriteFailed) {
    handle.cur_date_ID = old_day;
  } else {
    handle.cur_log_file_ID = number;
    handle.futile_pass = 0;
  }
  return code;
}

}  // namespace

namespace vintra {

sint32 FormatAndLog(LogHandleRec& handle, LogLevel level, const sint8* format, va_list args) {
  const HostErrno host_errno;
  HeapText text(static_cast<sint8*>(std::malloc(kMessageSize)));
  if (!text) return kNoMemory;
  std::ptrdiff_t length = FormatCommon(text.get(), kMessageSize, format, args);
  if (length == kNotCommon || length >= std::ptrdiff_t{kMessageSize}) {
    length = FormatAnyMessage(text, static_cast<int>(length), host_errno, format, args);
    if (length < 0) return kNoMemory;
  }
  return LogMsg(&handle, level, {text.get(), static_cast<std::size_t>(length)});
}

void StoreSource(LogHandleRec& handle, const sint8* source_file_name, sint32 source_file_line) {
  const PathParts source = SplitPathParts(source_file_name);
  std::size_t at = 0;
  for (const std::string_view part : {source.name, source.ext}) {
    for (const sint8 character : part.substr(0, sizeof handle.src_file - 1 - at)) {
      __atomic_store_n(&handle.src_file[at++], character, __ATOMIC_RELAXED);
    }
  }
  __atomic_store_n(&handle.src_file[at], '\0', __ATOMIC_RELAXED);
  __atomic_store_n(&handle.src_line, static_cast<uint32>(source_file_line), __ATOMIC_RELAXED);
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
  return LogMsg(handle, record_level, {msg, std::strlen(msg)});
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

sint32 LogMsg(LogHandleRec* log_handle, LogLevel log_level, std::span<sint8> msg) {
  sint8 file_name[vintra::kPathSize];
  sint8 path[vintra::kPathSize];
  file_name[0] = path[0] = '\0';

  const vintra::MutexLock lock(log_handle->Critical_Section);
  if (log_handle->file_out == nullptr) return vintra::kInvalidArgument;
  vintra::ReadClock(log_handle->stamp);
  if (const sint32 code = log_handle->file_mode->rollover(log_handle, file_name, path); code != 0) {
    // What a log refuses while it waits for room counts as well, so that it does not wait for ever.
    if (code == vintra::kWriteFailed) CountBytes(*log_handle, 1 + msg.size());
    return code;
  }
  return logMsgWriteFile(log_handle, log_handle->file_out, log_level, msg);
}

sint32 SimpleMode(LogHandleRec* log_handle, sint8* log_file_name) {
  if (log_handle->file_size < log_handle->max_file_size) return vintra::kSuccess;
  return RollFile(*log_handle, log_file_name);
}

sint32 RollbackMode(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name) {
  // Unlike in the simple mode, a record that lands exactly on the limit is followed by one more.
  if (log_handle->file_size <= log_handle->max_file_size) return vintra::kSuccess;
  return RollRing(*log_handle, file_name, log_file_name);
}

sint32 DateMode(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name) {
  const uint32 day = log_handle->stamp.day;
  if (day == 0) return vintra::kClockUnreadable;
  const bool same_day = day == log_handle->cur_date_ID;
  if (same_day && log_handle->file_size <= log_handle->max_file_size) return vintra::kSuccess;
  return RollDay(*log_handle, day, file_name, log_file_name);
}
