#include "VintraModule/Scrambling.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "Common/Handles.h"
#include "VintraModule/LogHandle.h"

namespace vintra {

namespace {

constexpr sint8 kMask = 0x3C;
constexpr std::size_t kBlockSize = std::size_t{128} * 1024;

// Two places without a byte in common, which the compiler may therefore work on in wide steps. Those of a
// cache line at a time cost the same wherever the loop happens to lie in memory.
void ScrambleApart(sint8* __restrict dest, const sint8* __restrict source, std::size_t length) {
  constexpr std::size_t kStep = 64;
  std::size_t at = 0;
  for (; length - at >= kStep; at += kStep) {
    for (std::size_t byte = at; byte < at + kStep; ++byte)
      dest[byte] = static_cast<sint8>(source[byte] ^ kMask);
  }
  for (; at < length; ++at) dest[at] = static_cast<sint8>(source[at] ^ kMask);
}

// Opens new_path for writing from empty, unless it is the file that other tells of. That shows only after the
// opening, so emptying waits until then. Returns a descriptor that holds nothing on failure.
FileDescriptor OpenEmptied(const sint8* new_path, const struct stat& other) {
  const StandardPlaces places;
  FileDescriptor file(open(new_path, O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0) return FileDescriptor(-1);
  if (status.st_dev == other.st_dev && status.st_ino == other.st_ino) return FileDescriptor(-1);
  if (S_ISREG(status.st_mode) && ftruncate(file.get(), 0) != 0) return FileDescriptor(-1);
  return file;
}

}  // namespace

void Scramble(std::span<sint8> bytes) {
  for (sint8& byte : bytes) byte ^= kMask;
}

void ScrambleInto(sint8* dest, const sint8* source, std::size_t length) {
  const auto dest_address = reinterpret_cast<std::uintptr_t>(dest);
  const auto source_address = reinterpret_cast<std::uintptr_t>(source);
  const std::size_t distance =
      std::max(dest_address, source_address) - std::min(dest_address, source_address);
  if (distance == 0) return Scramble({dest, length});
  // Blocks as long as the distance do not overlap, so within one the order makes no difference.
  for (std::size_t end = length; end > 0;) {
    const std::size_t size = std::min(end, distance);
    end -= size;
    ScrambleApart(dest + end, source + end, size);
  }
}

sint32 ScrambleFile(const sint8* old_path, const sint8* new_path, int& write_error) {
  const CancellationPause pause;
  const FileDescriptor old_file(open(old_path, O_RDONLY | O_CLOEXEC));
  struct stat old_status {};
  if (!old_file || fstat(old_file.get(), &old_status) != 0 || S_ISDIR(old_status.st_mode)) return kNoFile;
  const HeapText block(static_cast<sint8*>(std::malloc(kBlockSize)));
  if (!block) return kNoFile;
  FileDescriptor new_file = OpenEmptied(new_path, old_status);
  if (!new_file) return kNoFile;

  ssize_t count = 0;
  while ((count = old_file.Read(block.get(), kBlockSize)) > 0) {
    const std::span<sint8> bytes(block.get(), static_cast<std::size_t>(count));
    Scramble(bytes);
    if (new_file.WriteAll({bytes.data(), bytes.size()}) != bytes.size()) {
      write_error = errno;
      return kSuccess;
    }
  }
  if (count < 0) return kNoFile;
  if (close(new_file.release()) != 0) write_error = errno;
  return kSuccess;
}

}  // namespace vintra
