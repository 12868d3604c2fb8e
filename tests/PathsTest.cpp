// Paths and folder chains.
#include <algorithm>
#include <vector>

#include "FolderModule/FolderModule.h"
#include "FolderModule/LinuxFunc.h"
#include "TestSupport.h"

namespace {

TEST(PathsTest, Split) {
  // clang-format off
  constexpr const char* kRows[][5] = {  // path, drive, dir, fname, ext
      {"/var/log/app/run.log", "/", "var/log/app/", "run", ".log"}, {"logs/app.log", "", "logs/", "app", ".log"},
      {"app.log", "", "", "app", ".log"}, {"/app.log", "/", "", "/app", ".log"}, {"/", "/", "", "/", ""},
      {"logs/", "", "logs/", "", ""}, {"/var/log/", "/", "var/log/", "", ""}, {"a.b/c", "", "a.b/", "c", ""},
      {"a.b.c", "", "", "a.b", ".c"}, {".hidden", "", "", "", ".hidden"}, {"file.", "", "", "file", "."},
      {"d/.hidden", "", "d/", "", ".hidden"}, {"..", "", "", ".", "."}, {"//x//y.z", "/", "/x//", "y", ".z"},
      {"a\\b\\c.txt", "", "a\\b\\", "c", ".txt"}, {"\\a", "", "\\", "a", ""}};
  // clang-format on
  char drive[2], dir[32], fname[32], ext[32];
  for (const auto& [path, drive_part, dir_part, fname_part, ext_part] : kRows) {
    SCOPED_TRACE(path);
    SplitPath(path, drive, dir, fname, ext);
    EXPECT_STREQ(drive, drive_part);
    EXPECT_STREQ(dir, dir_part);
    EXPECT_STREQ(fname, fname_part);
    EXPECT_STREQ(ext, ext_part);
    SplitPath(path, nullptr, nullptr, nullptr, nullptr);
  }
  SplitPath("", drive, dir, fname, ext);
  SplitPath(nullptr, drive, dir, fname, ext);
  EXPECT_STREQ(fname, "a") << "left as it was";
}

TEST(PathsTest, Join) {
  // clang-format off
  constexpr const char* kRows[][5] = {  // drive, dir, fname, ext, path
      {nullptr, "/var/log/", "app", ".log", "/var/log/app.log"}, {nullptr, "logs", "app", "", "logs/app"},
      {nullptr, "/var/log", "app", ".log", "/var/log/app.log"}, {nullptr, nullptr, "run", ".log", "run.log"},
      {nullptr, "logs/", "app", "log", "logs/applog"}, {nullptr, "a\\", "f", nullptr, "a\\f"},
      {"C", "dir", "f", ".x", "C:/dir/f.x"}, {"C:", "/dir/", "f", nullptr, "C:/dir/f"},
      {"D", nullptr, "f", ".x", "D:f.x"}, {"D", "", "f", ".x", "D:/f.x"}, {"", "", "f", ".x", "f.x"},
      {"/", "var/log/", "app", ".log", "/:/var/log/app.log"}};
  // clang-format on
  for (const auto& [drive, dir, fname, ext, expected] : kRows) {
    char path[32];
    MakePath(path, drive, dir, fname, ext);
    EXPECT_STREQ(path, expected);
  }
  MakePath(nullptr, "a", "b", "c", "d");
}

TEST(PathsTest, NamedFolders) {
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

class FolderChainTest : public LogTest {
 protected:
  FolderChainTest() { fs::current_path(folder_); }
  ~FolderChainTest() override { fs::current_path("/"); }
  static std::vector<std::string> Entries() {
    std::vector<std::string> entries;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
      entries.push_back(entry.path().lexically_normal());
    }
    std::sort(entries.begin(), entries.end());
    return entries;
  }
};

TEST_F(FolderChainTest, MakesWhatIsMissingAndTakesBackWhatItMade) {
  std::ofstream("file") << "";
  fs::create_directory("old");
  fs::create_symlink("nowhere", "dangling");
  const std::vector<std::string> before = Entries();
  const std::string name(248, 'd'), top = "old/" + name.substr(48), below = top + "/" + name.substr(205);
  // clang-format off
  const std::pair<std::string, std::vector<std::string>> made_by[] = {
      {"logs/daily/", {"logs", "logs/daily"}}, {"logs\\\\a//b", {"logs", "logs/a", "logs/a/b"}},
      {"/" + folder_.string() + "/a/b", {"a", "a/b"}}, {below, {top, below}}, {name, {name}},
      {"old", {}}, {"/", {}}, {"///", {}}, {"file", {}}};
  const std::string refused[] = {below + "d", name + "d", "", "file/x", "C:/logs", "dangling",
                                 "old/new/../../file/x", "new/../file/x"};
  // clang-format on
  for (const auto& [path, made] : made_by) {
    EXPECT_EQ(CreateMulDir(path.c_str()), 1) << path;
    std::vector<std::string> expected = before;
    expected.insert(expected.end(), made.begin(), made.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(Entries(), expected);
    for (auto folder = made.rbegin(); folder != made.rend(); ++folder) fs::remove(*folder);
  }
  for (const std::string& path : refused) EXPECT_EQ(CreateMulDir(path.c_str()), 0) << path;
  EXPECT_EQ(CreateMulDir(nullptr), 0);
  EXPECT_EQ(Entries(), before);
}

TEST_F(FolderChainTest, ALevelThatAnotherProcessMakesIsThereAndStays) {
  fake.folder_race = true;
  EXPECT_EQ(CreateMulDir("a/b"), 1);
  std::ofstream("a/file") << "";
  EXPECT_EQ(CreateMulDir("a/c/../file/d"), 0);
  EXPECT_EQ(Entries(), (std::vector<std::string>{"a", "a/b", "a/c", "a/file"}));
}

TEST_F(FolderChainTest, ExportedSteps) {
  char parent[261] = "./", rest[] = "//z", text[261];
  std::ofstream("f") << "";
  EXPECT_EQ(CreateChildDir(parent, "x/y"), 1);
  EXPECT_EQ(CreateChildDir(parent, std::string(246, 'd').c_str()), 0);
  for (const int length : {-1, 2, 3, 4}) EXPECT_EQ(RecursiveCreateDir(rest, parent, length), length == 3);
  EXPECT_EQ(CreateChildDir(std::strcpy(parent, "x/"), "new/../../f/x"), 0);
  EXPECT_STREQ(parent, "x/") << "made, taken back and cut off";
  EXPECT_EQ(Entries(), (std::vector<std::string>{"f", "x", "x/y", "x/z"}));
  for (std::string path : {std::string(259, 'r'), std::string(260, 'r')}) {
    EXPECT_EQ(SetRootDir(path.data(), path.data(), text), path.size() == 259 ? 259 : 0);
  }
}

}  // namespace
