#include "VintraModule/LogFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "Common/Handles.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/ErrLog.h"
#include "VintraModule/StreamBuffer.h"

namespace vintra {

namespace {

constexpr std::size_t kRecordRoom = 2048;  // a header and a message of the common length
constexpr std::size_t kSmallestBuffer = 4096;
constexpr std::size_t kLargestThreshold = 65536;  // beyond it the stream writes when its buffer is full

// With room for the threshold and the record that passes it, a flush is one system call.
std::size_t StreamBufferSize(uint32 file_flush_size) {
  return std::max(kSmallestBuffer, std::min<std::size_t>(file_flush_size, kLargestThreshold) + kRecordRoom);
}

// A stream ignores a size without a buffer, so the handle lends it one, the same for all its files.
void PrepareStream(LogHandleRec& handle) {
  const std::size_t size = StreamBufferSize(handle.file_flush_size);
  if (handle.stream_buffer == nullptr) handle.stream_buffer = static_cast<sint8*>(std::malloc(size));
  handle.held = LendBuffer(handle.file_out, handle.stream_buffer, size);
}

// Empties in append mode, for which fopen has no mode of its own.
FILE* OpenEmptied(const sint8* path) {
  FileDescriptor file(open(path, O_WRONLY | O_TRUNC | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  FILE* const stream = file ? fdopen(file.get(), "ab") : nullptr;
  if (stream != nullptr) static_cast<void>(file.release());
  return stream;
}

// Always in append mode: after a truncation by somebody else the next record stands at the new end and leaves
// no hole.
bool OpenPath(LogHandleRec& handle, const sint8* path, OpenMode mode) {
  const StandardPlaces places;
  handle.file_out = mode == OpenMode::kAppend ? std::fopen(path, "ab+e") : OpenEmptied(path);
  if (handle.file_out == nullptr) return false;
  PrepareStream(handle);
  return true;
}

}  // namespace

bool OpenLogFile(LogHandleRec& handle, const sint8* name, OpenMode mode, sint8* path) {
  handle.file_out = nullptr;
  return JoinPath({path, kPathSize}, handle.log_file_path, name, handle.log_file_ext) &&
         OpenPath(handle, path, mode);
}

void EndLogFile(LogHandleRec& handle) {
  CloseLogFile(handle);
  handle.file_size = 0;
  handle.first_flush_due = true;
}

bool RestartLogFile(LogHandleRec& handle, const sint8* path) {
  CloseLogFile(handle);
  return OpenPath(handle, path, OpenMode::kEmpty);
}

void CloseLogFile(LogHandleRec& handle) {
  if (handle.file_out == nullptr) return;
  const int number = StreamNumber(handle.file_out);
  const int result = fclose(handle.file_out);
  handle.file_out = nullptr;
  if (result != 0) REPORT_ERROR("LogMsg fclose(%d) = %d failed", number, result);
}

bool HandOverRecords(LogHandleRec& handle, const sint8* next_name, sint8* path) {
  const StreamLock lock(handle.file_out);
  if (WritePending(handle.file_out, handle.held)) return true;
  // Room may come back. Where something else is wrong the next file may do better, and so it may when as much
  // has been refused here as a file holds: closing this one then reports.
  const bool may_get_room = errno == ENOSPC || errno == EDQUOT;
  if (!may_get_room || handle.file_size / 2 >= handle.max_file_size) return true;
  if (JoinPath({path, kPathSize}, handle.log_file_path, next_name, handle.log_file_ext)) {
    const StandardPlaces places;
    const FileDescriptor next(open(path, O_WRONLY | O_TRUNC | O_CLOEXEC));
    if (next && WritePending(handle.file_out, handle.held)) return true;
  }
  static_cast<void>(ReportNotFlushed(handle));
  return false;
}

sint32 ReportNotFlushed(const LogHandleRec& handle) {
  REPORT_ERROR("LogMsg fflush(%d) = %d failed", StreamNumber(handle.file_out), EOF);
  return kWriteFailed;
}

sint32 FlushLogFile(LogHandleRec& handle) {
  const StreamLock lock(handle.file_out);
  if (!WritePending(handle.file_out, handle.held)) return ReportNotFlushed(handle);
  handle.flush_size = handle.file_size;
  handle.first_flush_due = false;
  return kSuccess;
}

int StreamNumber(FILE* stream) { return fileno(stream); }

}  // namespace vintra
