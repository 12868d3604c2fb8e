// The paths that a walk finds, packed as the caller will get them.
#ifndef VINTRA_FOLDERMODULE_PATHLIST_H
#define VINTRA_FOLDERMODULE_PATHLIST_H

#include <cstddef>
#include <string_view>

#include "Common/Handles.h"

namespace vintra {

// Each path with a NUL behind it. Grows as needed; once out of memory, it lacks something.
class PathList {
 public:
  // Returns false when there is no memory.
  bool Append(std::string_view path);

  // For what else a walk has no memory for.
  void RunOutOfMemory() { out_of_memory_ = true; }
  bool out_of_memory() const { return out_of_memory_; }
  std::size_t count() const { return count_; }
  std::string_view bytes() const { return {bytes_.get(), size_}; }

 private:
  HeapText bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::size_t count_ = 0;
  bool out_of_memory_ = false;
};

}  // namespace vintra

#endif
