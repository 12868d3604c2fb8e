// One small owner for each kind of resource: what is acquired is guarded on the next line.
#ifndef VINTRA_COMMON_HANDLES_H
#define VINTRA_COMMON_HANDLES_H

#include <pthread.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace vintra {

struct FreeHeap {
  void operator()(void* block) const { std::free(block); }
};

// Text in a block of malloc, which unlike new can be grown in place and reports failure by a null pointer.
using HeapText = std::unique_ptr<char, FreeHeap>;

class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (*this) close(descriptor_);
  }

  explicit operator bool() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  int release() { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_;
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
