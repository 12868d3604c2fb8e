// Files and buffers scrambled without a handle.
#include "TestSupport.h"

namespace {

using ScramblingTest = LogTest;

std::string Bytes(std::size_t size) {
  std::string bytes;
  while (bytes.size() < size) bytes += static_cast<char>(bytes.size() % 251);
  return bytes;
}

TEST_F(ScramblingTest, FilesOfEverySize) {
  errno = ENOENT;
  for (const std::size_t size : {400001U, 0U, 1U, 131071U, 131072U, 131073U}) {  // overwrites a longer one
    WriteFile("plain", Bytes(size));
    EXPECT_EQ(FileConvert("plain", "scrambled"), 0);
    EXPECT_EQ(ReadFile("scrambled"), Unscrambled(Bytes(size)));
  }
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(ScramblingTest, RefusedFiles) {
  WriteFile("one", "1");
  WriteFile("two", "2");
  fs::create_symlink("one", "link");
  fs::create_symlink("two", "other");
  fs::create_hard_link("one", "name");
  fs::create_directory("dir");
  // clang-format off
  constexpr struct { const char *from, *to, *two; sint32 code; } kCases[] = {
      {"none", "two", "2", 5}, {"one", "dir", "2", 5}, {"dir", "two", "2", 5}, {"one", "one", "2", 5}, {"link", "name", "2", 5},
      {nullptr, "two", "2", 1}, {"one", nullptr, "2", 1}, {"one", "other", "\x0d", 0},
      {"/proc/self/mem", "two", "", 5}, {"one", "/dev/full", "", 0}};  // which fail to be read, and written
  // clang-format on
  for (const auto& [from, to, two, code] : kCases) {
    errno = 0;
    EXPECT_EQ(FileConvert(from, to), code);
    EXPECT_EQ(ReadFile("one") + ReadFile("two"), "1"s + two);
  }
  EXPECT_EQ(errno, ENOSPC) << "writing is not in the result";
}

TEST_F(ScramblingTest, BuffersInEveryPositionAndWithoutRoom) {
  for (const uint32 length : {0U, 1U, 15U, 64U, 200U})
    for (const std::size_t from : {0U, 1U, 8U, 199U, 200U, 201U, 233U, 400U}) {
      std::string buffer = Bytes(600), expected = buffer;
      for (std::size_t at = length; at-- > 0;)  // the last byte first, also where source and dest overlap
        expected[200 + at] = static_cast<char>(expected[from + at] ^ 0x3C);
      uint32 room = 300;
      EXPECT_EQ(GetEncryptData(buffer.data() + from, length, buffer.data() + 200, &room), 0);
      EXPECT_TRUE(room == length && buffer == expected) << from << " " << length;
    }
  sint8 source[11] = {'a'}, dest[11] = {'b'};
  uint32 room = 10;
  EXPECT_EQ(GetEncryptData(nullptr, 1, dest, &room) + GetEncryptData(source, 1, nullptr, &room), 2);
  EXPECT_EQ(GetEncryptData(source, 1, dest, nullptr), 1);
  for (const auto& [code, before, first] : {std::tuple(1, 10U, 'b'), {0, 11U, 'a' ^ 0x3C}}) {
    EXPECT_EQ(room, before);
    EXPECT_EQ(GetEncryptData(source, 11, dest, &room), code);
    EXPECT_EQ(std::pair(room, dest[0]), std::pair(11U, static_cast<sint8>(first)));
  }
}

}  // namespace
