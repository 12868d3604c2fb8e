// Path parts as views, for callers within the library: no buffers, so no path is too long to take apart.
#ifndef VINTRA_FOLDERMODULE_PATHPARTS_H
#define VINTRA_FOLDERMODULE_PATHPARTS_H

#include <cstddef>
#include <span>
#include <string_view>

namespace vintra {

// The parts that SplitPath documents, as views into the path that was split.
struct PathParts {
  std::string_view drive;
  std::string_view dir;
  std::string_view name;
  std::string_view ext;
};

PathParts SplitPathParts(std::string_view path);

// Joins dir, name and ext into path with MakePath, without a drive. Returns false when the result does not
// fit; path then holds as much of it as does, for a message.
bool JoinPath(std::span<char> path, const char* dir, const char* name, const char* ext);

}  // namespace vintra

#endif
