// What a stream holds back until it is flushed.
#ifndef VINTRA_VINTRAMODULE_STREAMBUFFER_H
#define VINTRA_VINTRAMODULE_STREAMBUFFER_H

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

#include <cstddef>
#include <cstdio>

#include "Common/BaseTypes.h"

namespace vintra {

// Holds a stream while its buffer is worked on. A host's thread that calls fflush(nullptr) reaches the stream
// without the handle's mutex; without threads nobody does.
class StreamLock {
 public:
  explicit StreamLock(FILE* stream) : stream_(HasThreads() ? stream : nullptr) {
    if (stream_ != nullptr) flockfile(stream_);
  }
  StreamLock(const StreamLock&) = delete;
  StreamLock& operator=(const StreamLock&) = delete;
  ~StreamLock() {
    if (stream_ != nullptr) funlockfile(stream_);
  }

 private:
  static bool HasThreads() {
#if __has_include(<sys/single_threaded.h>)
    return !__libc_single_threaded;
#else
    return true;
#endif
  }

  FILE* const stream_;
};

// Lends a stream that was just opened a buffer of at least 64 bytes, which has to outlive it, or null where
// there is no memory. Returns what the functions below need to know as `held`.
sint8* LendBuffer(FILE* stream, sint8* buffer, std::size_t size);

// Hands all that the stream holds to the system. On failure it goes on holding what the system has not taken,
// where fflush would drop it. From here on the stream is locked by the caller.
bool WritePending(FILE* stream, sint8* held);

// Takes back the last size bytes, or as many of them as the stream still holds.
void DropPending(FILE* stream, sint8* held, std::size_t size);

// Hands over what the stream holds unless there is room for size bytes more: fwrite, when it cannot write,
// would drop all of it. Returns false where the system does not take it.
bool MakeRoom(FILE* stream, sint8* held, std::size_t size);

// A stream's own pointers, where they can be reached: those that the C library's own putc_unlocked works on
// where it is expanded in its caller. VINTRA_ANY_C_LIBRARY does without them also there.
#if defined(__GLIBC__) && !defined(__UCLIBC__) && !defined(VINTRA_ANY_C_LIBRARY)  // uClibc claims to be glibc
#define VINTRA_STREAM_POINTERS 1

// The place of the next size bytes, or null where there is no room for them.
inline sint8* FindRoom(FILE* stream, std::size_t size) {
  // Below 0 where the stream has no buffer or ends it with each line.
  const std::ptrdiff_t room = stream->_IO_write_end - stream->_IO_write_ptr;
  return static_cast<std::ptrdiff_t>(size) <= room ? stream->_IO_write_ptr : nullptr;
}

// Makes size bytes in that place a part of the stream.
inline void TakeRoom(FILE* stream, std::size_t size) { stream->_IO_write_ptr += size; }

#else
#define VINTRA_STREAM_POINTERS 0
inline sint8* FindRoom(FILE*, std::size_t) { return nullptr; }
inline void TakeRoom(FILE*, std::size_t) {}
#endif

}  // namespace vintra

#endif
