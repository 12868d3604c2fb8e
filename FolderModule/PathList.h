// The paths that a walk finds, packed as the caller will get them.
#ifndef VINTRA_FOLDERMODULE_PATHLIST_H
#define VINTRA_FOLDERMODULE_PATHLIST_H

#include <cstddef>
#include <string_view>

#include "Common/Handles.h"

namespace vintra {

// Each path with a NUL behind it. Grows as needed; without memory it becomes incomplete.
class PathList {
 public:
  // Returns false when there is no memory.
  bool Append(std::string_view path);

  // For what a walk could not read, or has no memory for.
  void SetIncomplete() { is_incomplete_ = true; }
  bool is_incomplete() const { return is_incomplete_; }
  std::size_t count() const { return count_; }
  std::string_view bytes() const { return {bytes_.get(), size_}; }

 private:
  HeapText bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::size_t count_ = 0;
  bool is_incomplete_ = false;
};

}  // namespace vintra

#endif
