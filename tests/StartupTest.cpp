// From a configuration record to an open file and its first records, or to a result that says why not.
#include "Common/Handles.h"
#include "TestSupport.h"

namespace {

using StartupTest = LogTest;

TEST_F(StartupTest, RefusedRecords) {
  const Settings cases[] = {{.limit = 0}, {.name = ""}, {.mode = 0},
                            {.mode = 4},  {.level = 0}, {.level = 10}};
  for (const Settings& settings : cases) {
    EXPECT_EQ(Start(settings), 1);
    EXPECT_EQ(Bars(Errors(), written_), "|77");
  }
  const LogConfigRecEx good = Settings{}.Config();
  EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&good, nullptr) + LOG_MODULE_INIT_New_Ex(nullptr, &written_), 2);
  EXPECT_EQ(LOG_MODULE_INIT_Ex(nullptr, &written_), 1);
  EXPECT_TRUE(fs::is_empty("."));
}

TEST_F(StartupTest, LimitsBeyondTheLargestFileMeanTheLargest) {
  for (const uint32 limit : {1U << 31, UINT32_MAX}) {
    WriteFile("app.log", "before");
    for (const uint32 mode : {1U, 2U, 3U}) {
      Open({.limit = limit, .mode = mode});
      EXPECT_EQ(Record().max_file_size, 2147483647U);
    }
    EXPECT_EQ(Bars(Log(), Errors()), "before|");
  }
}

TEST_F(StartupTest, FilesStayOutOfThePlacesOfClosedStreams) {
  for (const int place : {STDIN_FILENO, STDERR_FILENO}) {
    const vintra::FileDescriptor kept(fcntl(place, F_DUPFD_CLOEXEC, 10));
    close(place);
    Open({.limit = 10});
    EXPECT_EQ(Write(10), 0);
    EXPECT_GT(fileno(Record().file_out), STDERR_FILENO);
    EXPECT_EQ(Write(12), 0) << "in a file started over";
    EXPECT_GT(fileno(Record().file_out), STDERR_FILENO);
    EXPECT_EQ(Bars(Log().size(), fcntl(fileno(Record().file_out), F_GETFD), fcntl(place, F_GETFD)),
              Bars(12, FD_CLOEXEC, -1));
    EXPECT_EQ(dup2(kept.get(), place), place);
  }
}

TEST_F(StartupTest, FileNames) {
  const std::string dir = folder_, own = dir + "x.so", far = "/" + std::string(248, 'l') + "/x.so";
  const std::string under = std::string(247, 'l') + "/", both = Repeat("n", 63) + "." + Repeat("e", 62);
  const std::string init = "LOG_MODULE_INIT_Ex ", front = init + "file_name";
  const std::string back = ") has a base name or extension of more than 63 characters.\n";
  MakeFile("plain", 0);
  fs::create_directory("taken.log");
  // The outcome is the file that is there after 0, and otherwise the message.
  // clang-format off
  const struct { std::string library_file, name; sint32 code; std::string outcome; } cases[] = {
      {own, "w\\d\\app.log", 0, "w/d/app.log"}, {own, "/" + dir + "x/a.b.c", 0, "x/a.b.c"}, {own, both, 0, both}, {own, dir, 1, front + " is null\n"},
      {own, dir + ".hidden", 1, front + " is null\n"}, {own, "n" + both, 1, front + "(n" + both + back}, {own, both + "e", 1, front + "(" + both + "e" + back},
      {own, dir + std::string(260 - dir.size(), 'n'), 1, front + "(" + dir + std::string(260 - dir.size(), 'n') + back},
      {own, "plain/x/a", 4, init + "create path(" + dir + "plain/x/) failed.\n"},
      {own, "taken.log", 5, init + "open file(" + dir + "taken.log) for write failed.\n"},
      {far, "123456789/app.log", 9, ""}, {far, "12345678/app.log", 4, ""},  // folders of 260 and 259 characters
      {under + "x", "1234567.log", 0, under + "1234567.log"}, {under + "x", "12345678.log", 5, ""}};  // 259 and 260
  // clang-format on
  for (const auto& [library_file, name, code, outcome] : cases) {
    fake.library_file = library_file;
    EXPECT_EQ(Start({"%E", 0, 100, name}), code) << name;
    EXPECT_EQ(Bars(written_ == 77, LOG_INFO(handle_, "x")), code == 0 ? "0|0" : "1|1");
    EXPECT_EQ(code == 0 ? ReadFile(outcome) : Errors(), code == 0 ? "[INFO]    x" : outcome);
  }
}

TEST_F(StartupTest, PlainRecordScramblesAndUnterminatedFieldsAreReadToTheirWidth) {
  LogConfigRecEx extended = Settings{"", 4096}.Config();
  std::memset(extended.log_format, ' ', sizeof extended.log_format);
  std::memcpy(extended.log_format + 62, "%E", 2);
  LogConfigRec config{};
  std::memcpy(&config, &extended.log_file_name, sizeof config);  // the same fields, one after the other
  EXPECT_EQ(LOG_MODULE_INIT_Ex(&config, &handle_) + LOG_INFO(handle_, "x"), 0);
  EXPECT_EQ(Log(), "") << "below the threshold";
  Close();
  EXPECT_EQ(Unscrambled(Log()), "[INFO]    x");
  fs::remove("app.log");
  std::memset(extended.module_name, 'm', sizeof extended.module_name);
  EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&extended, &handle_), 0);
  EXPECT_EQ(LOG_INFO(handle_, "x") + LOG_MSG_FLUSH(handle_), 0);
  EXPECT_EQ(Log() + Errors().substr(0, 34),
            "[INFO]  " + std::string(63, 'm') + "  xLOG_MODULE_INIT_Ex module_name(mmm");
}

const std::string kHeader = "[TRACE]    ", kNone = kHeader + "\n\n";
const std::string kSystem =
    kHeader + "\nSystem name: unix, Host name: box1, Hardware: unix, Release: unix, Version: unix\n";

TEST_F(StartupTest, Banners) {
  const std::string cpu = "CPU cpu 5\nCPU: ", disk = "\nmem 1\nHard Disk Size: ";
  // clang-format off
  const struct { const char *system, *process; std::string text; int lines = 40; unsigned long long blocks = 393216;
                 sint32 code = 0; uint32 level = 1; const char *name = "app.log", *host = "box1", *field = "unix"; } cases[] = {
      {"", "", ""}, {"%O%N%C", "%P%N", ""}, {"%O%C%M", "%P%T", "", 40, 1, 0, Log_Level_Debug}, {"% O", "", kSystem + "\n"},
      {"%O%C%M", "%N", kSystem + cpu + "2 cores" + disk + "1536MB. "}, {"%o", "", kNone + "\n"}, {"%N", "%p", kHeader + "[]"},
      {"%O", "%P%T", kSystem + "\n\r\n" + kHeader + "[ 4242  4243 ]"}, {"%N", "%T", kHeader + "[ 4243 ]"},
      {"%C%M", "", kNone + "CPU: 0 cores" + disk + "1MB. ", 4, 256}, {"%C%M", "", kNone + cpu + "0 cores\nmem 1\n", 5, 0},
      {"%C%M", "", kNone + cpu + "1 cores" + disk + "0MB. ", 19, 255}, {"%C%M", "", kNone + "CPU: 0 cores\n", 0, 0},
      {"%C%M", "", kNone + "\nHard Disk Size: 4398046511104MB. ", -1, 1ULL << 50}, {"%M", "", kNone + "\n", -1, 0},  // without files
      {"%O", "%P", "", 0, 0, 13, 1, "app.log", "box1", ""}, {"%O", "%P", "", 0, 0, 13, 9, "app.log", ""},
      {"%O", "%P", "", 0, 0, 7, 1, "/dev/full"}, {"%N", "%P", "", 0, 0, 7, 1, "/dev/full"},
      {"%C", "%N", kNone + "CPU: 0 cores\n", 0, 0, 0, 1, "app.log", "", ""}};
  // clang-format on
  for (const auto& row : cases) {
    for (const auto& kind : {"cpu"s, "mem"s}) {
      std::ofstream file(kind + "info");
      for (int number = 1; number <= row.lines; ++number) file << kind << " " << number << "\n";
      if (row.lines < 0) fs::remove(kind + "info");
    }
    std::tie(fake.blocks, fake.host, fake.system_field) = std::tuple(row.blocks, row.host, row.field);
    fs::remove("app.log");
    EXPECT_EQ(Start({"%E%N", 0, 1U << 30, row.name, 1, 0, 0, row.level, 0, row.system, row.process}),
              row.code);
    EXPECT_EQ(written_ == null_log_handle, row.code != 0);
    EXPECT_EQ(Log(), row.text) << row.system;
  }
}

TEST_F(StartupTest, LongestBanners) {
  // A line counts as one for every 255 bytes, its end included; of a longer one that much is shown. The
  // host's name gives way: the rest takes 866 of the 1023 bytes.
  const std::string longest(254, 'c');
  WriteFile("cpuinfo", "\n\n\n" + longest + "\n" + longest + "c\n");
  WriteFile("meminfo", longest + "m\n");
  fake.blocks = 1;
  fake.host = std::string(255, 'h');
  fake.system_field = std::string(64, 'u');
  fake.pid = fake.tid = 2147483647;
  std::string text = kSystem + "CPU " + longest + "cCPU: 0 cores\n" + longest + "mHard Disk Size: 0MB. \r\n";
  text.replace(text.find("box1"), 4, std::string(157, 'h')).append(kHeader + "[ 2147483647  2147483647 ]");
  for (std::size_t at; (at = text.find("unix")) != std::string::npos;) text.replace(at, 4, fake.system_field);
  Open({.format = "%E%N%C", .system = "%O%C%M", .process = "%P%T"});
  EXPECT_EQ(Log(), text);
}

}  // namespace
