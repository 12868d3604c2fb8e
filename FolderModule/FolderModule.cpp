#include "FolderModule/FolderModule.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "FolderModule/LinuxFunc.h"
#include "FolderModule/PathParts.h"

namespace {

using vintra::Level;

bool IsSeparator(char character) { return character == '/' || character == '\\'; }

void WritePart(char* part, std::string_view text) {
  if (part == nullptr) return;
  if (!text.empty()) std::memcpy(part, text.data(), text.size());
  part[text.size()] = '\0';
}

char* AppendText(char* end, const char* text) {
  const std::size_t length = std::strlen(text);
  std::memcpy(end, text, length);
  return end + length;
}

// Makes the chain `rest` below parent, whose length is parent_length.
int MakeRest(const char* rest, const char* parent, std::size_t parent_length) {
  if (parent_length > vintra::kLongestLevel) return 0;
  rest += std::strspn(rest, vintra::kSeparators);
  if (*rest == '\0') return 1;
  char level[vintra::kChainBufferSize] = {};
  std::memcpy(level, parent, parent_length);
  level[parent_length] = '/';
  return CreateChildDir(level, rest);
}

// Hands the paths of a walk to the caller, whose running total with them is `total`.
int PackPaths(const vintra::PathList& found, int total, char* files, int length, int* realLen, int* count) {
  if (found.is_incomplete()) return 0;
  *count = static_cast<int>(std::min<std::size_t>(found.count(), INT_MAX));
  *realLen = total;
  const std::string_view bytes = found.bytes();
  // The total may have begun anywhere, so what the paths really need counts as well.
  const auto need = std::max<std::int64_t>(total, static_cast<std::int64_t>(bytes.size()));
  if (files == nullptr || need > length) return -1;
  const std::size_t used = bytes.copy(files, bytes.size());
  std::memset(files + used, 0, static_cast<std::size_t>(length) - used);
  return 1;
}

}  // namespace

namespace vintra {

PathParts SplitPathParts(std::string_view path) {
  PathParts parts;
  if (path.empty()) return parts;
  const std::size_t dir_start = path.front() == '/' ? 1 : 0;
  const std::size_t separator = path.find_last_of(kSeparators);
  const bool has_dir = separator != std::string_view::npos && separator >= dir_start;
  // Without a separator behind the drive the name is the whole path, a leading '/' included.
  const std::size_t name_start = has_dir ? separator + 1 : 0;
  const std::size_t dot = path.rfind('.');
  const std::size_t name_end = dot != std::string_view::npos && dot >= name_start ? dot : path.size();

  parts.drive = path.substr(0, dir_start);
  if (has_dir) parts.dir = path.substr(dir_start, name_start - dir_start);
  parts.name = path.substr(name_start, name_end - name_start);
  parts.ext = path.substr(name_end);
  return parts;
}

bool JoinPath(std::span<char> path, const char* dir, const char* name, const char* ext) {
  const std::string_view dir_text = dir;
  const bool adds_separator = !dir_text.empty() && !IsSeparator(dir_text.back());
  // MakePath takes no size, so what it will write is measured first.
  if (dir_text.size() + (adds_separator ? 1 : 0) + std::strlen(name) + std::strlen(ext) < path.size()) {
    MakePath(path.data(), nullptr, dir, name, ext);
    return true;
  }
  static_cast<void>(
      std::snprintf(path.data(), path.size(), "%s%s%s%s", dir, adds_separator ? "/" : "", name, ext));
  return false;
}

}  // namespace vintra

void SplitPath(const char* path, char* drive, char* dir, char* fname, char* ext) {
  if (path == nullptr || *path == '\0') return;
  const vintra::PathParts parts = vintra::SplitPathParts(path);
  WritePart(drive, parts.drive);
  WritePart(dir, parts.dir);
  WritePart(fname, parts.name);
  WritePart(ext, parts.ext);
}

void MakePath(char* path, const char* drive, const char* dir, const char* fname, const char* ext) {
  if (path == nullptr) return;
  char* end = path;
  const bool has_drive = drive != nullptr && *drive != '\0';
  if (has_drive) {
    end = AppendText(end, drive);
    if (end[-1] != ':') *end++ = ':';
  }
  if (dir != nullptr) {
    if (has_drive && !IsSeparator(*dir)) *end++ = '/';
    end = AppendText(end, dir);
    if (end != path && !IsSeparator(end[-1])) *end++ = '/';
  }
  if (fname != nullptr) end = AppendText(end, fname);
  if (ext != nullptr) end = AppendText(end, ext);
  *end = '\0';
}

char* GetModuleDir(char* module_dir) {
  WritePart(module_dir, "./");
  return module_dir;
}

char* GetDLLDir(char* module_dir) {
  GetDLLPath(module_dir);
  return module_dir;
}

int CreateMulDir(const char* path) {
  if (path == nullptr) return 0;
  const std::size_t length = strnlen(path, vintra::kLongestChain + 1);
  if (length == 0 || length > vintra::kLongestChain) return 0;
  if (vintra::ChainExists(path)) return 1;

  // The root part keeps one separator of a leading run. Starting at that one keeps what lies behind the root
  // part and the root part's length in step.
  const std::size_t leading = std::strspn(path, vintra::kSeparators);
  const char* start = leading > 1 && path[leading] != '\0' ? path + leading - 1 : path;

  char root[vintra::kChainBufferSize] = {};
  const int root_length = vintra::CopyRootPart(start, start, root);
  if (root_length == 0) return 0;
  const Level root_level = vintra::EnsureRootLevel(root, root_length, 0);
  if (root_level == Level::kFailed) return 0;
  const int code = MakeRest(start + root_length, root, static_cast<std::size_t>(root_length));
  if (code == 0 && root_level == Level::kMade) rmdir(root);
  return code;
}

int CreateChildDir(char* parent_dir, const char* subdir) {
  if (parent_dir == nullptr || subdir == nullptr || *parent_dir == '\0' || *subdir == '\0') return 0;
  const std::size_t front_size = std::strlen(parent_dir);
  if (front_size + std::strlen(subdir) > vintra::kLongestChain) return 0;

  const std::size_t component = std::strcspn(subdir, vintra::kSeparators);
  const std::size_t back_size = front_size + component;
  std::memcpy(parent_dir + front_size, subdir, component);
  parent_dir[back_size] = '\0';
  const Level level = vintra::EnsureLevel(parent_dir, static_cast<int>(front_size));
  if (level == Level::kFailed) return 0;
  const int code = MakeRest(subdir + component, parent_dir, back_size);
  if (code == 0 && level == Level::kMade) {
    rmdir(parent_dir);
    parent_dir[front_size] = '\0';
  }
  return code;
}

int RecursiveCreateDir(char* a_dir, char* parent_dir, int back_size) {
  if (a_dir == nullptr || parent_dir == nullptr || back_size < 0) return 0;
  const auto parent_length = static_cast<std::size_t>(back_size);
  if (strnlen(parent_dir, parent_length + 1) != parent_length) return 0;
  return MakeRest(a_dir, parent_dir, parent_length);
}

int TraversalFolder(const char* path, char* files, int length, int* realLen, int* count) {
  if (path == nullptr || realLen == nullptr || count == nullptr) return 0;
  const vintra::CancellationPause pause;
  vintra::PathList found;
  int total = *realLen;
  TraversalFolderFiles(path, found, &total);
  return PackPaths(found, total, files, length, realLen, count);
}

int FindPathByFileName(const char* path, const char* filename, char* files, int length, int* realLen,
                       int* count) {
  if (path == nullptr || filename == nullptr || realLen == nullptr || count == nullptr) return 0;
  const vintra::CancellationPause pause;
  vintra::PathList found;
  int total = *realLen;
  FindDirByFileName(path, filename, found, &total);
  return PackPaths(found, total, files, length, realLen, count);
}
