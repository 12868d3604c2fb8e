#include "VintraModule/VintraLinuxFunc.h"

#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "Common/Handles.h"
#include "Common/Text.h"
#include "VintraModule/ErrLog.h"

namespace {

using vintra::FilePtr;

constexpr std::size_t kHostNameSize = 256;  // of a name of 255 characters
constexpr std::size_t kLineSize = 256;
constexpr int kProcessorNameLine = 5;
constexpr int kLinesPerCore = 19;

// "CPU " 4 + a line 255 + "CPU: " 5 + number 11 + " cores" 6, or a line 255 + "Hard Disk Size: " 16 + number
// 20 + "MB. " 4, and the terminator.
constexpr std::size_t kPieceSize = 320;

void DescribeProcessor(sint8 (&text)[kPieceSize]) {
  const FilePtr file(std::fopen("/proc/cpuinfo", "re"));
  if (!file) return;
  sint8 line[kLineSize];
  sint8 name[kLineSize] = {};
  int lines = 0;
  while (std::fgets(line, sizeof line, file.get()) != nullptr) {
    if (++lines == kProcessorNameLine) static_cast<void>(vintra::CopyText(name, line));
  }
  const sint8* const label = lines < kProcessorNameLine ? "" : "CPU ";
  std::snprintf(text, sizeof text, "%s%sCPU: %d cores", label, name, lines / kLinesPerCore);
}

void DescribeMemory(sint8 (&text)[kPieceSize]) {
  sint8 line[kLineSize] = {};
  const FilePtr file(std::fopen("/proc/meminfo", "re"));
  if (file && std::fgets(line, sizeof line, file.get()) == nullptr) line[0] = '\0';
  struct statfs disk {};
  if (statfs("/", &disk) != 0) {
    static_cast<void>(vintra::CopyText(text, line));
    return;
  }
  const auto bytes = static_cast<unsigned long long>(disk.f_bsize) * disk.f_blocks;
  std::snprintf(text, sizeof text, "%sHard Disk Size: %lluMB. ", line, bytes >> 20);
}

}  // namespace

void vintra::FreeFileList::operator()(FileList* list) const {
  while (list != nullptr) delete std::exchange(list, list->next);
}

sint32 getFileSize(LogHandleRec* log_handle) {
  struct stat status {};
  if (fstat(fileno(log_handle->file_out), &status) != 0) {
    const int error = errno;
    REPORT_ERROR("errno = %d", error);
    return -1;
  }
  return static_cast<sint32>(std::min<off_t>(status.st_size, INT32_MAX));
}

FileList* ListFileName(const sint8* FilePath, const LogHandleRec* /*log_handle*/) {
  vintra::FileListPtr list(new (std::nothrow) FileList{});
  const vintra::DirPtr folder(opendir(FilePath));
  FileList* last = list.get();
  while (folder && last != nullptr) {
    const dirent* const entry = readdir(folder.get());
    if (entry == nullptr) break;
    last->next = new (std::nothrow) FileList{};
    last = last->next;
    if (last != nullptr) static_cast<void>(vintra::CopyText(last->file_name, entry->d_name));
  }
  return list.release();
}

sint32 SystemInfo(LOGHANDLE log_handle, LogHandleRec* log_handleRec, sint8* buf) {
  if (log_handle == null_log_handle) return vintra::kInvalidArgument;
  sint8 host[kHostNameSize] = {};
  utsname system{};
  if (log_handleRec->sys_os && (gethostname(host, sizeof host) != 0 || uname(&system) != 0)) {
    return vintra::kNoSystemInfo;
  }
  host[sizeof host - 1] = '\0';
  sint8 processor[kPieceSize] = {};
  sint8 memory[kPieceSize] = {};
  if (log_handleRec->sys_cpu) DescribeProcessor(processor);
  if (log_handleRec->sys_memory) DescribeMemory(memory);
  if (!log_handleRec->sys_os) {
    std::snprintf(buf, vintra::kBannerSize, "\n\n%s\n%s", processor, memory);
    return vintra::kSuccess;
  }

  // Labels and line feeds are some 70 bytes, so a host name that gives way leaves room for all the rest.
  static_assert(70 + 4 * sizeof system.sysname + sizeof processor + sizeof memory < vintra::kBannerSize);
  const auto write = [&](int longest_host) {
    return std::snprintf(buf, vintra::kBannerSize,
                         "\nSystem name: %s, Host name: %.*s, Hardware: %s, Release: %s, Version: %s\n%s\n%s",
                         system.sysname, longest_host, host, system.machine, system.release, system.version,
                         processor, memory);
  };
  const int length = write(static_cast<int>(vintra::kBannerSize - 1) - write(0));
  return length < 0 ? vintra::kNoSystemInfo : vintra::kSuccess;
}

sint8* PidAndTidInfo(LogHandleRec* log_handleRec, sint8* buf) {
  sint8 process[16] = {};  // two blanks, a number of 11 and the terminator
  sint8 thread[16] = {};
  if (log_handleRec->log_pid) std::snprintf(process, sizeof process, " %d ", getpid());
  if (log_handleRec->log_tid) std::snprintf(thread, sizeof thread, " %d ", gettid());
  std::snprintf(buf, vintra::kBannerSize, "[%s%s]", process, thread);
  return buf;
}
