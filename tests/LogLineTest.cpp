// The bytes of a record and of a line of the error log, and what a record costs.
#include "TestSupport.h"
#include "VintraModule/ErrLog.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

using LogLineTest = LogTest;

TEST_F(LogLineTest, LayoutAndScrambling) {
  // clang-format off
  constexpr struct { const char *format, *module_name, *source_file, *separator, *line; } kRows[] = {
      {"%D%T%E%N%C", "", nullptr, "\r\n", "2026-11-16 13:24:14.007 [INFO]    disk full"},
      {"%C%N%L%F%E%T%D", "net", "/src/net/main.src", "\r\n", "2026-11-16 13:24:14.007 [INFO]  net  [main.src] [42] disk full"},
      {"%F%L%C", "net", nullptr, "", "net  disk full"}, {"%L%C", "", "conn.src", "", "  [42] disk full"},
      {"%F%C", "", "a/b.c/", "", "  disk full"}, {"%F%C", "", "conn.src", "", "  [conn.src] disk full"}, {"%d%t%%D%C%", "", nullptr, "", "  disk full"},
      {"N %   C %  ", "", "c", "", "  disk full"}, {"", "", nullptr, "\r\n", "  disk full"}};
  // clang-format on
  for (const uint32 encrypt : {0U, 2U, 1U})
    for (const auto& [format, module_name, source_file, separator, line] : kRows) {
      if (*format == '\0') fs::remove("app.log");  // only "%C" empties a file
      Open({.format = format, .encrypt = encrypt, .module = module_name});
      EXPECT_EQ(SourceInfo(handle_, source_file, 42), handle_);
      for (int record = 0; record < 2; ++record) EXPECT_EQ(LOG_INFO(handle_, "disk %s", "full"), 0);
      EXPECT_EQ(encrypt == 1 ? Unscrambled(Log()) : Log(), line + (separator + std::string(line))) << format;
    }
}

TEST_F(LogLineTest, SourcePositionStaysUntilTheNextOneAndIsBounded) {
  SourceInfo(Open({"%F%L"}), std::string(300, 'n').append(".c").c_str(), 7);
  SourceInfo(SourceInfo(handle_, "other.c", 0), "", 9);
  LOG_INFO(handle_, "|");
  LOG_INFO(VINTRA_HERE(handle_), "|");
  const std::string line = std::to_string(__LINE__ - 1);
  LOG_INFO(SourceInfo(handle_, "z", 2147483647), "|");
  EXPECT_EQ(Log(),
            "  [" + std::string(63, 'n') + "] [7] |  [LogLineTest.cpp] [" + line + "] |  [z] [2147483647] |");
  EXPECT_EQ(SourceInfo(null_log_handle, "a.c", 1), null_log_handle);
}

TEST_F(LogLineTest, LevelsTagsAndThresholds) {
  constexpr sint32 (*kFunctions[])(LOGHANDLE, const sint8*, ...) = {
      LOG_TRACE, LOG_DEBUG, LOG_INFO, LOG_NOTICE, LOG_WARN, LOG_ERROR, LOG_CRIT, LOG_FATAL};
  const std::string words[] = {"TRACE", "DEBUG", "INFO", "NOTICE", "WARN", "ERROR", "CRIT", "FATAL"};
  char text[] = "x";
  for (uint32 threshold = 1; threshold <= 9; ++threshold) {
    fs::remove_all("sub");
    EXPECT_EQ(LOG_LEVEL(Open({.format = "%E", .name = "sub/app.log", .level = threshold})), threshold);
    std::string expected;
    fake.allocations = 0;
    for (uint32 level = 1; level <= 8; ++level) {
      EXPECT_EQ(kFunctions[level - 1](handle_, "x"), 0);
      if (level >= threshold) expected += "[" + words[level - 1] + "]    x";
    }
    EXPECT_EQ(fake.allocations, static_cast<int>(9 - threshold)) << "one for a record, none if dropped";
    EXPECT_EQ(threshold == 1 ? 0 : LogRecord(handle_, "Trace", "%s", text), 0);
    EXPECT_EQ(LogRecord(handle_, nullptr, "%s", text) + LogRecord(handle_, "Info", "%s", nullptr), 2);
    EXPECT_EQ(LogRecord(handle_, "info", "%s", text) + LOG_MSG_FLUSH(handle_), threshold / 9);
    EXPECT_EQ(ReadFile("sub/app.log"), threshold == 9 ? "" : expected + "  x") << "an unknown word passes";
    EXPECT_EQ(fs::exists("sub"), threshold != 9);
  }
}

TEST_F(LogLineTest, RefusedRecordsLeaveNothingBehind) {
  const char* const no_format = nullptr;
  const wchar_t no_character[] = {0x7fffffff, 0};
  LogHandleRec not_live{};
  for (LOGHANDLE handle : {reinterpret_cast<LOGHANDLE>(&not_live), null_log_handle}) {
    LOG_MODULE_DESTORY(&handle);
    EXPECT_EQ(Bars(LOG_INFO(handle, "x"), LOG_MSG_FLUSH(handle), LOG_LEVEL(handle)), "1|1|9");
  }
  LOG_MODULE_DESTORY(nullptr);
  EXPECT_EQ(LOG_INFO(Open({}), no_format), 1);
  fake.allocations = 0;
  EXPECT_EQ(LOG_INFO(handle_, "%ls", no_character), 2);
  EXPECT_EQ(fake.allocations, 1) << "no buffer is large enough, so none is tried";
  EXPECT_EQ(LOG_INFO(handle_, "next"), 0);
  EXPECT_EQ(Log(), "  next");
}

TEST_F(LogLineTest, OneInstantPerStampAndNeverASecondBack) {
  // clang-format off
  constexpr struct { std::time_t fine, coarse; const char* stamp; unsigned short millisecond; bool told = true; sint32 code = 0;
                     const char* zone = "UTC"; } kCases[] = {  // told by tzset of a new time zone
      {0, 0, "13:24:14.999", 999}, {1, 0, "13:24:15.002", 2},  // time() lags
      {1, 2, "13:24:15.999", 999}, {5, 2, "13:24:16.000", 0},  // the second turned in between; time() rules
      {9, 9, "13:24:23.007", 7}, {8, 8, "13:24:23.900", 900},  // the clock is stepped back by one second
      {-3600, -3600, "12:24:14.000", 0}, {-1 - kStart, -1 - kStart, "", 0, true, 12}, {kNoYear, kNoYear, "", 0, true, 10},
      {0, 0, "", 1000, true, 10}, {0, 0, "13:24:14.007", 7},
      // Another time zone within the second, and one that is noticed at the next second by itself.
      {0, 0, "15:24:14.007", 7, true, 0, "XST-2"}, {1, 1, "16:24:15.007", 7, false, 0, "XST-3"}};
  // clang-format on
  Open({"%T%E"});
  std::string expected;
  for (const auto& [fine, coarse, stamp, millisecond, told, code, zone] : kCases) {
    if (kHasOneClock && fine != coarse) continue;
    fake.SetClock(kStart + coarse);
    fake.fine_second = kStart + fine;
    fake.millisecond = millisecond;
    setenv("TZ", zone, 1);
    if (told) tzset();
    EXPECT_EQ(LOG_INFO(handle_, "x"), code);
    if (code == 0) expected += stamp + " [INFO]    x"s;
  }
  EXPECT_EQ(Log(), expected);
  const std::string failed = "logMsgWriteFile strftime ";
  EXPECT_EQ(Errors(), failed + "failed(errorcode:0).\n" + failed + "sprintf(errorcode:-1).\n");
}

TEST_F(LogLineTest, ErrorLog) {
  const std::string name(300, 'n'), text(5000, 't'), stamp = "2026-11-16 13:24:14.007  Errlog:";
  std::string expected = stamp + "w.src(595) x(0).\n";
  EXPECT_EQ(PrintErrLog("a/b/w.src", 595, "x(%d).", 0), static_cast<sint32>(expected.size()));
  if (!kHasOneClock) fake.coarse_second -= 1;  // the clocks stand on two sides of a second's edge
  PrintErrLog(("/" + name).c_str(), 1, "%s", text.c_str());
  expected += stamp + "/" + name + "(1) " + text + "\n";
  for (const auto& [clock, code] : {std::pair(std::time_t{-1}, 12), {kNoYear, 24}}) {
    fake.SetClock(clock);
    EXPECT_EQ(PrintErrLog("w.src", 1, "x"), code);
  }
  EXPECT_EQ(ReadFile("LogModuleErrMsg.log"), expected + ".007  Errlog:w.src(1) x\n");
  for (const std::size_t length : {235U, 236U}) {  // of the longest folder, and a longer one
    const std::string folder(length, 'l');
    fs::create_directory(folder);
    fake.library_file = folder + "/x.so";
    EXPECT_EQ(PrintErrLog("w.src", 1, "x"), length == 235 ? 24 : 0);
    EXPECT_EQ(fs::is_empty(folder), length == 236);
  }
}

}  // namespace
