#include "FolderModule/LinuxFunc.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

using vintra::Level;

// An address within this library. A function's own would do as well, but a program may have another of its
// name.
const char kLibraryMark = 0;

Level MakeFolder(const char* path) {
  if (access(path, F_OK) == 0) return Level::kFound;
  if (mkdir(path, 0777) == 0) return Level::kMade;
  // Somebody else made it in between. A link that leads nowhere is refused as well with EEXIST, but is no
  // level.
  if (errno == EEXIST && access(path, F_OK) == 0) return Level::kFound;
  return Level::kFailed;
}

void CutText(char* text, int length) {
  if (length >= 0 && static_cast<std::size_t>(length) < std::strlen(text)) text[length] = '\0';
}

int LevelCode(Level level) { return level == Level::kFailed ? 0 : 1; }

}  // namespace

namespace vintra {

Level EnsureLevel(char* parent_dir, int front_size) {
  const Level level = MakeFolder(parent_dir);
  if (level == Level::kFailed) CutText(parent_dir, front_size);
  return level;
}

bool ChainExists(const char* path) { return std::strpbrk(path, "\\:") == nullptr && access(path, F_OK) == 0; }

Level EnsureRootLevel(char* parent_dir, int back_size, int front_size) {
  const bool names_drive = back_size > 0 && static_cast<std::size_t>(back_size) <= std::strlen(parent_dir) &&
                           parent_dir[back_size - 1] == ':';
  if (!names_drive) return EnsureLevel(parent_dir, front_size);
  if (access(parent_dir, F_OK) == 0) return Level::kFound;
  CutText(parent_dir, front_size);
  return Level::kFailed;
}

int CopyRootPart(const char* scan, const char* path, char* root) {
  const std::size_t leading = std::strspn(scan, kSeparators);
  const char* const name = scan + leading;
  const char* start = path;
  const char* end = name;
  if (leading == 0 || *name != '\0') {
    if (leading != 0) start = name - 1;
    end = name + std::strcspn(name, "/\\:");
    if (*end == ':') ++end;
  }
  const std::ptrdiff_t length = end - start;
  if (length <= 0 || length > kLongestLevel) return 0;
  std::memcpy(root, start, static_cast<std::size_t>(length));
  root[length] = '\0';
  return static_cast<int>(length);
}

}  // namespace vintra

void GetDLLPath(char* module_dir) {
  Dl_info library{};
  if (module_dir == nullptr || dladdr(&kLibraryMark, &library) == 0 || library.dli_fname == nullptr) return;
  const std::size_t length = strnlen(library.dli_fname, vintra::kDllPathSize);
  if (length == vintra::kDllPathSize) return;
  for (std::size_t at = length; at-- > 1;) {  // a '/' in first place names no folder of the library's own
    if (library.dli_fname[at] != '/') continue;
    std::memcpy(module_dir, library.dli_fname, at + 1);
    module_dir[at + 1] = '\0';
    return;
  }
}

int SetRootDir(char* a_dir, char* dir, char* parent_dir) {
  if (a_dir == nullptr || dir == nullptr || parent_dir == nullptr) return 0;
  return vintra::CopyRootPart(a_dir, dir, parent_dir);
}

int CheckAndCreateParentDir(char* parent_dir, int back_size, int front_size) {
  if (parent_dir == nullptr) return 0;
  return LevelCode(vintra::EnsureRootLevel(parent_dir, back_size, front_size));
}

int CreateDir(char* parent_dir, int front_size) {
  if (parent_dir == nullptr) return 0;
  return LevelCode(vintra::EnsureLevel(parent_dir, front_size));
}
