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

// A stream's own buffer, where it can be reached: by the pointers that the C library's own putc_unlocked
// works on where it is expanded in its caller. The stream is locked.
//
//   FindRoom      the place of the next size bytes, or null where there is no room for them
//   TakeRoom      makes that many bytes there a part of the stream
//   WritePending  hands all that the stream holds to the system. On failure the stream goes on holding what
//                 the system has not taken, where fflush would drop it
//   DropPending   takes back the last size bytes, or as many of them as the stream still holds
//   MakeRoom      sees to it that no more than what comes next is lost when the stream cannot write that:
//   hands
//                 over what the stream holds where there is no room for size bytes more. False where it
//                 cannot
#if defined(__GLIBC__) && !defined(__UCLIBC__)  // which also calls itself the former
inline sint8* FindRoom(FILE* stream, std::size_t size) {
  // Below 0 where the stream has no buffer or ends it with each line.
  const std::ptrdiff_t room = stream->_IO_write_end - stream->_IO_write_ptr;
  return static_cast<std::ptrdiff_t>(size) <= room ? stream->_IO_write_ptr : nullptr;
}
inline void TakeRoom(FILE* stream, std::size_t size) { stream->_IO_write_ptr += size; }
bool WritePending(FILE* stream);
void DropPending(FILE* stream, std::size_t size);
inline bool MakeRoom(FILE* stream, std::size_t size) {
  return FindRoom(stream, size) != nullptr || WritePending(stream);
}
#else
inline sint8* FindRoom(FILE*, std::size_t) { return nullptr; }
inline void TakeRoom(FILE*, std::size_t) {}
inline bool WritePending(FILE* stream) { return std::fflush(stream) == 0; }
inline void DropPending(FILE*, std::size_t) {}
inline bool MakeRoom(FILE*, std::size_t) { return true; }
#endif

}  // namespace vintra

#endif
