// The bytes of a record, and what a record costs.
#include <cerrno>

#include "TestSupport.h"
#include "VintraModule/VintraModuleInter.h"

#pragma GCC diagnostic ignored "-Wformat"  // a pedantic C++ compiler knows no %m

namespace {

using LogLineTest = LogTest;

TEST_F(LogLineTest, LayoutAndScrambling) {
  // clang-format off
  constexpr struct { const char *format, *module_name, *source_file; bool separated; const char* line; } kRows[] = {
      {"%D%T%E%N%C", "", nullptr, true, "2026-11-16 13:24:14.007 [INFO]    disk full"},
      {"%C%N%L%F%E%T%D", "net", "/src/net/main.src", true,
       "2026-11-16 13:24:14.007 [INFO]  net  [main.src] [42] disk full"},
      {"%F%L%C", "net", nullptr, false, "net  disk full"}, {"%L%C", "", "a/b.c/", false, "  [42] disk full"},
      {"%F%C", "", "conn.src", false, "  [conn.src] disk full"}, {"%d%t%%D%C%", "", nullptr, false, "  disk full"},
      {"%E%D%C", "", nullptr, false, "2026-11-16 [INFO]    disk full"}, {"N %C %  ", "", "c", false, "  disk full"},
      {"%   Dtext%C", "", nullptr, false, "2026-11-16   disk full"}, {"", "", nullptr, true, "  disk full"}};
  // clang-format on
  for (const uint32 encrypt : {0U, 2U, 1U}) {
    for (const auto& row : kRows) {
      SCOPED_TRACE(row.format);
      LogConfigRecEx config = Config(row.format);
      vintra::CopyText(config.module_name, row.module_name);
      config.log_encrypt = encrypt;
      if (*row.format == '\0') fs::remove(folder_ / "app.log");  // only "%C" empties a file
      EXPECT_EQ(SourceInfo(Open(config), row.source_file, 42), handle_);
      EXPECT_EQ(LOG_INFO(handle_, "disk %s", "full"), 0);
      EXPECT_EQ(LOG_INFO(handle_, "disk %s", "full"), 0);
      const std::string text = std::string(row.line).append(row.separated ? "\r\n" : "").append(row.line);
      EXPECT_EQ(encrypt == 1 ? Unscrambled(Log()) : Log(), text);
    }
  }
}

TEST_F(LogLineTest, SourcePositionStaysUntilTheNextOneAndIsBounded) {
  SourceInfo(Open(Config("%D%F%L")), std::string(300, 'n').append(".c").c_str(), 7);
  SourceInfo(handle_, "other.c", 0);
  SourceInfo(handle_, "", 9);
  LOG_INFO(handle_, "|");
  const std::string line = std::to_string(__LINE__ + 1);
  LOG_INFO(VINTRA_HERE(handle_), "|");
  const std::string date = "2026-11-16   [";  // its switch lies behind the name
  EXPECT_EQ(Log(), date + std::string(63, 'n') + "] [7] |" + date + "LogLineTest.cpp] [" + line + "] |");
  EXPECT_EQ(SourceInfo(null_log_handle, "a.c", 1), null_log_handle);
}

TEST_F(LogLineTest, LevelsTagsAndThresholds) {
  constexpr sint32 (*kFunctions[])(LOGHANDLE, const sint8*, ...) = {
      LOG_TRACE, LOG_DEBUG, LOG_INFO, LOG_NOTICE, LOG_WARN, LOG_ERROR, LOG_CRIT, LOG_FATAL};
  const std::string words[] = {"TRACE", "DEBUG", "INFO", "NOTICE", "WARN", "ERROR", "CRIT", "FATAL"};
  char text[] = "x";
  for (uint32 threshold = Log_Level_Trace; threshold <= Log_Level_Disable; ++threshold) {
    LogConfigRecEx config = Config("%E", 0, 1000, "sub/app.log");
    config.log_level = static_cast<LogLevel>(threshold);
    fs::remove_all(folder_ / "sub");
    EXPECT_EQ(LOG_LEVEL(Open(config)), config.log_level);
    std::string expected;
    fake.allocations = 0;
    for (uint32 level = 1; level <= 8; ++level) {
      EXPECT_EQ(kFunctions[level - 1](handle_, "x"), 0);
      if (level >= threshold) expected += "[" + words[level - 1] + "]    x";
    }
    EXPECT_EQ(fake.allocations, static_cast<int>(9 - threshold)) << "one for a record, none if dropped";
    EXPECT_EQ(threshold == Log_Level_Trace ? 0 : LogRecord(handle_, "Trace", "%s", text), 0);
    EXPECT_EQ(LogRecord(handle_, "info", "%s", text), threshold == Log_Level_Disable ? 1 : 0);
    if (threshold != Log_Level_Disable) expected += "  x";  // an unknown word passes, without a tag
    EXPECT_EQ(ReadFile(folder_ / "sub/app.log"), expected);
    EXPECT_EQ(fs::exists(folder_ / "sub"), threshold != Log_Level_Disable);
    EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
  }
}

TEST_F(LogLineTest, MessagesOfAnyLengthUnderTheHostsErrno) {
  for (const std::size_t length : {0U, 998U, 999U, 5000U, 200000U}) {
    Open(Config("%C"));
    fake.allocations = 0;
    errno = ENOENT;
    EXPECT_EQ(LOG_INFO(handle_, "%s%m", std::string(length, 'x').c_str()), 0);
    EXPECT_EQ(fake.allocations, length + 25 < 1024 ? 1 : 2);
    EXPECT_EQ(Log(), "  " + std::string(length, 'x') + "No such file or directory");
    EXPECT_EQ(Record().file_size, length + 27);
  }
}

TEST_F(LogLineTest, RefusedRecordsLeaveNothingBehind) {
  const char* const no_format = nullptr;
  const wchar_t no_character[] = {0x7fffffff, 0};
  LogHandleRec not_live{};
  EXPECT_EQ(LOG_INFO(Open(Config("")), no_format), 1);
  for (LOGHANDLE handle : {reinterpret_cast<LOGHANDLE>(&not_live), null_log_handle}) {
    LOG_MODULE_DESTORY(&handle);
    EXPECT_EQ(std::pair(LOG_INFO(handle, "x"), LOG_MSG_FLUSH(handle)), std::pair(1, 1));
    EXPECT_EQ(LOG_LEVEL(handle), Log_Level_Disable);
  }
  LOG_MODULE_DESTORY(nullptr);
  fake.allocations = 0;
  EXPECT_EQ(LOG_INFO(handle_, "%ls", no_character), 2);
  EXPECT_EQ(fake.allocations, 1) << "no buffer is large enough, so none is tried";
  for (const int ordinal : {1, 2}) {
    fake.allocations = 0;
    fake.failing_allocation = ordinal;
    EXPECT_EQ(LOG_INFO(handle_, "%5000d", 1), 2);
  }
  EXPECT_EQ(LOG_INFO(handle_, "next"), 0);
  EXPECT_EQ(Log(), "  next");
}

TEST_F(LogLineTest, OneInstantPerStampAndNeverASecondBack) {
  // clang-format off
  constexpr struct { int fine, coarse; unsigned short millisecond; const char* stamp; } kInstants[] = {
      {0, 0, 999, "13:24:14.999"}, {1, 0, 2, "13:24:15.002"},  // time() lags
      {1, 2, 999, "13:24:15.999"}, {5, 2, 0, "13:24:16.000"},  // the second turned in between; time() rules
      {9, 9, 7, "13:24:23.007"}, {8, 8, 900, "13:24:23.900"},  // the clock is stepped back by one second
      {-3600, -3600, 0, "12:24:14.000"}};
  // clang-format on
  Open(Config("%T"));
  std::string expected;
  for (const auto& row : kInstants) {
    fake.fine_second = kStart + row.fine;
    fake.coarse_second = kStart + row.coarse;
    fake.millisecond = row.millisecond;
    EXPECT_EQ(LOG_INFO(handle_, "x"), 0);
    expected += std::string(row.stamp) + "   x";
  }
  EXPECT_EQ(Log(), expected);
}

TEST_F(LogLineTest, ChangesOfTheTimeZone) {
  LOG_INFO(Open(Config("%T")), "|");
  setenv("TZ", "XST-2", 1);
  tzset();
  LOG_INFO(handle_, "|");  // within the second
  setenv("TZ", "XST-3", 1);
  fake.SetClock(kStart + 1);  // noticed at the next second, though nobody has called tzset
  LOG_INFO(handle_, "|");
  EXPECT_EQ(Log(), "13:24:14.007   |15:24:14.007   |16:24:15.007   |");
}

TEST_F(LogLineTest, UnusableClockAndHeader) {
  char text[] = "x";
  Open(Config("%D%T%E"));
  fake.SetClock(-1);
  EXPECT_EQ(LOG_INFO(handle_, "x"), 12);
  fake.SetClock(kNoYear);
  EXPECT_EQ(LOG_INFO(handle_, "x"), 10);
  fake.SetClock(kStart);
  fake.millisecond = 1000;
  EXPECT_EQ(LOG_INFO(handle_, "x"), 10);
  fake.millisecond = 7;
  EXPECT_EQ(LogMsg(&Record(), std::string(1000, 't').c_str(), text), 10);
  EXPECT_EQ(Errors(),
            "logMsgWriteFile strftime failed(errorcode:0).\n"
            "logMsgWriteFile strftime sprintf(errorcode:-1).\n"
            "logMsgWriteFile sprintf failed(errorcode:-1).\n");
  EXPECT_EQ(LOG_INFO(handle_, "y"), 0);
  EXPECT_EQ(Log(), "2026-11-16 13:24:14.007 [INFO]    y");
}

}  // namespace
