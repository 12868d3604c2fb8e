#include "VintraModule/StreamBuffer.h"

#include <algorithm>
#include <cstring>

#include "Common/Handles.h"

#if defined(__GLIBC__) && !defined(__UCLIBC__)

namespace vintra {

namespace {

std::size_t PendingSize(const FILE* stream) {
  return static_cast<std::size_t>(stream->_IO_write_ptr - stream->_IO_write_base);
}

}  // namespace

bool WritePending(FILE* stream) {
  if (PendingSize(stream) == 0) return true;
  // A thread that was cancelled within a write would leave bytes pending that the system has taken.
  pthread_testcancel();
  const CancellationPause pause;
  while (const std::size_t size = PendingSize(stream)) {
    const ssize_t count = WriteSome(fileno(stream), {stream->_IO_write_base, size});
    if (count < 0) return false;
    const std::size_t rest = size - static_cast<std::size_t>(count);
    std::memmove(stream->_IO_write_base, stream->_IO_write_base + count, rest);
    stream->_IO_write_ptr = stream->_IO_write_base + rest;
  }
  return true;
}

void DropPending(FILE* stream, std::size_t size) {
  stream->_IO_write_ptr -= std::min(size, PendingSize(stream));
}

}  // namespace vintra

#endif
