// Paths, folder chains, folder walks and whole files.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <climits>

#include "Common/Handles.h"
#include "FolderModule/FolderModule.h"
#include "FolderModule/LinuxFunc.h"
#include "TestSupport.h"

namespace {

class FoldersTest : public LogTest {
 protected:
  // Every entry below path, or those called name. Asks for the size first, as a host does.
  static std::string Walk(const char* path, const char* name = nullptr) {
    int size = 0, count = -1, total = 0;
    const auto walk = [&](char* files, int length, int* real_length) {
      return name == nullptr ? TraversalFolder(path, files, length, real_length, &count)
                             : FindPathByFileName(path, name, files, length, real_length, &count);
    };
    EXPECT_EQ(walk(nullptr, 0, &size), -1);
    std::string bytes(static_cast<std::size_t>(size), '~');
    EXPECT_EQ(walk(bytes.data(), size, &total), 1);
    std::istringstream list(bytes);
    std::set<std::string> paths;
    for (std::string found; std::getline(list, found, '\0');) paths.insert(found);
    EXPECT_EQ(Bars(total, paths.size()), Bars(size, count));
    return Listed(paths);
  }
  static std::string Entries() {
    std::set<std::string> entries;
    for (const auto& entry : fs::recursive_directory_iterator("."))
      entries.insert(entry.path().string().substr(2));
    return Listed(entries);
  }
};

TEST_F(FoldersTest, PathsApartAndTogetherAndNamedFolders) {
  const std::string folder = "/" + std::string(256, 'l') + "/";
  // clang-format off
  constexpr std::pair<const char*, const char*> kSplits[] = {  // path, drive|dir|fname|ext
      {"/var/log/app/run.log", "/|var/log/app/|run|.log"}, {"/app.log", "/||/app|.log"}, {".hidden", "|||.hidden"}, {"a\\b.c\\d", "|a\\b.c\\|d|"}};
  constexpr const char* kJoins[][5] = {  // drive, dir, fname, ext, path
      {nullptr, "/var/log", "app", ".log", "/var/log/app.log"}, {nullptr, nullptr, "run", ".log", "run.log"}, {"D", nullptr, "f", nullptr, "D:f"},
      {"C", "dir", nullptr, ".x", "C:/dir/.x"}, {"/", "var/log/", "app", ".log", "/:/var/log/app.log"}};
  const std::pair<std::string, std::string> libraries[] = {
      {"/opt/app/lib/libx.so", "/opt/app/lib/"}, {"./libx.so", "./"}, {"/libx.so", "old"}, {"x", "old"}, {folder + "x", folder},
      {folder + "xx", "old"}};
  // clang-format on
  char drive[2], dir[32], fname[32], ext[32], joined[32];
  for (const auto& [path, parts] : kSplits) {
    SplitPath(path, drive, dir, fname, ext);
    EXPECT_EQ(Bars(drive, dir, fname, ext), parts) << path;
    SplitPath(path, nullptr, nullptr, nullptr, nullptr);
  }
  SplitPath("", drive, dir, fname, ext);
  SplitPath(nullptr, drive, dir, fname, ext);
  EXPECT_STREQ(fname, "d") << "left as it was";
  for (const auto& [drive_part, dir_part, fname_part, ext_part, expected] : kJoins) {
    MakePath(joined, drive_part, dir_part, fname_part, ext_part);
    EXPECT_STREQ(joined, expected);
  }
  MakePath(nullptr, "a", "b", "c", "d");

  for (const auto& [library, named] : libraries) {
    fake.library_file = library;
    char text[260] = "old";
    EXPECT_EQ(GetDLLDir(text), named);
  }
  EXPECT_EQ(GetModuleDir(nullptr), GetDLLDir(nullptr));
}

TEST_F(FoldersTest, MakesWhatIsMissingAndTakesBackWhatItMade) {
  MakeFile("file", 0);
  fs::create_directory("old");
  fs::create_symlink("nowhere", "dangling");
  const std::string before = Entries();
  const std::string name(248, 'd'), top = "old/" + name.substr(48), below = top + "/" + name.substr(205);
  // clang-format off
  const struct { std::string path; int code; std::string first = {}, made = {}; } cases[] = {
      {"logs/daily/", 1, "logs", "dangling file logs logs/daily old "}, {"logs\\\\a//b", 1, "logs", "dangling file logs logs/a logs/a/b old "},
      {"\\a//b", 1, "\\a", "\\a \\a/b dangling file old "}, {"\\\\", 1, "\\\\", "\\\\ dangling file old "},
      {"/" + folder_ + "a/b", 1, "a", "a a/b dangling file old "}, {below, 1, top, before + top + " " + below + " "},
      {name, 1, name, "dangling " + name + " file old "}, {"old", 1}, {"/", 1}, {"///", 1}, {"file", 1}, {below + "d", 0}, {name + "d", 0}, {"", 0},
      {"file/x", 0}, {"C:/logs", 0}, {"dangling", 0}, {"old/new/../../file/x", 0}, {"new/../file/x", 0}};
  // clang-format on
  for (const auto& [path, code, first, made] : cases) {
    EXPECT_EQ(CreateMulDir(path.c_str()), code) << path;
    EXPECT_EQ(Entries(), made.empty() ? before : made);
    fs::remove_all(first);
  }
  EXPECT_EQ(CreateMulDir(nullptr), 0);
  // Names that the system has for one folder, but that are a chain here.
  for (const char* const name_of_one : {"a\\b", "x:y", "z:"}) fs::create_directory(name_of_one);
  EXPECT_EQ(CreateMulDir("a\\b") + CreateMulDir("z:y") + CreateMulDir("x:y"), 2);
  fake.folder_race = true;  // another process makes a level meanwhile, which then stays
  EXPECT_EQ(CreateMulDir("c") + CreateMulDir("d/../file/e"), 1);
  EXPECT_EQ(Entries(), "a a/b a\\b c d dangling file old x:y z: z:/y ");
}

TEST_F(FoldersTest, ExportedSteps) {
  char parent[261] = "./", rest[] = "//z", text[261];
  MakeFile("f", 0);
  EXPECT_EQ(CreateChildDir(parent, "x/y"), 1);
  for (const int length : {-1, 2, 3, 4}) EXPECT_EQ(RecursiveCreateDir(rest, parent, length), length == 3);
  EXPECT_EQ(CreateChildDir(parent, std::string(246, 'd').c_str()) + CreateChildDir(parent, ""), 0);
  EXPECT_EQ(CreateChildDir(std::strcpy(parent, "x/"), "new/../../f/x"), 0);
  EXPECT_STREQ(parent, "x/") << "made, taken back and cut off";
  EXPECT_EQ(
      CreateDir(std::strcpy(parent, "w"), 0) + CheckAndCreateParentDir(std::strcpy(parent, "w/v"), 3, 1), 2);
  EXPECT_EQ(CheckAndCreateParentDir(std::strcpy(parent, "w/c:"), 4, 1) + CreateDir(nullptr, 0), 0);
  EXPECT_STREQ(parent, "w") << "cut off";
  EXPECT_EQ(CheckAndCreateParentDir(nullptr, 0, 0), 0);
  EXPECT_EQ(Entries(), "f w w/v x x/y x/z ");
  for (const int length : {259, 260}) {
    std::string path(static_cast<std::size_t>(length), 'r');
    EXPECT_EQ(SetRootDir(path.data(), path.data(), text), length == 259 ? 259 : 0);
    EXPECT_EQ(RecursiveCreateDir(rest + 3, path.data(), length), length == 259);
  }
}

TEST_F(FoldersTest, WalksAndSearches) {
  fs::create_directories("a/b/.c/x");
  for (const char* file : {"a/x", "a/.h", "a/b/.c/X"}) WriteFile(file, "");
  fs::create_directory_symlink("b", "a/l");
  mkfifo("a/b/f", 0600);
  const vintra::FileDescriptor server(socket(AF_UNIX, SOCK_STREAM, 0));
  const sockaddr_un address{AF_UNIX, "a/s"};
  ASSERT_EQ(bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

  EXPECT_EQ(Walk("a"), "a/.h a/b a/b/.c a/b/.c/X a/b/.c/x a/b/f a/l a/s a/x ");
  EXPECT_EQ(Walk("a/b/.c/"), "a/b/.c//X a/b/.c//x ");
  EXPECT_EQ(Walk("a/l"), "a/l/.c a/l/.c/X a/l/.c/x a/l/f ") << "a link that is asked for";
  for (const char* name : {"x", "l", ".h"}) EXPECT_EQ(Walk("a", name), "a/"s + name + " ");
  for (const char* name : {"b", "s", "", "a/x"}) EXPECT_EQ(Walk("a", name), "") << name;
  for (const char* nothing : {"a/b/.c/x", "missing", "a/x", ""}) EXPECT_EQ(Walk(nothing), "");
}

TEST_F(FoldersTest, WalksKeepToTheCallersBuffer) {
  fs::create_directories("a/b");
  WriteFile("a/b/y", "");  // "a/b" and "a/b/y" take 10 bytes
  // clang-format off
  const struct { int length, before, code, after; const char* bytes; } cases[] = {
      {10, 0, 1, 10, "a/b|a/b/y|~~"}, {12, 0, 1, 10, "a/b|a/b/y|||"}, {9, -1, -1, 9, "~~~~~~~~~~~~"}, {-1, INT_MIN, -1, INT_MIN + 10, "~~~~~~~~~~~~"},
      {12, 10, -1, 20, "~~~~~~~~~~~~"}, {12, INT_MAX - 9, -1, INT_MAX, "~~~~~~~~~~~~"}};
  // clang-format on
  for (const auto& [length, before, code, after, bytes] : cases) {
    std::string files(12, '~');
    int size = before, count = -1;
    EXPECT_EQ(TraversalFolder("a", files.data(), length, &size, &count), code);
    std::replace(files.begin(), files.end(), '\0', '|');
    EXPECT_EQ(Bars(files, size, count), Bars(bytes, after, 2));
  }
  char byte = '~';
  int size = 0, count = -1;
  EXPECT_EQ(TraversalFolder(nullptr, &byte, 1, &size, &count), 0);
  EXPECT_EQ(TraversalFolder("a", &byte, 1, nullptr, &count), 0);
  EXPECT_EQ(TraversalFolder("a", &byte, 1, &size, nullptr), 0);
  EXPECT_EQ(FindPathByFileName("a", nullptr, &byte, 1, &size, &count), 0);
}

TEST_F(FoldersTest, WholeFiles) {
  const std::string text = "a\0b\nc"s;
  // clang-format off
  const struct { const char *file, *mode; int length, code; std::string after; } writes[] = {
      {"f", "w", 5, 1, text}, {"f", "a", 2, 1, text + "a\0"s}, {"f", "r+", 1, 1, text + "a\0"s}, {"f", "r", 1, 0, text + "a\0"s},
      {"f", "w", -1, 0, text + "a\0"s}, {"f", "w", 0, 0, ""}, {"no/f", "w", 1, 0, ""}, {"/dev/full", "w", 1, 0, ""},
      {nullptr, "w", 1, 0, ""}, {"f", nullptr, 1, 0, ""}, {"f", "w", 5, 1, text}};
  const struct { const char* file; int length, code, size; std::string bytes; } reads[] = {
      {"f", 5, 1, 5, text + "\0~~"s}, {"f", 4, -1, 5, "~~~~~~~~"}, {"f", -1, -1, 5, "~~~~~~~~"}, {"empty", 0, 1, 0, "\0~~~~~~~"s},
      {"none", 5, 0, 77, "~~~~~~~~"}, {".", 5, 0, 77, "~~~~~~~~"}, {nullptr, 5, 0, 77, "~~~~~~~~"}, {"big", 5, -1, INT_MAX, "~~~~~~~~"},
      {"/proc/version", 5, 1, 5, "Linux\0~~"s}};  // tells of no bytes, like a file that grows
  // clang-format on
  for (const auto& [file, mode, length, code, after] : writes) {
    EXPECT_EQ(CustomWriteFile(file, mode, text.data(), length), code);
    EXPECT_EQ(ReadFile("f"), after) << length;
  }
  EXPECT_EQ(CustomWriteFile("f", "w", nullptr, 1) + CustomWriteFile("made", "w", nullptr, 0), 0);
  EXPECT_TRUE(fs::exists("made"));
  MakeFile("empty", 0);
  MakeFile("big", std::uintmax_t{1} << 31);
  for (const auto& [file, length, code, size, bytes] : reads) {
    std::string seen(8, '~');
    int real_length = 77;
    errno = ENXIO;
    EXPECT_EQ(CustomReadFile(file, seen.data(), length, &real_length), code) << length;
    EXPECT_EQ(Bars(seen, real_length), Bars(bytes, size)) << length;
    EXPECT_TRUE(code == 0 || errno == ENXIO);
  }
  char bytes[9];
  int size = 77;
  EXPECT_EQ(CustomReadFile("none", nullptr, 9, &size) + CustomReadFile("f", bytes, 9, nullptr), 0);
  EXPECT_EQ(Bars(CustomReadFile("f", nullptr, 9, &size), size), "-1|5");
  EXPECT_EQ(Bars(CustomReadFile("empty", nullptr, 9, &size), size), "-1|0");
}

}  // namespace
