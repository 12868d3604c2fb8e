// Folder walks and whole files.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>

#include "Common/Handles.h"
#include "FolderModule/FolderModule.h"
#include "TestSupport.h"

namespace {

class FoldersTest : public LogTest {
 protected:
  // Every entry below path, or those called name, each with a blank behind it and sorted. Asks for the size
  // first, as a host does.
  static std::string Walk(const std::string& path, const char* name = nullptr) {
    int size = 0, count = -1, total = 0;
    EXPECT_EQ(Call(path, name, nullptr, 0, size, count), -1);
    std::string bytes(static_cast<std::size_t>(size), '~');
    EXPECT_EQ(Call(path, name, bytes.data(), size, total, count), 1);
    EXPECT_EQ(total, size);
    std::set<std::string> paths;
    std::size_t at = 0;
    for (; count > 0; --count) {
      const std::string found = bytes.c_str() + at;
      const std::string folder = found.substr(0, found.rfind('/'));
      EXPECT_TRUE(name != nullptr || folder.size() <= path.size() || paths.contains(folder)) << found;
      EXPECT_TRUE(paths.insert(found).second) << found;
      at += found.size() + 1;
    }
    EXPECT_EQ(at, bytes.size());
    return std::accumulate(paths.begin(), paths.end(), ""s,
                           [](const auto& text, const auto& found) { return text + found + " "; });
  }
  static int Call(const std::string& path, const char* name, char* files, int length, int& total,
                  int& count) {
    return name == nullptr ? TraversalFolder(path.c_str(), files, length, &total, &count)
                           : FindPathByFileName(path.c_str(), name, files, length, &total, &count);
  }
};

TEST_F(FoldersTest, WalksAndSearches) {
  fs::create_directories("a/b/.c/x");
  fs::create_directory("empty");
  for (const char* file : {"a/x", "a/.h", "a/b/y", "a/b/.c/X"}) WriteFile(file, "");
  fs::create_directory_symlink("b", "a/l");
  fs::create_symlink("nowhere", "a/b/x");
  mkfifo("a/b/f", 0600);
  const vintra::FileDescriptor server(socket(AF_UNIX, SOCK_STREAM, 0));
  const sockaddr_un address{AF_UNIX, "a/s"};
  ASSERT_EQ(bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);

  EXPECT_EQ(Walk("a"), "a/.h a/b a/b/.c a/b/.c/X a/b/.c/x a/b/f a/b/x a/b/y a/l a/s a/x ");
  EXPECT_EQ(Walk("a/b/.c/"), "a/b/.c//X a/b/.c//x ");
  EXPECT_EQ(Walk("a/l"), "a/l/.c a/l/.c/X a/l/.c/x a/l/f a/l/x a/l/y ")
      << "a link that is asked for is followed";
  // clang-format off
  const std::pair<const char*, const char*> kSearches[] = {
      {"x", "a/b/x a/x "}, {"b", ""}, {"l", "a/l "}, {"f", "a/b/f "}, {"s", ""}, {".h", "a/.h "}, {"X", "a/b/.c/X "}, {"", ""}, {"a/x", ""}};
  // clang-format on
  for (const auto& [name, found] : kSearches) EXPECT_EQ(Walk("a", name), found) << name;
  for (const char* nothing : {"empty", "missing", "a/x", ""}) EXPECT_EQ(Walk(nothing), "");
}

TEST_F(FoldersTest, WalksKeepToTheCallersBuffer) {
  fs::create_directories("a/b");
  WriteFile("a/b/y", "");  // "a/b" and "a/b/y" take 10 bytes
  // clang-format off
  const struct { int length, before, code, after; const char* bytes; } cases[] = {
      {10, 0, 1, 10, "a/b|a/b/y|~~"}, {12, 0, 1, 10, "a/b|a/b/y|||"}, {9, 0, -1, 10, "~~~~~~~~~~~~"}, {12, 10, -1, 20, "~~~~~~~~~~~~"},
      {9, -1, -1, 9, "~~~~~~~~~~~~"}, {9, INT_MIN, -1, INT_MIN + 10, "~~~~~~~~~~~~"}, {12, -5, 1, 5, "a/b|a/b/y|||"},
      {12, INT_MAX - 9, -1, INT_MAX, "~~~~~~~~~~~~"}, {12, INT_MAX, -1, INT_MAX, "~~~~~~~~~~~~"}, {-1, 0, -1, 10, "~~~~~~~~~~~~"}};
  // clang-format on
  for (const auto& [length, before, code, after, bytes] : cases) {
    std::string files(12, '~');
    int size = before, count = -1;
    EXPECT_EQ(Call("a", nullptr, files.data(), length, size, count), code);
    std::replace(files.begin(), files.end(), '\0', '|');
    EXPECT_EQ(files, bytes);
    EXPECT_EQ(size, after);
    EXPECT_EQ(count, 2);
  }
  char byte = '~';
  int size = 0, count = -1;
  EXPECT_EQ(Call("a", "none", &byte, 0, size, count), 1);
  EXPECT_EQ(Call("missing", nullptr, &byte, 1, size, count) + byte, 1) << "filled with NUL";
  count = 7;
  EXPECT_EQ(
      TraversalFolder(nullptr, &byte, 1, &size, &count) + TraversalFolder("a", &byte, 1, nullptr, &count), 0);
  EXPECT_EQ(FindPathByFileName("a", nullptr, &byte, 1, &size, &count) +
                TraversalFolder("a", &byte, 1, &size, nullptr),
            0);
  fake.failing_allocation = fake.allocations + 1;
  EXPECT_EQ(Call("a", nullptr, &byte, 1, size, count), -1);
  fake.failing_allocation = fake.allocations + 2;  // when the list has to grow
  for (int file = 0; file < 500; ++file) WriteFile("a/file_" + std::to_string(file), "");
  EXPECT_EQ(Call("a", nullptr, &byte, 1, size, count), -1);
  EXPECT_EQ(count + size, 7) << "nothing written";
}

TEST_F(FoldersTest, WalksLeaveOutPathsThatAreTooLong) {
  const std::string level(199, 'd'), deep = Repeat("/" + level, 4);  // 800
  fs::create_directories("w" + deep);
  const std::string folder = "w" + deep + "/" + std::string(219, 'e');  // 1021
  fs::create_directory(folder);
  for (const char* file : {"/f", "/gg"}) WriteFile(folder + file, "");
  const std::string found = Walk("w");
  EXPECT_TRUE(found.ends_with("e/f ")) << "1023 characters";
  EXPECT_EQ(found.find("gg"), std::string::npos) << "1024 characters";
  EXPECT_EQ(Walk("w", "gg") + Walk("w", "f"), folder + "/f ");
  const fs::path longer = "v" + deep + "/" + std::string(222, 'e');  // itself 1024
  fs::create_directories(longer);
  WriteFile(longer / "f", "");
  EXPECT_EQ(Walk("v", "f") + Walk(longer) + Walk(longer, "f"), "");
}

TEST_F(FoldersTest, WholeFiles) {
  const std::string text = "a\0b\nc"s;
  // clang-format off
  const struct { const char *file, *mode; int length, code; std::string after; } writes[] = {
      {"f", "w", 5, 1, text}, {"f", "a", 2, 1, text + "a\0"s}, {"f", "r+", 1, 1, text + "a\0"s}, {"f", "r", 1, 0, text + "a\0"s},
      {"f", "w", -1, 0, text + "a\0"s}, {"f", "?", 1, 0, text + "a\0"s}, {"f", "w", 0, 0, ""}, {"no/f", "w", 1, 0, ""}, {"f", "w", 5, 1, text}};
  const struct { const char* file; int length, code, size; std::string bytes; } reads[] = {
      {"f", 5, 1, 5, text + "\0~~"s}, {"f", 6, 1, 5, text + "\0~~"s}, {"f", 4, -1, 5, "~~~~~~~~"}, {"f", 0, -1, 5, "~~~~~~~~"}, {"f", -1, -1, 5, "~~~~~~~~"},
      {"empty", 0, 1, 0, "\0~~~~~~~"s}, {"empty", -1, -1, 0, "~~~~~~~~"}, {"none", 5, 0, 77, "~~~~~~~~"}, {".", 5, 0, 77, "~~~~~~~~"},
      {"/proc/version", 5, 1, 5, "Linux\0~~"s},  // has bytes and tells of none, like a file that grows
      {"big", 5, -1, INT_MAX, "~~~~~~~~"}, {"big", INT_MAX, -1, INT_MAX, "~~~~~~~~"}};
  // clang-format on
  for (const auto& [file, mode, length, code, after] : writes) {
    EXPECT_EQ(CustomWriteFile(file, mode, text.data(), length), code) << mode;
    EXPECT_EQ(ReadFile("f"), after) << mode;
  }
  EXPECT_EQ(CustomWriteFile("/dev/full", "w", "a", 1), 0);
  EXPECT_EQ(CustomWriteFile(nullptr, "w", "a", 1) + CustomWriteFile("f", nullptr, "a", 1) +
                CustomWriteFile("f", "w", nullptr, 1),
            0);

  MakeFile("empty", 0);
  MakeFile("big", std::uintmax_t{1} << 31);
  for (const auto& [file, length, code, size, bytes] : reads) {
    std::string seen(8, '~');
    int real_length = 77;
    errno = ENXIO;
    EXPECT_EQ(CustomReadFile(file, seen.data(), length, &real_length), code) << file << length;
    EXPECT_EQ(seen, bytes) << file << length;
    EXPECT_EQ(real_length, size) << file << length;
    EXPECT_TRUE(code == 0 || errno == ENXIO);
  }
  char byte = '~';
  int size = 77;
  EXPECT_EQ(CustomReadFile(nullptr, &byte, 1, &size) + CustomReadFile("f", nullptr, 9, &size) +
                CustomReadFile("f", &byte, 0, nullptr),
            0);
  fake.good_statuses = 0;
  EXPECT_EQ(CustomReadFile("f", &byte, 0, &size), 0);
  EXPECT_EQ(size, 77);
}

}  // namespace
