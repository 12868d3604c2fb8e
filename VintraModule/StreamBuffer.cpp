#include "VintraModule/StreamBuffer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "Common/Handles.h"

#if !VINTRA_STREAM_POINTERS
#include <stdio_ext.h>
#endif

namespace vintra {

#if VINTRA_STREAM_POINTERS

namespace {

bool IsInReach(const sint8*) { return true; }

sint8* Held(FILE* stream, sint8*) { return stream->_IO_write_base; }

std::size_t HeldSize(const FILE* stream) {
  return static_cast<std::size_t>(stream->_IO_write_ptr - stream->_IO_write_base);
}

// Leaves size bytes of what the stream holds, from begin on.
void KeepHeld(FILE* stream, sint8*, std::size_t begin, std::size_t size) {
  if (begin != 0 && size != 0) std::memmove(stream->_IO_write_base, stream->_IO_write_base + begin, size);
  stream->_IO_write_ptr = stream->_IO_write_base + size;
}

bool HasRoom(FILE* stream, std::size_t size) { return FindRoom(stream, size) != nullptr; }

}  // namespace

sint8* LendBuffer(FILE* stream, sint8* buffer, std::size_t size) {
  // Without one, the stream's own does.
  if (buffer != nullptr) setvbuf(stream, buffer, _IOFBF, size);
  return nullptr;
}

#else

namespace {

// A stream that was lent no buffer holds nothing, or holds it where nobody can reach it.
bool IsInReach(const sint8* held) { return held != nullptr; }

sint8* Held(FILE*, sint8* held) { return held; }

std::size_t HeldSize(FILE* stream) { return __fpending(stream); }

// Leaves size bytes of what the stream holds, from begin on: it drops all and gets them once more, each in
// its old place or in front of it.
void KeepHeld(FILE* stream, const sint8* held, std::size_t begin, std::size_t size) {
  const int error = errno;  // of the write that has left them
  __fpurge(stream);
  for (std::size_t at = begin; at < begin + size; ++at) putc_unlocked(held[at], stream);
  errno = error;
}

bool HasRoom(FILE* stream, std::size_t size) { return HeldSize(stream) + size <= __fbufsize(stream); }

// Where in its new buffer a stream puts its first byte: a C library may keep some in front for itself. A byte
// that is put in and taken back shows it. Null if it does not.
sint8* FirstPlace(FILE* stream, sint8* buffer) {
  constexpr std::size_t kFront = 64;
  constexpr sint8 kMark = 1;
  std::memset(buffer, 0, kFront);
  putc_unlocked(kMark, stream);
  auto* const place = static_cast<sint8*>(std::memchr(buffer, kMark, kFront));
  __fpurge(stream);
  return place;
}

}  // namespace

sint8* LendBuffer(FILE* stream, sint8* buffer, std::size_t size) {
  const StreamLock lock(stream);  // or another thread could flush the mark
  const bool is_lent = buffer != nullptr && setvbuf(stream, buffer, _IOFBF, size) == 0;
  sint8* const held = is_lent ? FirstPlace(stream, buffer) : nullptr;
  // What is held back out of reach could get lost.
  if (held == nullptr) setvbuf(stream, nullptr, _IONBF, 0);
  return held;
}

#endif

bool WritePending(FILE* stream, sint8* held) {
  if (!IsInReach(held)) return std::fflush(stream) == 0;
  const std::size_t size = HeldSize(stream);
  if (size == 0) return true;
  // A thread that was cancelled within a write would leave bytes pending that the system has taken.
  pthread_testcancel();
  const CancellationPause pause;
  std::size_t written = 0;
  while (written < size) {
    const ssize_t count = WriteSome(fileno(stream), {Held(stream, held) + written, size - written});
    if (count < 0) break;
    written += static_cast<std::size_t>(count);
  }
  KeepHeld(stream, held, written, size - written);
  return written == size;
}

void DropPending(FILE* stream, sint8* held, std::size_t size) {
  if (!IsInReach(held)) return;
  const std::size_t all = HeldSize(stream);
  KeepHeld(stream, held, 0, all - std::min(size, all));
}

bool MakeRoom(FILE* stream, sint8* held, std::size_t size) {
  return HasRoom(stream, size) || WritePending(stream, held);
}

}  // namespace vintra
