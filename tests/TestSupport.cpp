// The linker puts these in the place of the calls that the library makes.
#include "TestSupport.h"

#include <dirent.h>
#include <dlfcn.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/timeb.h>
#include <sys/utsname.h>

#include <cstdarg>
#include <new>

namespace {

// Notes a call of a kind, and says whether it is one that fails.
bool Fails(const std::string& kind) {
  if (!fake.notes_calls) return false;
  const int number = ++fake.calls_of_kind[kind];
  const std::string word = number == 1 ? kind : kind + std::to_string(number);
  fake.calls += word + " ";
  errno = fake.error;
  if (word == fake.failing_call) return fake.has_failed = true;
  return fake.has_failed && fake.fault != Fault::kOnce &&
         fake.failing_call.find_last_not_of("0123456789") + 1 == kind.size() &&
         fake.failing_call.starts_with(kind);
}

ssize_t ReadOnce(void*, char* buffer, std::size_t size) {
  const std::size_t count = std::exchange(fake.other_file, "").copy(buffer, size);
  return count != 0 ? static_cast<ssize_t>(count) : -1;
}

// What a failing write still makes of size bytes.
std::size_t HalfDone(std::size_t size) {
  if (fake.fault != Fault::kHalfDone) return 0;
  fake.fault = Fault::kFromThenOn;
  return size / 2;
}

// What has no room in a stream empties it, as on a disk that is full: it would have been written.
std::size_t FailToPut(std::size_t size, FILE* stream) {
  if (size > __fbufsize(stream) - __fpending(stream)) __fpurge(stream);
  return 0;
}

}  // namespace

extern "C" {
// What calls are named in the library's objects, where that depends on the machine.
#ifdef VINTRA_WIDE_TIME
#define VINTRA_FSTAT __fstat64_time64
#define VINTRA_LOCALTIME __localtime64_r
#else
#define VINTRA_FSTAT fstat64
#define VINTRA_LOCALTIME localtime_r
#endif
#if __SIZEOF_POINTER__ == 8
#define VINTRA_NEW _ZnwmRKSt9nothrow_t
#else
#define VINTRA_NEW _ZnwjRKSt9nothrow_t
#endif

// A call that passes everything on, or fails.
// clang-format off
#define VINTRA_JOIN(front, name) front##name
#define VINTRA_NAME(front, name) VINTRA_JOIN(front, name)
#define VINTRA_CALL(result, name, kind, failure, parameters, ...) \
  result VINTRA_NAME(__real_, name) parameters; \
  result VINTRA_NAME(__wrap_, name) parameters { \
    return Fails(#kind) ? failure : VINTRA_NAME(__real_, name)(__VA_ARGS__); \
  }
VINTRA_CALL(int, access, access, -1, (const char* path, int mode), path, mode)
VINTRA_CALL(int, mkostemp64, mkostemp, -1, (char* path, int flags), path, flags)
VINTRA_CALL(FILE*, fdopen, fdopen, nullptr, (int descriptor, const char* mode), descriptor, mode)
VINTRA_CALL(int, setvbuf, setvbuf, -1, (FILE* stream, char* buffer, int mode, std::size_t size), stream, buffer, mode, size)
VINTRA_CALL(int, VINTRA_FSTAT, fstat, -1, (int descriptor, struct stat64* status), descriptor, status)
VINTRA_CALL(int, ftruncate64, ftruncate, -1, (int descriptor, off64_t size), descriptor, size)
VINTRA_CALL(ssize_t, read, read, -1, (int descriptor, void* bytes, std::size_t size), descriptor, bytes, size)
VINTRA_CALL(ssize_t, pread64, pread, -1, (int descriptor, void* bytes, std::size_t size, off64_t at), descriptor, bytes, size, at)
VINTRA_CALL(char*, fgets, fgets, nullptr, (char* text, int size, FILE* stream), text, size, stream)
VINTRA_CALL(int, fflush, fflush, EOF, (FILE* stream), stream)
VINTRA_CALL(int, rename, rename, -1, (const char* from, const char* to), from, to)
VINTRA_CALL(int, remove, remove, -1, (const char* path), path)
VINTRA_CALL(int, rmdir, rmdir, -1, (const char* path), path)
VINTRA_CALL(DIR*, opendir, opendir, nullptr, (const char* path), path)
VINTRA_CALL(DIR*, fdopendir, fdopendir, nullptr, (int descriptor), descriptor)
VINTRA_CALL(void*, VINTRA_NEW, new, nullptr, (std::size_t size, const std::nothrow_t& tag), size, tag)
VINTRA_CALL(int, vasprintf, asprintf, -1, (char** text, const char* format, va_list args), text, format, args)
VINTRA_CALL(int, __vasprintf_chk, asprintf, -1, (char** text, int flag, const char* format, va_list args), text, flag, format, args)
VINTRA_CALL(int, pthread_mutex_init, mutex, ENOMEM, (pthread_mutex_t* mutex, const pthread_mutexattr_t* kind), mutex, kind)
VINTRA_CALL(std::tm*, VINTRA_LOCALTIME, localtime, nullptr, (const std::time_t* second, std::tm* local), second, local)
VINTRA_CALL(std::size_t, strftime, strftime, 0, (char* text, std::size_t size, const char* format, const std::tm* local), text, size, format, local)
#undef VINTRA_CALL
// clang-format on

// The rest differ when they succeed, or fail with what they were called for done in part.
void* __real_malloc(std::size_t size);
void* __real_realloc(void* block, std::size_t size);
// Declared as it is: what takes any number of arguments is called in another way on some machines.
int __real_open64(const char* path, int flags, ...);
int __real_openat64(int folder, const char* path, int flags, ...);
std::FILE* __real_fopen64(const char* path, const char* mode);
int __real_mkdir(const char* path, mode_t mode);
ssize_t __real_write(int descriptor, const void* bytes, std::size_t size);
std::size_t __real_fwrite(const void* bytes, std::size_t size, std::size_t count, std::FILE* stream);
std::size_t __real_fwrite_unlocked(const void* bytes, std::size_t size, std::size_t count, std::FILE* stream);
int __real_fsync(int descriptor);
int __real_fclose(std::FILE* stream);
struct dirent64* __real_readdir64(DIR* folder);
int __real_close(int descriptor);

void* __wrap_malloc(std::size_t size) {
  ++fake.allocations;
  errno = ENXIO;  // which a successful call may do as well
  return Fails("malloc") ? nullptr : __real_malloc(size);
}
void* __wrap_realloc(void* old, std::size_t size) {
  ++fake.allocations;
  errno = ENXIO;
  return Fails("realloc") ? nullptr : __real_realloc(old, size);
}
int __wrap_asprintf(char** text, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int length = Fails("asprintf") ? -1 : __real_vasprintf(text, format, args);
  va_end(args);
  return length;
}
int __wrap___asprintf_chk(char** text, int flag, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int length = Fails("asprintf") ? -1 : __real___vasprintf_chk(text, flag, format, args);
  va_end(args);
  return length;
}
#ifdef VINTRA_WIDE_TIME
int __wrap___clock_gettime64(clockid_t, timespec* now) {
  if (Fails("time") || fake.coarse_second == -1) return -1;
  *now = {fake.coarse_second.fetch_add(fake.seconds_per_reading), 0};
  now->tv_nsec = fake.millisecond * 1000000L;
  return 0;
}
#else
std::time_t __wrap_time(std::time_t*) {
  return Fails("time") ? -1 : fake.coarse_second.fetch_add(fake.seconds_per_reading);
}
int __wrap_ftime(timeb* now) {
  if (Fails("ftime")) return -1;
  *now = {fake.fine_second.fetch_add(fake.seconds_per_reading), fake.millisecond, 0, 0};
  return 0;
}
#endif
int __wrap_dladdr(const void*, Dl_info* info) {
  info->dli_fname = fake.library_file.c_str();
  return Fails("dladdr") ? 0 : 1;
}
int __wrap_mkdir(const char* path, mode_t mode) {
  if (fake.folder_race) __real_mkdir(path, mode);
  return Fails("mkdir") ? -1 : __real_mkdir(path, mode);
}
int __wrap_open64(const char* path, int flags, ...) {
  va_list args;
  va_start(args, flags);
  const auto mode = (flags & O_CREAT) != 0 ? va_arg(args, mode_t) : 0;
  va_end(args);
  if ((flags & O_TRUNC) != 0 && fake.before_emptying) fake.before_emptying(path);
  return Fails("open") ? -1 : __real_open64(path, flags, mode);
}
int __wrap_openat64(int folder, const char* path, int flags, ...) {
  return Fails("openat") ? -1 : __real_openat64(folder, path, flags);
}
std::FILE* __wrap_fopen64(const char* path, const char* mode) {
  const bool is_proc = fs::path(path).parent_path() == "/proc";
  if (!Fails("fopen")) return __real_fopen64(is_proc ? path + std::strlen("/proc/") : path, mode);
  if (fake.other_file.empty()) return nullptr;
  if (!fake.other_file.starts_with('[')) return __real_fopen64(fake.other_file.c_str(), mode);
  return fopencookie(nullptr, "r", {ReadOnce, nullptr, nullptr, nullptr});
}
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size) {
  if (!Fails("write")) return __real_write(descriptor, bytes, size);
  errno = ENOSPC;
  const std::size_t half = HalfDone(size);
  return half != 0 ? __real_write(descriptor, bytes, half) : -1;
}
std::size_t __wrap_fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* stream) {
  return Fails("fwrite") ? FailToPut(size * count, stream) : __real_fwrite(bytes, size, count, stream);
}
std::size_t __wrap_fwrite_unlocked(const void* bytes, std::size_t size, std::size_t count, FILE* stream) {
  return Fails("fwrite") ? FailToPut(size * count, stream)
                         : __real_fwrite_unlocked(bytes, size, count, stream);
}
int __wrap_fsync(int descriptor) {
  struct stat64 status {};
  VINTRA_NAME(__real_, VINTRA_FSTAT)(descriptor, &status);
  if (fake.notes_calls && fake.calls.find("fsync") == std::string::npos) fake.synced_size = status.st_size;
  return Fails("fsync") ? -1 : __real_fsync(descriptor);
}
struct dirent64* __wrap_readdir64(DIR* folder) {
  const int host_errno = errno;  // which the end of a folder leaves alone
  if (Fails("readdir")) return nullptr;
  errno = host_errno;
  return __real_readdir64(folder);
}
int __wrap_fclose(std::FILE* stream) {
  const int result = __real_fclose(stream);
  return Fails("fclose") ? EOF : result;
}
int __wrap_close(int descriptor) {
  const int result = __real_close(descriptor);
  return Fails("close") ? -1 : result;
}
int __wrap_gethostname(char* name, std::size_t size) {
  std::string(fake.host).append(1, '\0').copy(name, size);
  return Fails("gethostname") || fake.host.empty() || fake.host.size() >= size ? -1 : 0;
}
int __wrap_uname(utsname* system) {
  for (char* field : {system->sysname, system->machine, system->release, system->version})
    fake.system_field.copy(field, sizeof system->sysname - 1);
  return Fails("uname") || fake.system_field.empty() ? -1 : 0;
}
int __wrap_statfs64(const char* path, struct statfs64* status) {
  status->f_bsize = 4096;
  status->f_blocks = fake.blocks;
  return Fails("statfs") || fake.blocks == 0 || std::string(path) != "/" ? -1 : 0;
}
// The same calls, fortified.
int __wrap___open64_2(const char* path, int flags) { return __wrap_open64(path, flags); }
int __wrap___openat64_2(int folder, const char* path, int flags) {
  return __wrap_openat64(folder, path, flags);
}
ssize_t __wrap___read_chk(int descriptor, void* bytes, std::size_t size, std::size_t) {
  return __wrap_read(descriptor, bytes, size);
}
ssize_t __wrap___pread64_chk(int descriptor, void* bytes, std::size_t size, off64_t at, std::size_t) {
  return __wrap_pread64(descriptor, bytes, size, at);
}
char* __wrap___fgets_chk(char* text, std::size_t, int size, FILE* stream) {
  return __wrap_fgets(text, size, stream);
}
int __wrap___gethostname_chk(char* name, std::size_t size, std::size_t) {
  return __wrap_gethostname(name, size);
}
pid_t __wrap_getpid() { return fake.pid; }
pid_t __wrap_gettid() { return fake.tid; }
}
