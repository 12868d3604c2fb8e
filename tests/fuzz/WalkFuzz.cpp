// Any tree, walked into a buffer of about the right size: each path once, and a folder before what is in it.
#include <climits>
#include <set>

#include "FolderModule/FolderModule.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

namespace fs = std::filesystem;

// Each text names a folder that ends in '/', a link that ends in '@', which would lead back, or a file.
void Plant(std::string_view input) {
  fs::remove_all("t");
  fs::create_directory("t");
  while (!input.empty()) {
    const std::string path = "t/" + TakeText(input);
    if (path.find("..") != std::string::npos || path.size() > 1200) continue;
    std::error_code refused;  // of a name that is too long, or is a file's
    fs::create_directories(fs::path(path).parent_path(), refused);
    if (path.ends_with('@'))
      fs::create_symlink(".", path, refused);
    else if (!path.ends_with('/'))
      std::ofstream(path).close();
  }
}

template <typename Walk>
void Check(Walk walk, const std::set<std::string>& expected, int before, int spare) {
  int need = 0, total = 0, count = -1;
  for (const std::string& path : expected) need += static_cast<int>(path.size()) + 1;
  Require(walk(nullptr, INT_MAX, &total, &count) == -1 && total == need);
  const int length = std::max(0, need + spare);
  const std::unique_ptr<char[]> files = Block(static_cast<std::size_t>(length));
  total = before;
  const int code = walk(files.get(), length, &total, &count);
  Require(code == (std::max(before, 0) + need <= length ? 1 : -1));
  Require(total == before + need && count == static_cast<int>(expected.size()));
  Require(std::all_of(files.get() + (code == 1 ? need : 0), files.get() + length,
                      [code](char rest) { return rest == (code == 1 ? '\0' : '~'); }));
  if (code != 1) return;
  std::set<std::string> seen;
  for (const std::string& path : Names(files.get(), need)) {
    const std::string folder = path.substr(0, path.rfind('/'));
    Require(!expected.contains(folder) || seen.contains(folder));
    Require(seen.insert(path).second);
  }
  Require(seen == expected);
}

}  // namespace

void Try(std::string_view input) {
  const std::string wanted = TakeText(input);
  const int choice = FirstByte(TakeText(input)), before = choice / 2 % 4 - 1, spare = 3 - choice / 8 % 8;
  const std::string root = choice % 2 == 0 ? "t" : "t/";
  Folder();
  Plant(input);
  std::set<std::string> all, found;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator("t")) {
    const std::string path = root + entry.path().string().substr(1);
    if (path.size() > 1023) continue;
    all.insert(path);
    if (entry.path().filename() == wanted && !fs::is_directory(entry.symlink_status())) found.insert(path);
  }
  Check([&](auto... rest) { return TraversalFolder(root.c_str(), rest...); }, all, before, spare);
  Check([&](auto... rest) { return FindPathByFileName(root.c_str(), wanted.c_str(), rest...); }, found,
        before, spare);
}
