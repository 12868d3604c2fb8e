// The linker puts these in the place of the calls that the library makes.
#include "TestSupport.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/timeb.h>
#include <sys/utsname.h>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
int __real_mkdir(const char* path, mode_t mode);
int __real_fstat64(int descriptor, struct stat64* status);
std::FILE* __real_fopen64(const char* path, const char* mode);
int __real_fsync(int descriptor);
std::size_t __real_fwrite_unlocked(const void* bytes, std::size_t size, std::size_t count, std::FILE* stream);
int __real_fclose(std::FILE* stream);
int __real_rename(const char* from, const char* to);

static bool FailsNow() {
  errno = ENXIO;  // which a successful call may do as well
  return ++fake.allocations == fake.failing_allocation;
}
void* __wrap_malloc(std::size_t size) { return FailsNow() ? nullptr : __real_malloc(size); }
void* __wrap_realloc(void* old, std::size_t size) { return FailsNow() ? nullptr : __real_realloc(old, size); }
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
// Calls of a kind are told apart by their number: "fsync2".
static bool NotedAndFails(const std::string& name) {
  if (!fake.notes_calls) return false;
  std::string word = name;
  for (int number = 2; fake.calls.find(word + " ") != std::string::npos;)
    word = name + std::to_string(number++);
  fake.calls += word + " ";
  errno = EIO;
  return word == fake.failing_call;
}
static ssize_t ReadOnce(void*, char* buffer, std::size_t size) {
  const std::size_t count = std::exchange(fake.other_file, "").copy(buffer, size);
  return count != 0 ? static_cast<ssize_t>(count) : -1;
}
std::FILE* __wrap_fopen64(const char* path, const char* mode) {
  if (fs::path(path).parent_path() == "/proc") return __real_fopen64(path + std::strlen("/proc/"), mode);
  if (!NotedAndFails("open")) return __real_fopen64(path, mode);
  if (!fake.other_file.starts_with('[')) return __real_fopen64(fake.other_file.c_str(), mode);
  return fopencookie(nullptr, "r", {ReadOnce, nullptr, nullptr, nullptr});
}
std::size_t __wrap_fwrite_unlocked(const void* bytes, std::size_t size, std::size_t count, FILE* stream) {
  const std::size_t written = __real_fwrite_unlocked(bytes, size, count, stream);
  return NotedAndFails("write") ? 0 : written;
}
int __wrap_fsync(int descriptor) {
  struct stat64 status {};
  __real_fstat64(descriptor, &status);
  if (fake.notes_calls && fake.calls.find("fsync") == std::string::npos) fake.synced_size = status.st_size;
  return NotedAndFails("fsync") ? -1 : __real_fsync(descriptor);
}
int __wrap_fclose(std::FILE* stream) {
  const int result = __real_fclose(stream);
  return NotedAndFails("fclose") ? EOF : result;
}
int __wrap_rename(const char* from, const char* to) {
  return NotedAndFails("rename") ? -1 : __real_rename(from, to);
}
int __wrap_gethostname(char* name, std::size_t size) {
  std::string(fake.host).append(1, '\0').copy(name, size);
  return fake.host.empty() || fake.host.size() >= size ? -1 : 0;
}
int __wrap_uname(utsname* system) {
  for (char* field : {system->sysname, system->machine, system->release, system->version})
    fake.system_field.copy(field, sizeof system->sysname - 1);
  return fake.system_field.empty() ? -1 : 0;
}
int __wrap_statfs64(const char* path, struct statfs64* status) {
  status->f_bsize = 4096;
  status->f_blocks = fake.blocks;
  return fake.blocks == 0 || std::string(path) != "/" ? -1 : 0;
}
pid_t __wrap_getpid() { return fake.pid; }
pid_t __wrap_gettid() { return fake.tid; }
}
