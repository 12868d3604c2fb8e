// Files and buffers scrambled without a handle.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "TestSupport.h"

namespace {

class ScramblingTest : public LogTest {
 protected:
  sint32 Convert(const std::string& from, const std::string& to) const {
    return FileConvert((folder_ / from).c_str(), (folder_ / to).c_str());
  }
};

TEST_F(ScramblingTest, FilesOfEverySize) {
  errno = ENOENT;
  for (const std::size_t size : {0U, 1U, 131071U, 131072U, 131073U, 400001U}) {
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < size; ++at) bytes[at] = static_cast<char>(at % 251);
    std::ofstream(folder_ / "plain") << bytes;
    EXPECT_EQ(Convert("plain", "scrambled"), 0);
    EXPECT_EQ(ReadFile(folder_ / "scrambled"), Unscrambled(bytes));
    EXPECT_EQ(Convert("scrambled", "restored"), 0);
    EXPECT_EQ(ReadFile(folder_ / "restored"), bytes);
    std::ofstream(folder_ / "scrambled") << std::string(500000, 'x') << "longer than what comes next";
  }
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(ScramblingTest, RefusedFiles) {
  std::ofstream(folder_ / "one") << "1";
  std::ofstream(folder_ / "two") << "2";
  fs::create_symlink("one", folder_ / "link");
  fs::create_symlink("two", folder_ / "other");
  fs::create_hard_link(folder_ / "one", folder_ / "name");
  fs::create_directory(folder_ / "dir");
  // clang-format off
  constexpr struct { const char *from, *to; } kCases[] = {
      {"none", "two"}, {"one", "dir"}, {"one", "none/new"}, {"dir", "two"}, {"one", "one"},
      {"one", "name"}, {"link", "name"}};
  // clang-format on
  for (const auto& row : kCases) EXPECT_EQ(Convert(row.from, row.to), 5) << row.from << " to " << row.to;
  EXPECT_EQ(ReadFile(folder_ / "one") + ReadFile(folder_ / "two"), "12");
  EXPECT_EQ(Convert("one", "other"), 0);
  EXPECT_EQ(ReadFile(folder_ / "two"), "\x0d");
  EXPECT_EQ(FileConvert(nullptr, "x"), 1);
  EXPECT_EQ(FileConvert("x", nullptr), 1);
  EXPECT_EQ(FileConvert("/proc/self/mem", (folder_ / "two").c_str()), 5) << "reading fails";
  errno = 0;
  EXPECT_EQ(FileConvert((folder_ / "one").c_str(), "/dev/full"), 0) << "writing is not in the result";
  EXPECT_EQ(errno, ENOSPC);
  const int next = dup(0);
  EXPECT_EQ(close(next), 0);
  for (const int ordinal : {1, 0}) {
    fake.allocations = 0;
    fake.failing_allocation = ordinal;
    EXPECT_EQ(Convert("one", "new"), ordinal == 1 ? 5 : 0);
    EXPECT_EQ(fs::exists(folder_ / "new"), ordinal == 0);
  }
  EXPECT_EQ(dup(0), next) << "no descriptor has stayed open";
  close(next);
}

TEST_F(ScramblingTest, BuffersInEveryPositionToEachOther) {
  for (const uint32 length : {0U, 1U, 15U, 64U, 200U}) {
    for (const std::size_t from : {0U, 1U, 8U, 199U, 200U, 201U, 233U, 400U}) {
      std::string buffer(600, '\0');
      for (std::size_t at = 0; at < buffer.size(); ++at) buffer[at] = static_cast<char>(at % 251);
      std::string expected = buffer;
      for (std::size_t at = length; at-- > 0;)
        expected[200 + at] = static_cast<char>(expected[from + at] ^ 0x3C);
      uint32 room = 300;
      EXPECT_EQ(GetEncryptData(buffer.data() + from, length, buffer.data() + 200, &room), 0);
      EXPECT_EQ(room, length);
      EXPECT_EQ(buffer, expected) << from << " " << length;
    }
  }
}

TEST_F(ScramblingTest, BuffersWithoutRoom) {
  sint8 source[11] = {'a'}, dest[11] = {'b'};
  uint32 room = 10;
  const std::tuple<const sint8*, sint8*, uint32*> nulls[] = {
      {nullptr, dest, &room}, {source, nullptr, &room}, {source, dest, nullptr}};
  for (const auto& [from, to, size] : nulls) EXPECT_EQ(GetEncryptData(from, 1, to, size), 1);
  EXPECT_EQ(room, 10U);
  EXPECT_EQ(GetEncryptData(source, 11, dest, &room), 1);
  EXPECT_EQ(std::pair(room, dest[0]), std::pair(11U, 'b'));
  EXPECT_EQ(GetEncryptData(source, 11, dest, &room), 0);
  EXPECT_EQ(dest[0], 'a' ^ 0x3C);
}

}  // namespace
