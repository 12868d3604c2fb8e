// Folder walks, and the list that they fill.
#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "Common/Handles.h"
#include "FolderModule/LinuxFunc.h"

namespace {

// Counts on with what a path takes, and stays at the end of the range: a caller's total may be anything.
void AddBytes(int& total, std::size_t count) {
  const auto room = static_cast<std::size_t>(std::int64_t{INT_MAX} - total);
  total = count < room ? static_cast<int>(total + static_cast<std::int64_t>(count)) : INT_MAX;
}

// One walk: all levels share the buffer that holds the path of the entry at hand.
class FolderWalk {
 public:
  // Without a wanted name every entry is listed.
  FolderWalk(const char* wanted, vintra::PathList& files, int& total)
      : wanted_(wanted == nullptr ? std::string_view() : wanted),
        lists_all_(wanted == nullptr),
        files_(files),
        total_(total) {}

  // Returns false when path cannot be opened.
  bool Run(const char* path) {
    const vintra::DirPtr folder(opendir(path));
    if (!folder) return NotOpened();
    const std::string_view text = path;
    // Nothing below a folder of this length fits.
    if (text.size() >= sizeof path_) return true;
    length_ = text.copy(path_, sizeof path_);
    Read(folder.get());
    return true;
  }

 private:
  // Lists a folder whose path stands in the buffer, and what is below it.
  void Read(DIR* folder) {
    const std::size_t folder_length = length_;
    while (const dirent* const entry = Next(folder)) {
      const std::string_view name = entry->d_name;
      if (name == "." || name == "..") continue;
      // Block devices and sockets have the bit as well. They cannot be opened as a folder.
      const bool is_folder = (entry->d_type & DT_DIR) != 0;
      if (!is_folder && !lists_all_ && name != wanted_) continue;
      if (!Enter(name)) continue;
      if ((lists_all_ || !is_folder) && !Found()) return;
      if (is_folder) ReadBelow(folder, entry->d_name);
      length_ = folder_length;
      if (files_.is_incomplete()) return;
    }
  }

  // Null at the end of the folder, and where it cannot be read any further: its list is then incomplete.
  const dirent* Next(DIR* folder) {
    const int host_errno = std::exchange(errno, 0);
    const dirent* const entry = readdir(folder);
    if (entry == nullptr && errno != 0) files_.SetIncomplete();
    if (errno == 0) errno = host_errno;
    return entry;
  }

  // Relative to its folder, which costs no second search of the path and cannot lead elsewhere meanwhile.
  void ReadBelow(DIR* parent, const char* name) {
    constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    vintra::FileDescriptor descriptor(openat(dirfd(parent), name, kFlags));
    const vintra::DirPtr folder(descriptor ? fdopendir(descriptor.get()) : nullptr);
    if (!folder) {
      NotOpened();
      return;
    }
    static_cast<void>(descriptor.release());
    Read(folder.get());
  }

  // A folder that cannot be opened is left out, but one that there is no memory for may not be missing.
  bool NotOpened() {
    if (errno == ENOMEM) files_.SetIncomplete();
    return false;
  }

  // Puts the name behind the folder's path. Returns false when that is too long.
  bool Enter(std::string_view name) {
    if (length_ + 1 + name.size() >= sizeof path_) return false;
    path_[length_++] = '/';
    length_ += name.copy(path_ + length_, name.size());
    return true;
  }

  bool Found() {
    if (!files_.Append({path_, length_})) return false;
    AddBytes(total_, length_ + 1);
    return true;
  }

  std::string_view wanted_;
  bool lists_all_;
  vintra::PathList& files_;
  int& total_;
  std::size_t length_ = 0;
  char path_[vintra::kFoundPathSize];
};

int Walk(const char* path, const char* wanted, vintra::PathList& files, int& total) {
  if (!FolderWalk(wanted, files, total).Run(path)) return 0;
  return static_cast<int>(std::min<std::size_t>(files.count(), INT_MAX));
}

}  // namespace

namespace vintra {

bool PathList::Append(std::string_view path) {
  constexpr std::size_t kFirstCapacity = 4096;
  const std::size_t size = size_ + path.size() + 1;
  if (size > capacity_) {
    const std::size_t capacity = std::max({kFirstCapacity, size, 2 * capacity_});
    auto* const grown = static_cast<char*>(std::realloc(bytes_.get(), capacity));
    if (grown == nullptr) {
      SetIncomplete();
      return false;
    }
    static_cast<void>(bytes_.release());
    bytes_.reset(grown);
    capacity_ = capacity;
  }
  path.copy(bytes_.get() + size_, path.size());
  bytes_.get()[size - 1] = '\0';
  size_ = size;
  ++count_;
  return true;
}

}  // namespace vintra

int TraversalFolderFiles(const char* path, vintra::PathList& files, int* realLen) {
  return Walk(path, nullptr, files, *realLen);
}

int FindDirByFileName(const char* path, const char* filename, vintra::PathList& files, int* realLen) {
  return Walk(path, filename, files, *realLen);
}
