// Paths and folder chains.
#include "FolderModule/FolderModule.h"
#include "FolderModule/LinuxFunc.h"
#include "TestSupport.h"

namespace {

using PathsTest = LogTest;

TEST_F(PathsTest, SplitAndJoin) {
  // clang-format off
  constexpr std::pair<const char*, const char*> kSplits[] = {  // path, drive|dir|fname|ext
      {"/var/log/app/run.log", "/|var/log/app/|run|.log"}, {"logs/app.log", "|logs/|app|.log"},
      {"app.log", "||app|.log"}, {"/app.log", "/||/app|.log"}, {"/", "/||/|"}, {"logs/", "|logs/||"},
      {"/var/log/", "/|var/log/||"}, {"a.b/c", "|a.b/|c|"}, {"a.b.c", "||a.b|.c"}, {".hidden", "|||.hidden"},
      {"file.", "||file|."},
      {"d/.hidden", "|d/||.hidden"}, {"..", "||.|."}, {"//x//y.z", "/|/x//|y|.z"},
      {"a\\b\\c.txt", "|a\\b\\|c|.txt"}, {"\\a", "|\\|a|"}};
  constexpr const char* kJoins[][5] = {  // drive, dir, fname, ext, path
      {nullptr, "/var/log/", "app", ".log", "/var/log/app.log"}, {nullptr, "logs", "app", "", "logs/app"},
      {nullptr, "/var/log", "app", ".log", "/var/log/app.log"}, {nullptr, nullptr, "run", ".log", "run.log"},
      {nullptr, "logs/", "app", "log", "logs/applog"}, {nullptr, "a\\", "f", nullptr, "a\\f"},
      {"C", "dir", "f", ".x", "C:/dir/f.x"}, {"C:", "/dir/", "f", nullptr, "C:/dir/f"},
      {"D", nullptr, "f", ".x", "D:f.x"}, {"D", "", "f", ".x", "D:/f.x"}, {"", "", "f", ".x", "f.x"},
      {"/", "var/log/", "app", ".log", "/:/var/log/app.log"}};
  // clang-format on
  char drive[2], dir[32], fname[32], ext[32];
  for (const auto& [path, parts] : kSplits) {
    SplitPath(path, drive, dir, fname, ext);
    EXPECT_EQ(std::string(drive) + "|" + dir + "|" + fname + "|" + ext, parts) << path;
    SplitPath(path, nullptr, nullptr, nullptr, nullptr);
  }
  SplitPath("", drive, dir, fname, ext);
  SplitPath(nullptr, drive, dir, fname, ext);
  EXPECT_STREQ(fname, "a") << "left as it was";
  for (const auto& [drive_part, dir_part, fname_part, ext_part, expected] : kJoins) {
    char joined[32];
    MakePath(joined, drive_part, dir_part, fname_part, ext_part);
    EXPECT_STREQ(joined, expected);
  }
  MakePath(nullptr, "a", "b", "c", "d");
}

TEST_F(PathsTest, NamedFolders) {
  const std::string folder = "/" + std::string(256, 'l') + "/";
  // clang-format off
  const std::pair<std::string, std::string> libraries[] = {
      {"/opt/app/lib/libx.so", "/opt/app/lib/"}, {"./libx.so", "./"}, {"/libx.so", "old"}, {"x", "old"},
      {folder + "x", folder}, {folder + "xx", "old"}};
  // clang-format on
  for (const auto& [library, named] : libraries) {
    fake.library_file = library;
    char text[260] = "old";
    EXPECT_EQ(GetDLLDir(text), named);
  }
  EXPECT_EQ(GetModuleDir(nullptr), GetDLLDir(nullptr));
}

std::set<std::string> Entries() {
  std::set<std::string> entries;
  for (const auto& entry : fs::recursive_directory_iterator("."))
    entries.insert(entry.path().lexically_normal());
  return entries;
}

TEST_F(PathsTest, MakesWhatIsMissingAndTakesBackWhatItMade) {
  MakeFile("file", 0);
  fs::create_directory("old");
  fs::create_symlink("nowhere", "dangling");
  const std::set<std::string> before = Entries();
  const std::string name(248, 'd'), top = "old/" + name.substr(48), below = top + "/" + name.substr(205);
  // clang-format off
  const struct { std::string path; int code; std::set<std::string> made; } cases[] = {
      {"logs/daily/", 1, {"logs", "logs/daily"}}, {"logs\\\\a//b", 1, {"logs", "logs/a", "logs/a/b"}},
      {"/" + folder_ + "a/b", 1, {"a", "a/b"}}, {below, 1, {top, below}}, {name, 1, {name}},
      {"old", 1, {}}, {"/", 1, {}}, {"///", 1, {}}, {"file", 1, {}}, {below + "d", 0, {}}, {name + "d", 0, {}},
      {"", 0, {}}, {"file/x", 0, {}}, {"C:/logs", 0, {}}, {"dangling", 0, {}}, {"old/new/../../file/x", 0, {}},
      {"new/../file/x", 0, {}}};
  // clang-format on
  for (const auto& row : cases) {
    EXPECT_EQ(CreateMulDir(row.path.c_str()), row.code) << row.path;
    std::set<std::string> expected = row.made;
    expected.insert(before.begin(), before.end());
    EXPECT_EQ(Entries(), expected);
    for (const std::string& folder : row.made) fs::remove_all(folder);
  }
  EXPECT_EQ(CreateMulDir(nullptr), 0);
}

TEST_F(PathsTest, ALevelThatAnotherProcessMakesIsThereAndStays) {
  fake.folder_race = true;
  EXPECT_EQ(CreateMulDir("a/b"), 1);
  MakeFile("a/file", 0);
  EXPECT_EQ(CreateMulDir("a/c/../file/d"), 0);
  EXPECT_EQ(Entries(), (std::set<std::string>{"a", "a/b", "a/c", "a/file"}));
}

TEST_F(PathsTest, ExportedSteps) {
  char parent[261] = "./", rest[] = "//z", text[261];
  MakeFile("f", 0);
  EXPECT_EQ(CreateChildDir(parent, "x/y"), 1);
  EXPECT_EQ(CreateChildDir(parent, std::string(246, 'd').c_str()), 0);
  for (const int length : {-1, 2, 3, 4}) EXPECT_EQ(RecursiveCreateDir(rest, parent, length), length == 3);
  EXPECT_EQ(CreateChildDir(std::strcpy(parent, "x/"), "new/../../f/x"), 0);
  EXPECT_STREQ(parent, "x/") << "made, taken back and cut off";
  EXPECT_EQ(Entries(), (std::set<std::string>{"f", "x", "x/y", "x/z"}));
  for (const int length : {259, 260}) {
    std::string path(static_cast<std::size_t>(length), 'r');
    EXPECT_EQ(SetRootDir(path.data(), path.data(), text), length == 259 ? 259 : 0);
  }
}

}  // namespace
