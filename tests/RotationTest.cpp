// When a file is emptied, when it is flushed, and what happens when it cannot be.
#include <fcntl.h>
#include <stdio_ext.h>

#include <cerrno>

#include "TestSupport.h"
#include "VintraModule/VintraLinuxFunc.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

class RotationTest : public LogTest {
 protected:
  std::uintmax_t SizeOnDisk() const { return fs::file_size(folder_ / "app.log"); }
  std::string StreamNumber() const { return std::to_string(fileno(Record().file_out)); }
};

TEST_F(RotationTest, SimpleModeEmptiesTheFileThatHasReachedItsLimit) {
  Open(Config("none", 0, 100));
  constexpr std::pair<std::size_t, std::size_t> kWritten[] = {{99, 99}, {3, 102}, {100, 100}, {10, 10}};
  for (const auto& [record, file] : kWritten) {
    EXPECT_EQ(Write(record), 0);
    EXPECT_EQ(SizeOnDisk(), file);
    EXPECT_EQ(Record().file_size, file);
  }
}

TEST_F(RotationTest, FlushesWhenTheThresholdIsReached) {
  for (const uint32 threshold : {0U, 1U, 4096U, 65536U, 200000U}) {
    SCOPED_TRACE(threshold);
    Open(Config("%C", threshold));
    uint32 flushed = 0;
    for (uint32 written = 100; written < threshold + 1000; written += 100) {
      EXPECT_EQ(Write(100), 0);
      if (written - flushed >= threshold) flushed = written;
      ASSERT_EQ(Record().flush_size, flushed);
      ASSERT_TRUE(SizeOnDisk() == flushed || threshold > 65536);
    }
    // A flush is one write: the stream holds what gathers until then, up to some 64 KiB, and not much more.
    EXPECT_GE(__fbufsize(Record().file_out), threshold == 0 ? 0 : std::min(threshold, 65536U) + 2048);
    EXPECT_LE(__fbufsize(Record().file_out), threshold == 0 ? 4096 : 65536 + 4096);
    EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
    EXPECT_EQ(SizeOnDisk(), Record().file_size);
    EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
  }
}

TEST_F(RotationTest, FirstRecordAfterARolloverIsFlushed) {
  // Nothing flushed before the roll; a first record as long as what was flushed; a longer one.
  for (const auto& [flushed_before, first] :
       {std::pair<bool, std::size_t>{false, 50}, {true, 60}, {true, 90}}) {
    Open(Config("%C", 4096, 120));
    Write(60);
    if (flushed_before) LOG_MSG_FLUSH(handle_);
    Write(60);
    EXPECT_EQ(SizeOnDisk(), flushed_before ? 60U : 0U);
    fake.SetClock(-1);
    EXPECT_EQ(Write(first), 12);  // empties the file all the same
    fake.SetClock(kStart);
    Write(first);
    EXPECT_EQ(SizeOnDisk(), first);
    EXPECT_EQ(Record().flush_size, first);
    Write(10);
    EXPECT_EQ(SizeOnDisk(), first) << "the arithmetic alone again";
  }
}

TEST_F(RotationTest, FailuresOfReopeningWritingFlushingAndClosing) {
  const std::string path = folder_ / "sub/app.log";
  Open(Config("", 0, 10, path));
  Write(10);
  fs::remove_all(folder_ / "sub");
  EXPECT_EQ(Write(10), 5);
  EXPECT_EQ(Write(10), 1) << "from then on without a file";
  EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
  Open(Config("", 0, 1U << 30, "/dev/full"));
  const std::string flush_failed = "LogMsg fflush(" + StreamNumber() + ") = -1 failed\n";
  errno = ENOENT;
  EXPECT_EQ(Write(10), 7);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(std::pair(Record().file_size, Record().flush_size), std::pair(10U, 0U));
  EXPECT_EQ(Write(100000), 7);
  EXPECT_EQ(Record().file_size, 14U) << "the header stands, the message does not";

  Open(Config("", 4096, 1U << 30, "/dev/full"));
  EXPECT_EQ(Write(10), 0);
  EXPECT_EQ(LOG_MSG_FLUSH(handle_), 7);
  EXPECT_EQ(Record().flush_size, 10U);
  EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);

  char text[] = "x";
  FILE* const read_only = std::fopen("/dev/null", "r");
  EXPECT_EQ(logMsgWriteFile(&Record(), read_only, "", text), 7);
  LogHandleRec broken{};
  broken.file_out = read_only;
  close(fileno(read_only));
  EXPECT_EQ(getFileSize(&broken), -1);
  EXPECT_NE(std::fclose(read_only), 0);

  EXPECT_EQ(Write(10), 0);
  const std::string close_failed = "LogMsg fclose(" + StreamNumber() + ") = -1 failed\n";
  Close();
  EXPECT_EQ(Errors(), "LogMsg open file(" + path + ") for write failed.\n" + flush_failed +
                          "logMsgWriteFile vfprintf failed(errorcode:0).\n" + flush_failed +
                          "logMsgWriteFile fwrite failed(errorcode:0).\nerrno = 9\n" + close_failed);
}

TEST_F(RotationTest, FilesUnderOtherProgramsHands) {
  Open(Config("", 0, 100));
  for (const bool after_roll : {false, true}) {
    if (after_roll) Write(100), Write(10);
    EXPECT_NE(fcntl(fileno(Record().file_out), F_GETFD) & FD_CLOEXEC, 0);
    Write(20);
    fs::resize_file(folder_ / "app.log", 0);
    Write(12);
    EXPECT_EQ(Log(), "\r\n  xxxxxxxxxx") << "no hole, and the separator that the counted bytes call for";
  }
}

}  // namespace
