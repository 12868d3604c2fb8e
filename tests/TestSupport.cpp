// The linker puts these in the place of the calls that the library makes.
#include "TestSupport.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/timeb.h>

#include <cerrno>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
int __real_mkdir(const char* path, mode_t mode);
int __real_fstat64(int descriptor, struct stat64* status);

static bool FailsNow() {
  errno = ENXIO;  // which a successful call may do as well
  return ++fake.allocations == fake.failing_allocation;
}
void* __wrap_malloc(std::size_t size) { return FailsNow() ? nullptr : __real_malloc(size); }
void* __wrap_realloc(void* block, std::size_t size) {
  return FailsNow() ? nullptr : __real_realloc(block, size);
}
std::time_t __wrap_time(std::time_t*) { return fake.coarse_second.fetch_add(fake.seconds_per_reading); }
int __wrap_ftime(timeb* now) {
  *now = {fake.fine_second.fetch_add(fake.seconds_per_reading), fake.millisecond, 0, 0};
  return 0;
}
int __wrap_dladdr(const void*, Dl_info* info) {
  info->dli_fname = fake.library_file.c_str();
  return 1;
}
int __wrap_mkdir(const char* path, mode_t mode) {
  if (fake.folder_race) __real_mkdir(path, mode);
  return __real_mkdir(path, mode);
}
int __wrap_fstat64(int descriptor, struct stat64* status) {
  return fake.good_statuses-- > 0 ? __real_fstat64(descriptor, status) : __real_fstat64(-1, status);
}
}
