// One small owner for each kind of resource: what is acquired is guarded on the next line.
#ifndef VINTRA_COMMON_HANDLES_H
#define VINTRA_COMMON_HANDLES_H

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace vintra {

struct FreeHeap {
  void operator()(void* block) const { std::free(block); }
};

// Text in a block of malloc, which unlike new can be grown in place and reports failure by a null pointer.
using HeapText = std::unique_ptr<char, FreeHeap>;

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

// A stream that is read: whoever writes one looks at what closing it says.
using FilePtr = std::unique_ptr<std::FILE, CloseStream>;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

using DirPtr = std::unique_ptr<DIR, CloseFolder>;

// Writes some of the bytes, of which there is one at least, whatever signals come: all of them unless the
// disk is full. Returns their number, or -1 with errno when not even one could be written.
inline ssize_t WriteSome(int descriptor, std::string_view bytes) {
  ssize_t count = 0;
  do count = write(descriptor, bytes.data(), bytes.size());
  while (count < 0 && errno == EINTR);
  if (count != 0) return count;
  errno = EIO;  // the system gives no reason
  return -1;
}

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() {
    if (*this) close(descriptor_);
  }

  explicit operator bool() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  int release() { return std::exchange(descriptor_, -1); }

  // Reads up to size bytes, whatever signals come. Returns their number, 0 at the end of the file, or -1 with
  // errno.
  ssize_t Read(char* bytes, std::size_t size) const {
    ssize_t count = 0;
    do count = read(descriptor_, bytes, size);
    while (count < 0 && errno == EINTR);
    return count;
  }

  // Returns how many of the bytes were written. When fewer than all, errno says why.
  std::size_t WriteAll(std::string_view bytes) const {
    std::size_t written = 0;
    while (written < bytes.size()) {
      const ssize_t count = WriteSome(descriptor_, bytes.substr(written));
      if (count < 0) break;
      written += static_cast<std::size_t>(count);
    }
    return written;
  }

 private:
  int descriptor_ = -1;
};

// Holds the places of the standard streams that a host has closed, as long as it lives. A file that is opened
// meanwhile gets another place: what the host goes on writing to such a stream would otherwise land in it.
// That writing fails as it did before.
class StandardPlaces {
 public:
  StandardPlaces() {
    for (const int place : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      if (fcntl(place, F_GETFD) == -1) held_[place] = FileDescriptor(open("/", O_PATH | O_CLOEXEC));
    }
  }
  StandardPlaces(const StandardPlaces&) = delete;
  StandardPlaces& operator=(const StandardPlaces&) = delete;
  ~StandardPlaces() = default;

 private:
  FileDescriptor held_[STDERR_FILENO + 1];
};

// Puts off the cancellation of the calling thread. Opening and closing files are cancellation points, and a
// thread that ended between the two would leave a handle without a file, or end within a destructor.
class CancellationPause {
 public:
  CancellationPause() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state_before_); }
  CancellationPause(const CancellationPause&) = delete;
  CancellationPause& operator=(const CancellationPause&) = delete;
  ~CancellationPause() { pthread_setcancelstate(state_before_, nullptr); }

 private:
  int state_before_ = PTHREAD_CANCEL_ENABLE;
};

class MutexLock {
 public:
  explicit MutexLock(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;
  ~MutexLock() { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t& mutex_;
};

}  // namespace vintra

#endif
