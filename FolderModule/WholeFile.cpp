// Whole files in one call.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>

#include "Common/Handles.h"
#include "FolderModule/FolderModule.h"

namespace {

constexpr std::size_t kModeSize = 64;  // of the caller's mode, an 'e' and the terminator

// Reads until the end of the file or until size bytes are there, and returns their number. When reading fails
// that is what came before, and errno says why; otherwise errno stays as it was.
std::size_t ReadUpTo(const vintra::FileDescriptor& file, char* bytes, std::size_t size) {
  const int host_errno = errno;
  std::size_t count = 0;
  while (count < size) {
    const ssize_t result = file.Read(bytes + count, size - count);
    if (result < 0) return count;
    if (result == 0) break;
    count += static_cast<std::size_t>(result);
  }
  errno = host_errno;
  return count;
}

}  // namespace

int CustomWriteFile(const char* filename, const char* mode, const char* msg, int length) {
  if (filename == nullptr || mode == nullptr || length < 0 || (msg == nullptr && length > 0)) return 0;
  const vintra::CancellationPause pause;
  // The 'e', which keeps the file from programs that another thread starts, stands where every mode may have
  // it.
  char own_mode[kModeSize];
  const int size = std::snprintf(own_mode, sizeof own_mode, "%.1se%s", mode, *mode == '\0' ? "" : mode + 1);
  if (size < 0 || static_cast<std::size_t>(size) >= sizeof own_mode) return 0;
  const vintra::StandardPlaces places;
  const vintra::FilePtr file(std::fopen(filename, own_mode));
  if (!file || length == 0) return 0;
  // Without a buffer the write itself meets a full disk, and not the closing, which could not report it.
  static_cast<void>(setvbuf(file.get(), nullptr, _IONBF, 0));
  return std::fwrite(msg, static_cast<std::size_t>(length), 1, file.get()) == 1 ? 1 : 0;
}

int CustomReadFile(const char* filename, char* msg, int length, int* realLen) {
  if (filename == nullptr || realLen == nullptr) return 0;
  const vintra::CancellationPause pause;
  const vintra::FileDescriptor file(open(filename, O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || S_ISDIR(status.st_mode)) return 0;
  if (msg == nullptr || status.st_size > length) {
    *realLen = static_cast<int>(std::min<off_t>(status.st_size, INT_MAX));
    return -1;
  }
  const std::size_t count = ReadUpTo(file, msg, static_cast<std::size_t>(length));
  msg[count] = '\0';
  *realLen = static_cast<int>(count);
  return 1;
}
