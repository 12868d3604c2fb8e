// Any text taken apart, and any texts put together, in buffers as large as they have to be, to the byte.
#include "FolderModule/FolderModule.h"
#include "FolderModule/PathParts.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

bool IsSeparator(char character) { return character == '/' || character == '\\'; }

void CheckJoin(const std::string& dir, std::string_view name, std::string_view ext, const std::string& joined,
               std::size_t room) {
  const std::unique_ptr<char[]> path = Block(room);
  const bool fits =
      vintra::JoinPath({path.get(), room}, dir.c_str(), std::string(name).c_str(), std::string(ext).c_str());
  Require(fits == (joined.size() < room) && (room == 0 || path.get() == joined.substr(0, room - 1)));
}

void CheckSplit(const std::string& path, unsigned unwanted) {
  const vintra::PathParts split = vintra::SplitPathParts(path);
  const std::size_t last = path.find_last_of("/\\") + 1, dot = std::min(path.rfind('.'), path.size());
  Require(split.drive == (path.starts_with('/') ? "/" : "") &&
          split.ext == path.substr(dot < last ? path.size() : dot));
  Require(split.drive.size() + split.dir.size() == std::max(split.drive.size(), last));
  const std::string folder = split.dir.empty() ? "" : std::string(split.drive).append(split.dir);
  CheckJoin(folder, split.name, split.ext, path, path.size() + 1);

  const std::string_view parts[] = {split.drive, split.dir, split.name, split.ext};
  std::unique_ptr<char[]> out[4];
  for (unsigned part = 0; part < 4; ++part)
    if ((unwanted >> part & 1) == 0) out[part] = Block(parts[part].size() + 1);
  SplitPath(path.c_str(), out[0].get(), out[1].get(), out[2].get(), out[3].get());
  for (unsigned part = 0; part < 4 && !path.empty(); ++part)
    Require(!out[part] || out[part].get() == parts[part]);
}

}  // namespace

void Try(std::string_view input) {
  const std::string path = TakeText(input), drive = TakeText(input), dir = TakeText(input),
                    name = TakeText(input), ext = TakeText(input);
  const auto choice = static_cast<unsigned>(FirstByte(input));
  CheckSplit(path, choice);

  std::string joined = dir + (dir.empty() || IsSeparator(dir.back()) ? "" : "/") + name + ext;
  CheckJoin(dir, name, ext, joined, choice % 4 == 3 ? choice / 4 : joined.size() + choice % 4);
  if (!drive.empty())
    joined.insert(0, drive + (drive.ends_with(':') ? "" : ":") + (IsSeparator(dir.front()) ? "" : "/"));
  const std::unique_ptr<char[]> made = Block((drive + dir + name + ext).size() + 4);
  MakePath(made.get(), drive.c_str(), dir.c_str(), name.c_str(), ext.c_str());
  Require(made.get() == joined);
}
