// When a file is emptied, left, removed and flushed, and what happens when it cannot be.
#include <stdio_ext.h>

#include "Common/Handles.h"
#include "TestSupport.h"
#include "VintraModule/Retention.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

using RotationTest = LogTest;

std::uintmax_t SizeOnDisk() { return fs::file_size("app.log"); }

// The modes, by what stands before the number of a file.
const std::pair<LogMode, std::string> kModes[] = {
    {Log_Mode_Simple, "app"}, {Log_Mode_Rollback, "app"}, {Log_Mode_Date, "app_20261116_"}};

TEST_F(RotationTest, ModesFillTheFirstFileWithRoomAndMoveOnAtTheirLimit) {
  // clang-format off
  const struct { uint32 ring; std::vector<std::uintmax_t> found, records, left; const char* format = "none"; } cases[] = {
      // A ring of 99: the simple mode. Sizes are those of the files 000, 001, 002, and of what is written.
      {99, {0}, {99, 3}, {102}}, {99, {0}, {99, 3, 100}, {100}}, {99, {0}, {100, 10}, {10}}, {99, {0}, {3}, {3}, "%N"},
      {99, {99}, {3}, {104}, "%N"}, {99, {100}, {3}, {3}, "%N"}, {99, {99}, {3}, {3}, "%N%C"}, {99, {(1ULL << 32) + 10}, {3}, {3}},
      {20, {}, {}, {0}}, {20, {100, 250, 99}, {2}, {100, 250, 101}}, {20, {99, 0}, {2, 3}, {101, 3}}, {2, {100}, {5}, {100, 5}},
      {2, {100, 101, 5}, {7}, {7, 101, 5}}, {1, {100}, {}, {0}}, {20, {100, 5}, {}, {0, 5}, "%C"}, {0, {150, 5}, {}, {0, 5}}, {0, {50}, {}, {50}},
      {3, {0, 7}, {40, 60, 10}, {110, 7}}, {3, {0, 7}, {101, 102, 103, 9}, {9, 102, 103}}, {3, {101, 102, 3}, {98, 4}, {4, 102, 101}},
      {1, {}, {101, 9}, {9}}, {0, {}, {101, 102, 9}, {101, 102, 9}}};
  // clang-format on
  for (const auto& [mode, front] : kModes) {
    for (const auto& row : cases) {
      if ((row.ring == 99) != (mode == Log_Mode_Simple)) continue;
      std::string left;
      for (std::size_t at = 0; at < 3; ++at) {
        const std::string file = front + (row.ring == 99 ? "" : "00" + std::to_string(at)) + ".log";
        if (at < row.found.size()) MakeFile(file, row.found[at]);
        if (at < row.left.size()) left += file + ":" + std::to_string(row.left[at]) + " ";
      }
      Open({row.format, 0, 100, "app.log", mode, row.ring});
      for (const std::size_t size : row.records) EXPECT_EQ(Write(size), 0);
      EXPECT_EQ(Files(), left);
      for (const auto& entry : fs::directory_iterator(".")) fs::remove(entry);
    }
  }
}

TEST_F(RotationTest, DateModeFollowsTheDayOfTheStampAndRemovesFilesAtEveryRoll) {
  setenv("TZ", "XST-2", 1);
  constexpr std::time_t kMidnight = 1794866400;  // between 2026-11-16 and -17, two hours before that of UTC
  const std::string old = "app_20261114_000.log", both = "app_20261116_001.log:30 app_20261117_000.log:";
  const std::string later = "app_20261116_000.log:126 " + both;
  const std::string full = "app_20261116_000.log:126 app_20261117_000.log:500 ";  // due for a roll
  // A file of the 14th is removed by a roll, but not by a record alone.
  // clang-format off
  const struct { std::time_t clock; const char* text; std::string files; sint32 code = 0; bool old = false; } steps[] = {
      {-1, "x", full, 12}, {kNoYear, "x", full, 12}, {std::time_t{1} << 43, "x", full, 12}, {-(std::time_t{1} << 43), "x", full, 12},
      {kMidnight - 1, "late", later + "500 ", 0, true}, {kMidnight, "early", later + "31 "},
      {kMidnight, "again", old + ":5 " + later + "64 ", 0, true}, {kMidnight - 60, "back", "app_20261116_000.log:30 " + both + "64 "}};
  // clang-format on
  const Settings settings{"%D%T%N", 0, 100, "app.log", Log_Mode_Date, 2, 2};
  const LogConfigRecEx config = settings.Config();
  for (const char* file : {old.c_str(), "app_20261117_000.log"}) MakeFile(file, 500);
  fake.SetClock(kMidnight - 2);
  EXPECT_EQ(LOG_INFO(Open(settings), "%100s", ""), 0);
  for (const auto& row : steps) {
    fake.SetClock(row.clock);
    fake.seconds_per_reading = row.clock == kMidnight - 1;  // whoever reads it twice sees two days
    if (row.old) MakeFile(old, 5);
    EXPECT_EQ(LOG_INFO(handle_, "%s", row.text), row.code);
    EXPECT_EQ(Files(), row.files) << row.text;
    EXPECT_EQ(row.code != 0 ? LOG_MODULE_INIT_New_Ex(&config, &written_) : 0, row.code);
  }
  const std::string night = "2026-11-17 00:00:00.007   ";
  EXPECT_EQ(ReadFile("app_20261116_001.log") + ReadFile("app_20261117_000.log"),
            "2026-11-16 23:59:59.007   late" + night + "early\r\n" + night + "again");
  EXPECT_EQ(written_, handle_) << "as it was before the failures";
  EXPECT_EQ(Errors(), "");
}

TEST_F(RotationTest, NumberedFilesThatCannotBeUsed) {
  for (const auto& [mode, front] : {kModes[1], kModes[2]}) {
    // Paths of 259 characters, which one more digit or letter makes too long.
    std::string base = folder_ + std::string(200, 'd') + "/";
    base.resize(255 - front.size(), 'n');
    fs::create_directory(front + "001.log");
    const std::tuple<std::string, uint32, uint32, sint32> starts[] = {
        {base + ".log", 0, 999, 0}, {base + "n.log", 0, 0, 5}, {"app.log", 2, 0, 0}, {"app.log", 2, 0, 5}};
    for (const auto& [name, ring, number, code] : starts) {
      EXPECT_EQ(Start({"none", 0, 100, name, mode, ring}), code);
      if (code != 0) continue;
      Record().cur_log_file_ID = number;
      for (const sint32 written : {0, 5, 1}) EXPECT_EQ(Write(101), written);
    }
    const std::string report = "errno = 5\nBad file handle " + std::to_string(NextDescriptor());
    Errors();
    for (const char* look : {"fstat", "fstat2"}) {  // the scan's at the file, and the size check's
      fake.NoteCalls(look);
      EXPECT_EQ(Start({"none", 0, 100, "free.log", mode, 2}), 5);
      EXPECT_EQ(Errors(), report + (look == "fstat"s && mode == Log_Mode_Date ? "\n" : ".\n"));
    }
    fake.notes_calls = false;
  }
}

TEST_F(RotationTest, RemovesFilesOfTheirAgeAndName) {
  // clang-format off
  const struct { const char* now; uint32 days; const char *removed, *kept, *zone = "CET-1CEST,M3.5.0,M10.5.0/3"; } ages[] = {
      {"2026-11-16 13:24:14", 3, "20261113", "20261114"}, {"2026-11-16 00:00:00", 1, "20261115", "20261116"},
      {"2026-11-16 23:59:59", 7, "20261109", "20261110"}, {"2027-01-01 00:00:00", 1, "20261231", "20270101"},
      // Summer, whose ages count from 1 o'clock, days of 23 and of 25 hours; at last a winter that is the exception.
      {"2026-07-10 00:59:59", 1, "20260708", "20260709"}, {"2026-07-10 01:00:00", 1, "20260709", "20260710"},
      {"2026-03-29 23:59:59", 1, "20260328", "20260329"}, {"2026-03-30 00:30:00", 1, "20260328", "20260329"},
      {"2026-03-30 01:00:00", 1, "20260329", "20260330"}, {"2026-10-25 23:59:59", 1, "20261024", "20261025"},
      {"2026-10-26 00:00:00", 1, "20261025", "20261026"}, {"2026-11-16 13:24:14", 4294967295, "", "00000000"},
      {"2026-11-16 13:24:14", 365, "00000000", "20261117"}, {"2026-11-16 13:24:14", 0, "", "20000101"},
      {"2028-03-01 12:00:00", 1, "20280229", "20280301"}, {"2026-12-10 23:59:59", 1, "20261209", "20261210", "IST-1GMT0,M10.5.0,M3.5.0/1"}};
  const struct { const char* log; std::vector<const char*> removed, kept; } names[] = {
      {"app.log", {"app_20200101_000.log", "appx20200101y9z_.log"}, {"app_20200101_000.txt", "app_2020010_000.log", "app_2020010x_000.log"}},
      {"app.log", {}, {"app_20200101_1000.log", "app_20200101_00.log", "app_20200101_000", "xpp_20200101_000.log", "app_x_20200101_000.log"}},
      {"app.log", {}, {"ap_20200101_000.log", "x\\app_20200101_000.log", "app_20200101_000.log.gz"}},
      {"app", {"app_20200101_000"}, {"app_20200101_000.log"}}, {"app.", {"app_20200101_000."}, {}},
      {"a.b.log", {"a.b_20200101_000.log"}, {"a_20200101_000.log"}}};
  // clang-format on
  for (const auto& [now, days, old_day, kept_day, zone] : ages) {
    setenv("TZ", zone, 1);
    std::tm local{};
    local.tm_isdst = -1;
    strptime(now, "%Y-%m-%d %H:%M:%S", &local);
    fake.SetClock(std::mktime(&local));
    const std::string old = "app_"s + old_day + "_000.log", kept = "app_"s + kept_day + "_000.log";
    for (const std::string& file : {old, kept}) MakeFile(file, 5);
    Open({"", 0, 100, "app.log", Log_Mode_Date, 0, days});
    EXPECT_EQ(Bars(fs::exists(old), ReadFile(kept).size()), Bars(*old_day == '\0', 5)) << now << " " << days;
    for (const auto& entry : fs::directory_iterator(".")) fs::remove(entry);
  }

  for (const auto& [log, removed, kept] : names) {
    for (const auto& files : {removed, kept})
      for (const char* file : files) MakeFile(file, 5);
    for (const int age : {30, 0}) {
      fake.SetClock(kStart - std::time_t{86400} * age);
      Open({"", 0, 100, log, Log_Mode_Date, 0, 7});
    }
    for (const char* file : removed) EXPECT_FALSE(fs::exists(file)) << file;
    for (const char* file : kept) EXPECT_TRUE(fs::remove(file)) << file;
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 1) << "today's, not that of the log before";
    for (const auto& entry : fs::directory_iterator(".")) fs::remove(entry);
  }
}

TEST_F(RotationTest, RemovingEndsWhereAFileStaysOrTheClockDoes) {
  const std::string folder = "app_20200101_000", file = "app_20200101_001";
  // clang-format off
  const struct { std::time_t clock; std::size_t length; std::vector<std::string> list; sint32 code; } cases[] = {
      {kStart, 243, {file, folder, ""}, -1}, {-1, 243, {file, file}, 12}, {kNoYear, 243, {file, file}, 12}, {kStart, 244, {file}, 0},
      {kStart, 243, {file}, 0}};  // skips a path of 260 characters
  // clang-format on
  fs::create_directory(folder);
  MakeFile(file, 5);
  LogHandleRec handle{};
  vintra::CopyText(handle.log_file_name, "app");
  for (const auto& row : cases) {
    EXPECT_TRUE(fs::exists(folder) && fs::exists(file));
    fake.SetClock(row.clock);
    vintra::CopyText(handle.log_file_path, "." + std::string(row.length - 1, '/'));
    FileList* list = nullptr;
    for (const auto& name : row.list) vintra::CopyText((list = new FileList{{}, list})->file_name, name);
    EXPECT_EQ(DeleteLogFile(list, 1, &handle), row.code);
  }
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(RotationTest, FlushesWhenTheThresholdIsReached) {
  for (const uint32 threshold : {0U, 1U, 4096U, 65536U, 200000U}) {
    Open({"%C", threshold});
    uint32 flushed = 0;
    for (uint32 written = 100; written < threshold + 1000; written += 100) {
      EXPECT_EQ(Write(100), 0);
      if (written - flushed >= threshold) flushed = written;
      ASSERT_EQ(Record().flush_size, flushed) << threshold;
      ASSERT_TRUE(SizeOnDisk() == flushed || threshold > 65536);
    }
    // A flush is one write: the stream holds what gathers until then, up to some 64 KiB, and not much more.
    EXPECT_GE(__fbufsize(Record().file_out), threshold == 0 ? 0 : std::min(threshold, 65536U) + 2048);
    EXPECT_LE(__fbufsize(Record().file_out), threshold == 0 ? 4096 : 65536 + 4096);
    for (int call = 0; call < 2; ++call) EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
    EXPECT_EQ(SizeOnDisk(), Record().file_size);
  }
  const auto buffer = static_cast<uint32>(__fbufsize(Record().file_out));
  for (const uint32 size :
       {buffer - 301, buffer - 300, buffer - 299}) {  // about what the buffer has room for
    for (const uint32 piece : {100U, 100U, size + 100}) EXPECT_EQ(Write(piece), 0);
    EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
    EXPECT_EQ(SizeOnDisk(), Record().file_size);
  }
  Record().max_file_size = UINT32_MAX;
  Record().file_size = UINT32_MAX - 15;
  for (const uint32 size : {UINT32_MAX - 5, UINT32_MAX}) {
    EXPECT_EQ(Write(10), 0);
    EXPECT_EQ(Record().file_size, size) << "full, and not empty again";
  }
}

TEST_F(RotationTest, FirstRecordAfterARolloverIsFlushed) {
  // Nothing flushed before the roll; a first record as long as what was flushed; a longer one.
  for (const auto& [flushed, first] : {std::pair(0U, 50U), {60U, 60U}, {60U, 90U}}) {
    Open({"%C", 4096, 120});
    Write(60);
    if (flushed != 0) LOG_MSG_FLUSH(handle_);
    Write(60);
    EXPECT_EQ(SizeOnDisk(), flushed);
    fake.SetClock(-1);
    EXPECT_EQ(Write(first), 12);  // empties the file all the same
    fake.SetClock(kStart);
    for (const std::size_t size : {first, 10U}) {  // and not the second one
      Write(size);
      EXPECT_TRUE(SizeOnDisk() == first && Record().flush_size == first);
    }
  }
}

TEST_F(RotationTest, FailuresOfReopeningWritingFlushingAndClosing) {
  Open({"", 0, 10, "sub/app.log"});
  Write(10);
  fs::remove_all("sub");
  for (const sint32 code : {5, 1}) EXPECT_EQ(Write(10), code) << "from then on without a file";
  EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
  EXPECT_EQ(Errors(), "LogMsg open file(" + folder_ + "sub/app.log) for write failed.\n");

  Open({"", 0, 1U << 30, "/dev/full"});
  const std::string failed = "(" + std::to_string(fileno(Record().file_out)) + ") = -1 failed\n";
  errno = ENOENT;
  EXPECT_EQ(Write(10), 7);
  EXPECT_EQ(Bars(errno, Record().file_size, Record().flush_size), Bars(ENOENT, 10, 0));
  EXPECT_EQ(Write(100000), 7);
  EXPECT_EQ(Record().file_size, 14U) << "the header stands, the message does not";
  EXPECT_EQ(Errors(), "LogMsg fflush" + failed + "logMsgWriteFile vfprintf failed(errorcode:0).\n");

  Open({"", 4096, 1U << 30, "/dev/full"});
  EXPECT_EQ(Write(10), 0);
  for (const sint32 code : {7, 0}) EXPECT_EQ(LOG_MSG_FLUSH(handle_), code) << "not tried again";
  EXPECT_EQ(Write(10), 0);
  const vintra::FilePtr read_only(std::fopen("/dev/null", "r"));
  FILE* const file_out = std::exchange(Record().file_out, read_only.get());
  EXPECT_EQ(Write(10), 7);
  Record().file_out = file_out;
  Close();
  EXPECT_EQ(Errors(), "LogMsg fflush" + failed + "logMsgWriteFile fwrite failed(errorcode:0).\n" +
                          "LogMsg fclose" + failed);
}

TEST_F(RotationTest, FilesUnderOtherProgramsHands) {
  Open({"", 0, 100});
  for (const bool after_roll : {false, true}) {
    if (after_roll) Write(100), Write(10);
    EXPECT_NE(fcntl(fileno(Record().file_out), F_GETFD) & FD_CLOEXEC, 0);
    Write(20);
    fs::resize_file("app.log", 0);
    Write(12);
    EXPECT_EQ(Log(), "\r\n  xxxxxxxxxx") << "no hole, and the separator that the counted bytes call for";
  }
}

}  // namespace
