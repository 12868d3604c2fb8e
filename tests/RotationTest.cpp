// When a file is emptied, when it is flushed, and what happens when it cannot be.
#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "TestSupport.h"
#include "VintraModule/VintraLinuxFunc.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

// The modes with numbered files, by what stands before the number.
const std::pair<LogMode, std::string> kNumberedModes[] = {{Log_Mode_Rollback, "app"},
                                                          {Log_Mode_Date, "app_20261116_"}};

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

TEST_F(RotationTest, NumberedModesFillTheFirstFileWithRoomAndMoveOnBeyondTheLimit) {
  using Sizes = std::vector<std::size_t>;  // of the files 000, 001, 002, or of records
  // clang-format off
  const struct { uint32 ring; const char* format; Sizes found, records, left; } cases[] = {
      {20, "", {}, {}, {0}}, {20, "", {100, 250, 99}, {2}, {100, 250, 101}}, {20, "", {99, 0}, {2, 3}, {101, 3}},
      {2, "", {100}, {5}, {100, 5}}, {2, "", {100, 101, 5}, {7}, {7, 101, 5}}, {1, "", {100}, {}, {0}},
      {20, "%C", {100, 5}, {}, {0, 5}}, {0, "", {150, 5}, {}, {0, 5}}, {0, "", {50}, {}, {50}},
      {3, "", {0, 7}, {40, 60, 10}, {110, 7}}, {3, "", {0, 7}, {101, 102, 103, 9}, {9, 102, 103}},
      {3, "", {101, 102, 3}, {98, 4}, {4, 102, 101}}, {1, "", {}, {101, 9}, {9}}, {0, "", {}, {101, 102, 9}, {101, 102, 9}}};
  // clang-format on
  for (const auto& [mode, front] : kNumberedModes) {
    for (const auto& row : cases) {
      const fs::path paths[] = {folder_ / (front + "000.log"), folder_ / (front + "001.log"),
                                folder_ / (front + "002.log")};
      for (std::size_t at = 0; at < row.found.size(); ++at) MakeFile(paths[at], row.found[at]);
      Open(Config(*row.format ? row.format : "none", 0, 100, "app.log", mode, row.ring));
      for (const std::size_t size : row.records) EXPECT_EQ(Write(size), 0);
      Sizes left;
      for (const fs::path& path : paths) {
        if (fs::exists(path)) left.push_back(fs::file_size(path));
        fs::remove(path);
      }
      EXPECT_EQ(left, row.left);
      EXPECT_EQ(Files(), "");
    }
  }
}

TEST_F(RotationTest, DateModeFollowsTheDayOfTheStampAndRemovesFilesAtEveryRoll) {
  setenv("TZ", "XST-2", 1);
  constexpr std::time_t kMidnight = 1794866400;  // between 2026-11-16 and -17, two hours before that of UTC
  constexpr const char *kOld = "app_20261114_000.log", *kNew = "app_20261117_000.log";
  const LogConfigRecEx config = Config("%D%T%N", 4096, 100, "app.log", Log_Mode_Date, 2, 2);
  for (const char* file : {kOld, kNew}) MakeFile(file, 500);
  fake.SetClock(kMidnight - 2);
  Open(config);
  EXPECT_EQ(Files(), "app_20261116_000.log:0 app_20261117_000.log:500 ");
  EXPECT_EQ(LOG_INFO(handle_, "%s", std::string(100, 'x').c_str()), 0);
  fake.SetClock(kMidnight - 1);
  fake.seconds_per_reading = 1;  // whoever reads the clock twice for a record sees two days
  MakeFile(kOld, 5);
  LOG_INFO(handle_, "late");
  EXPECT_EQ(Files(), "app_20261116_000.log:126 app_20261116_001.log:30 app_20261117_000.log:500 ");
  EXPECT_EQ(ReadFile(folder_ / "app_20261116_001.log"), "2026-11-16 23:59:59.007   late");
  fake.SetClock(kMidnight);
  LOG_INFO(handle_, "early");
  const std::string before = "app_20261116_000.log:126 app_20261116_001.log:30 app_20261117_000.log:";
  EXPECT_EQ(Files(), before + "31 ") << "emptied, and the first record of a file is flushed";
  fake.seconds_per_reading = 0;
  for (const std::time_t year : {std::time_t{1} << 43, -(std::time_t{1} << 43), kNoYear, std::time_t{-1}}) {
    fake.SetClock(year);
    EXPECT_EQ(LOG_INFO(handle_, "x"), 12);
    LOGHANDLE other = 77;
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &other), 12);
    EXPECT_EQ(other, 77);
  }
  fake.SetClock(kMidnight);
  MakeFile(kOld, 5);
  LOG_INFO(handle_, "again");
  EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
  EXPECT_EQ(ReadFile(folder_ / kNew), "2026-11-17 00:00:00.007   early\r\n2026-11-17 00:00:00.007   again");
  EXPECT_EQ(Files(), "app_20261114_000.log:5 " + before + "64 ") << "a record alone removes nothing";
  fake.SetClock(kMidnight - 60);  // set back: another day again
  LOG_INFO(handle_, "back");
  EXPECT_EQ(Files(), "app_20261116_000.log:30 app_20261116_001.log:30 app_20261117_000.log:64 ");
  EXPECT_EQ(Errors(), "");
}

TEST_F(RotationTest, NumberedFilesThatCannotBeUsed) {
  for (const auto& [mode, front] : kNumberedModes) {
    const auto start = [&](uint32 ring, const std::string& name) {
      Close();
      const LogConfigRecEx config = Config("none", 0, 100, name, mode, ring);
      return LOG_MODULE_INIT_New_Ex(&config, &handle_);
    };
    // Paths of 259 characters, which one more digit or letter makes too long.
    const std::string folder = folder_.string() + "/" + std::string(200, 'd') + "/";
    const std::string base = folder + std::string(255 - folder.size() - front.size(), 'n');
    EXPECT_EQ(start(0, base + ".log"), 0);
    Record().cur_log_file_ID = 999;
    for (const sint32 code : {0, 5, 1}) EXPECT_EQ(Write(101), code);
    EXPECT_EQ(start(0, base + "n.log"), 5);
    fs::create_directory(folder_ / (front + "001.log"));
    EXPECT_EQ(start(2, "app.log"), 0);
    for (const sint32 code : {0, 5, 1}) EXPECT_EQ(Write(101), code);
    EXPECT_EQ(start(2, "app.log"), 5);

    const int next = dup(0);  // the descriptor that start-up will have
    close(next);
    fs::remove(folder_ / "LogModuleErrMsg.log");
    for (const int good : {0, 1}) {  // the scan's look at the file, and the size check's
      fake.good_statuses = good;
      EXPECT_EQ(start(2, "free.log"), 5);
    }
    fake.good_statuses = 1 << 30;
    const std::string failed = "errno = 9\nBad file handle " + std::to_string(next);
    EXPECT_EQ(Errors(), failed + (mode == Log_Mode_Date ? "\n" : ".\n") + failed + ".\n");
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
