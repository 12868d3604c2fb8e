// When a file is emptied, when it is flushed, and what happens when it cannot be.
#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <vector>

#include "TestSupport.h"
#include "VintraModule/VintraLinuxFunc.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

// The modes with numbered files, by what stands before the number.
constexpr std::pair<LogMode, const char*> kNumberedModes[] = {{Log_Mode_Rollback, "app"},
                                                              {Log_Mode_Date, "app_20261116_"}};

class RotationTest : public LogTest {
 protected:
  static LogConfigRecEx Numbered(LogMode mode, const char* format, uint32 ring,
                                 const std::string& name = "app.log") {
    LogConfigRecEx config = Config(format, 0, 100, name);
    config.log_mode = mode;
    config.max_backup_index = ring;
    return config;
  }
  // Makes files, and says which there are, by number and size: "000:100 001:7 ".
  void MakeNumbered(const std::string& front, const std::string& files) const {
    std::istringstream list(files);
    for (std::string file; list >> file;)
      MakeFile(front + file.substr(0, 3) + ".log", std::stoul(file.substr(4)));
  }
  std::string NumberedFiles(const std::string& front) const {
    std::string text = Files();
    for (const std::string& part : {front, std::string(".log")}) {
      for (std::size_t at = 0; (at = text.find(part)) != std::string::npos;) text.erase(at, part.size());
    }
    return text;
  }
  fs::path CurrentFile(const std::string& front) const {
    return folder_ / (front + std::to_string(1000 + Record().cur_log_file_ID).substr(1) + ".log");
  }
  void RemoveFiles() const {
    for (const auto& entry : fs::directory_iterator(folder_)) fs::remove_all(entry);
  }
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

TEST_F(RotationTest, NumberedModesStartInTheFirstFileWithRoom) {
  // clang-format off
  constexpr struct { uint32 ring, number; const char *format, *found, *left; } kCases[] = {
      {20, 0, "", "", "000:0 "}, {20, 2, "", "000:100 001:250 002:99 ", "000:100 001:250 002:99 "},
      {20, 0, "", "000:99 001:0 ", "000:99 001:0 "}, {2, 1, "", "000:100 ", "000:100 001:0 "},
      {2, 0, "", "000:100 001:101 002:5 ", "000:0 001:101 002:5 "}, {1, 0, "", "000:100 ", "000:0 "},
      {20, 0, "%C", "000:100 001:5 ", "000:0 001:5 "}, {0, 0, "", "000:150 001:5 ", "000:0 001:5 "},
      {0, 0, "", "000:50 ", "000:50 "}};
  // clang-format on
  for (const auto& [mode, front] : kNumberedModes) {
    for (const auto& row : kCases) {
      SCOPED_TRACE(std::string(front) + row.found);
      MakeNumbered(front, row.found);
      Open(Numbered(mode, row.format, row.ring));
      EXPECT_EQ(Record().cur_log_file_ID, row.number);
      EXPECT_EQ(NumberedFiles(front), row.left);
      EXPECT_EQ(Record().file_size, fs::file_size(CurrentFile(front)));
      Close();
      RemoveFiles();
    }
  }
}

TEST_F(RotationTest, NumberedModesMoveOnFromAFileBeyondItsLimit) {
  struct Step {
    std::size_t record;
    const char* files;
  };
  // clang-format off
  const struct { uint32 ring; const char* found; std::vector<Step> steps; } cases[] = {
      {3, "001:7 ", {{40, "000:40 001:7 "}, {60, "000:100 001:7 "}, {10, "000:110 001:7 "}, {101, "000:110 001:101 "},
                     {102, "000:110 001:101 002:102 "}, {30, "000:30 001:101 002:102 "}}},
      {1, "", {{101, "000:101 "}, {9, "000:9 "}}},
      {0, "", {{101, "000:101 "}, {102, "000:101 001:102 "}, {9, "000:101 001:102 002:9 "}}}};
  // clang-format on
  for (const auto& [mode, front] : kNumberedModes) {
    for (const auto& row : cases) {
      SCOPED_TRACE(std::string(front) + std::to_string(row.ring));
      MakeNumbered(front, row.found);
      Open(Numbered(mode, "none", row.ring));
      std::string file;
      for (const Step& step : row.steps) {
        if (Record().file_size > 100) file.clear();
        file += "  " + std::string(step.record - 2, 'x');
        EXPECT_EQ(Write(step.record), 0);
        EXPECT_EQ(NumberedFiles(front), step.files);
        EXPECT_EQ(ReadFile(CurrentFile(front)), file);
      }
      Close();
      RemoveFiles();
    }
  }
}

TEST_F(RotationTest, DateModeFollowsTheDayOfTheStamp) {
  setenv("TZ", "XST-2", 1);
  constexpr std::time_t kMidnight = 1794866400;  // between 2026-11-16 and -17, two hours before that of UTC
  MakeFile("app_20261115_000.log", 5);
  MakeFile("app_20261117_000.log", 500);
  fake.SetClock(kMidnight - 2);
  LogConfigRecEx config = Numbered(Log_Mode_Date, "%D%T%N", 2);
  config.file_flush_size = 4096;
  Open(config);
  const std::string long_text(100, 'x');
  LOG_INFO(handle_, "%s", long_text.c_str());
  fake.SetClock(kMidnight - 1);
  fake.seconds_per_reading = 1;  // whoever reads the clock twice for a record sees two days
  LOG_INFO(handle_, "late");
  LOG_INFO(handle_, "early");
  fake.seconds_per_reading = 0;
  EXPECT_EQ(std::pair(Record().cur_date_ID, Record().cur_log_file_ID), std::pair(20261117U, 0U));
  const std::string early = "2026-11-17 00:00:00.007   early";
  EXPECT_EQ(ReadFile(folder_ / "app_20261117_000.log"), early) << "the first record of a file is flushed";
  for (const std::time_t unusable :
       {std::time_t{-1}, kNoYear, std::time_t{1} << 43, -(std::time_t{1} << 43)}) {
    fake.SetClock(unusable);
    EXPECT_EQ(LOG_INFO(handle_, "x"), 12);
    LOGHANDLE other = 77;
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &other), 12);
    EXPECT_EQ(other, 77);
  }
  fake.SetClock(kMidnight);
  LOG_INFO(handle_, "again");
  EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
  EXPECT_EQ(
      Files(),
      "app_20261115_000.log:5 app_20261116_000.log:126 app_20261116_001.log:30 app_20261117_000.log:64 ");
  EXPECT_EQ(ReadFile(folder_ / "app_20261116_001.log"), "2026-11-16 23:59:59.007   late");
  EXPECT_EQ(ReadFile(folder_ / "app_20261117_000.log"), early + "\r\n2026-11-17 00:00:00.007   again");
  fake.SetClock(kMidnight - 60);  // set back: another day again
  LOG_INFO(handle_, "back");
  EXPECT_EQ(ReadFile(folder_ / "app_20261116_000.log"), "2026-11-16 23:59:00.007   back");
  EXPECT_EQ(Errors(), "");
}

TEST_F(RotationTest, NumberedFilesThatCannotBeUsed) {
  std::string expected;
  const auto expect_not_opened = [&](const std::string& where, const std::string& path) {
    expected += where + " open file(" + path.substr(0, 259) + ") for write failed.\n";
  };
  for (const auto& [mode, front_text] : kNumberedModes) {
    const std::string front = front_text, added = front.substr(3), folder = folder_.string() + "/";
    // Paths of 259 characters, which one more digit or letter makes too long.
    const std::string deep = folder + std::string(220 - folder.size(), 'd') + "/";
    const std::string base = deep + std::string(252 - deep.size() - added.size(), 'n');
    Open(Numbered(mode, "none", 0, base + ".log"));
    Record().cur_log_file_ID = 999;
    EXPECT_EQ(Write(101), 0);
    EXPECT_EQ(Write(10), 5);
    EXPECT_EQ(Write(10), 1) << "from then on without a file";
    expect_not_opened("LogMsg", base + added + "1000.log");
    Close();
    LogConfigRecEx config = Numbered(mode, "none", 2, base + "n.log");
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle_), 5);
    expect_not_opened("LOG_MODULE_INIT_Ex", std::string(base).append("n").append(added) + "000.log");

    fs::create_directory(folder + front + "001.log");
    Open(config = Numbered(mode, "none", 2));
    EXPECT_EQ(Write(101), 0);
    EXPECT_EQ(Write(10), 5);
    expect_not_opened("LogMsg", folder + front + "001.log");
    Close();
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle_), 5);
    expect_not_opened("LOG_MODULE_INIT_Ex", folder + front + "001.log");

    const int next = dup(0);  // the descriptor that start-up will have
    close(next);
    for (const int good : {0, 1}) {  // the scan's look at the file, and the size check's
      fake.good_statuses = good;
      config = Numbered(mode, "none", 2, "free.log");
      EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle_), 5);
      expected += "errno = 9\nBad file handle " + std::to_string(next);
      expected += good == 0 && mode == Log_Mode_Date ? "\n" : ".\n";
    }
    fake.good_statuses = 1 << 30;
  }
  EXPECT_EQ(Errors(), expected);
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
