// Which files the date mode removes, and when.
#include "TestSupport.h"
#include "VintraModule/LogNames.h"
#include "VintraModule/Retention.h"

namespace {

struct RetentionTest : LogTest {
  RetentionTest() { setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1); }
  LOGHANDLE OpenDated(uint32 days, const char* name = "app.log") {
    return Open(Config("", 0, 100, name, Log_Mode_Date, 0, days));
  }
};

TEST_F(RetentionTest, Ages) {
  // clang-format off
  constexpr struct { const char* now; uint32 days; const char *removed, *kept; } kCases[] = {
      {"2026-11-16 13:24:14", 3, "20261113", "20261114"}, {"2026-11-16 13:24:14", 1, "20261115", "20261116"},
      {"2026-11-16 00:00:00", 1, "20261115", "20261116"}, {"2026-11-16 23:59:59", 7, "20261109", "20261110"},
      {"2027-01-01 00:00:00", 1, "20261231", "20270101"}, {"2028-03-01 12:00:00", 1, "20280229", "20280301"},
      {"2028-03-01 12:00:00", 2, "20280228", "20280229"}, {"2027-03-01 12:00:00", 1, "20270228", "20270301"},
      {"2026-07-10 00:59:59", 1, "20260708", "20260709"},  // summer: ages count from 1 o'clock
      {"2026-07-10 01:00:00", 1, "20260709", "20260710"},
      {"2026-03-29 23:59:59", 1, "20260328", "20260329"},  // a day of 23 hours
      {"2026-03-30 00:30:00", 1, "20260328", "20260329"}, {"2026-03-30 01:00:00", 1, "20260329", "20260330"},
      {"2026-10-25 23:59:59", 1, "20261024", "20261025"},  // a day of 25 hours
      {"2026-10-26 00:00:00", 1, "20261025", "20261026"}, {"2026-11-16 13:24:14", 4294967295, "", "00000000"},
      {"2026-11-16 13:24:14", 365, "00000000", "20261117"}, {"2026-11-16 13:24:14", 0, "", "20000101"}};
  // clang-format on
  for (const auto& row : kCases) {
    SCOPED_TRACE(std::string(row.now) + " " + std::to_string(row.days));
    std::tm local{};
    local.tm_isdst = -1;
    strptime(row.now, "%Y-%m-%d %H:%M:%S", &local);
    fake.SetClock(std::mktime(&local));
    const std::string removed = std::string("app_") + row.removed + "_000.log";
    const std::string kept = std::string("app_") + row.kept + "_000.log";
    MakeFile(removed, 5);
    MakeFile(kept, 5);
    OpenDated(row.days);
    EXPECT_EQ(Exists(removed), *row.removed == '\0');
    EXPECT_TRUE(Exists(kept));
    fs::remove(folder_ / kept);
  }
}

TEST_F(RetentionTest, NamesThatMatchAreTheNamesThatAreMade) {
  // clang-format off
  constexpr struct { const char *log, *entry; bool removed; } kCases[] = {
      {"app.log", "app_20200101_000.log", true}, {"app.log", "appx20200101y9z_.log", true},
      {"app.log", "app_20200101_000.txt", false}, {"app.log", "app_2020010_000.log", false},
      {"app.log", "app_2020010x_000.log", false}, {"app.log", "app_20200101_1000.log", false},
      {"app.log", "app_20200101_00.log", false}, {"app.log", "xpp_20200101_000.log", false},
      {"app.log", "app_x_20200101_000.log", false}, {"app.log", "ap_20200101_000.log", false},
      {"app.log", "x\\app_20200101_000.log", false}, {"app.log", "app_20200101_000", false},
      {"app.log", "app_20200101_000.log.gz", false}, {"app", "app_20200101_000", true},
      {"app", "app_20200101_000.log", false}, {"app.", "app_20200101_000.", true},
      {"a.b.log", "a.b_20200101_000.log", true}, {"a.b.log", "a_20200101_000.log", false}};
  // clang-format on
  for (const auto& row : kCases) {
    SCOPED_TRACE(std::string(row.log) + " " + row.entry);
    MakeFile(row.entry, 5);
    OpenDated(7, row.log);
    EXPECT_EQ(Exists(row.entry), !row.removed);
    fs::remove(folder_ / row.entry);
    sint8 name[vintra::kFileNameSize];
    vintra::DateName(Record(), 999, name);
    const auto day = vintra::DayOfEntry(Record(), std::string(name) + Record().log_file_ext).value();
    EXPECT_EQ(std::tuple(day.tm_year, day.tm_mon, day.tm_mday), std::tuple(126, 10, 16));
  }
}

TEST_F(RetentionTest, EndsEarlyWhereAFileStaysOrTheClockDoes) {
  const auto remove = [this](std::size_t folder_length, std::initializer_list<const char*> names) {
    FileList* list = nullptr;
    for (const char* name : names) vintra::CopyText((list = new FileList{{}, list})->file_name, name);
    LogHandleRec handle{};
    vintra::CopyText(handle.log_file_name, "app");
    std::string path = folder_.string() + "/";  // the same folder, written in so many characters
    while (path.size() < folder_length) path += (folder_length - path.size()) % 2 != 0 ? "/" : "./";
    vintra::CopyText(handle.log_file_path, path);
    return DeleteLogFile(list, 1, &handle);
  };
  fs::create_directory(folder_ / "app_20200101_000");
  MakeFile("app_20200101_001", 5);
  EXPECT_EQ(remove(243, {"app_20200101_001", "app_20200101_000", ""}), -1);
  for (const std::time_t clock : {std::time_t{-1}, kNoYear}) {
    fake.SetClock(clock);
    EXPECT_EQ(remove(243, {"app_20200101_001", "app_20200101_001"}), 12);
  }
  fake.SetClock(kStart);
  EXPECT_EQ(remove(244, {"app_20200101_001"}), 0);
  EXPECT_TRUE(Exists("app_20200101_000") && Exists("app_20200101_001")) << "a path of 260 characters";
  EXPECT_EQ(remove(243, {"app_20200101_001"}), 0);
  EXPECT_FALSE(Exists("app_20200101_001"));
  EXPECT_EQ(DeleteLogFile(nullptr, 1, nullptr), 0);
  const vintra::FileListPtr nothing(ListFileName("/nowhere", nullptr));
  EXPECT_TRUE(nothing->file_name[0] == '\0' && nothing->next == nullptr);
}

}  // namespace
