// The records that start-up writes about the system and the process.
#include "TestSupport.h"

namespace {

class BannerTest : public LogTest {
 protected:
  BannerTest() {
    fake.host = "box1";
    fake.system_field = "unix";
    fake.pid = 4242;
    fake.tid = 4243;
    SetPlatform(40, 2, 393216);
  }
  // Lines "cpu 1", "mem 1" and so on, -1 for a missing file, and the blocks of "/".
  void SetPlatform(int cpu_lines, int memory_lines, unsigned long long blocks) const {
    fake.blocks = blocks;
    for (const auto& [name, text, count] :
         {std::tuple("cpuinfo", "cpu ", cpu_lines), {"meminfo", "mem ", memory_lines}}) {
      std::ofstream file(folder_ / name);
      for (int line = 1; line <= count; ++line) file << text << line << "\n";
      if (count < 0) fs::remove(folder_ / name);
    }
  }
  static LogConfigRecEx Banners(const char* system, const char* process, const char* name = "app.log") {
    LogConfigRecEx config = Config("%E%N%C", 0, 1U << 30, name);
    vintra::CopyText(config.sysconf_format, system);
    vintra::CopyText(config.PidandTid, process);
    return config;
  }
  // What the start-up's records hold.
  std::string Written(const LogConfigRecEx& config) {
    Open(config);
    return Log();
  }
  const std::string header_ = "[TRACE]    ";
  const std::string os_ =
      header_ + "\nSystem name: unix, Host name: box1, Hardware: unix, Release: unix, Version: unix\n";
};

TEST_F(BannerTest, Directives) {
  const std::string cpu = "CPU cpu 5\nCPU: 2 cores", memory = "mem 1\nHard Disk Size: 1536MB. ";
  // clang-format off
  const struct { const char *system, *process; std::string text; } cases[] = {
      {"", "", ""}, {"%N", "%N", ""}, {"%O%N%C", "%P%N", ""}, {"%O%C%M", "%N", os_ + cpu + "\n" + memory},
      {"% O", "", os_ + "\n"}, {"%C", "", header_ + "\n\n" + cpu + "\n"}, {"%M", "", header_ + "\n\n\n" + memory},
      {"%o", "", header_ + "\n\n\n"}, {"%N", "%p", header_ + "[]"}, {"%N", "%P", header_ + "[ 4242 ]"},
      {"%N", "%T", header_ + "[ 4243 ]"}, {"%O", "%P%T", os_ + "\n\r\n" + header_ + "[ 4242  4243 ]"}};
  // clang-format on
  for (const auto& row : cases) EXPECT_EQ(Written(Banners(row.system, row.process)), row.text) << row.system;
  LogConfigRecEx higher = Banners("%O%C%M", "%P%T");
  higher.log_level = Log_Level_Debug;
  EXPECT_EQ(Written(higher), "");
  fake.pid = fake.tid = 2147483647;
  EXPECT_EQ(Written(Banners("", "%P%T")), header_ + "[ 2147483647  2147483647 ]");
}

TEST_F(BannerTest, PlatformsThatGiveLessOrMoreThanUsual) {
  const LogConfigRecEx config = Banners("%O%C%M", "");
  // clang-format off
  constexpr struct { int cpu, memory; unsigned long long blocks; const char* text; } kCases[] = {
      {4, 1, 256, "CPU: 0 cores\nmem 1\nHard Disk Size: 1MB. "}, {5, 1, 0, "CPU cpu 5\nCPU: 0 cores\nmem 1\n"},
      {19, 1, 255, "CPU cpu 5\nCPU: 1 cores\nmem 1\nHard Disk Size: 0MB. "}, {0, 0, 0, "CPU: 0 cores\n"},
      {-1, -1, 1ULL << 50, "\nHard Disk Size: 4398046511104MB. "}, {-1, -1, 0, "\n"}};
  // clang-format on
  for (const auto& row : kCases) {
    SetPlatform(row.cpu, row.memory, row.blocks);
    EXPECT_EQ(Written(config), os_ + row.text);
  }
  // A line counts as one for every 255 bytes, its end included; of a longer one that much is shown.
  const std::string longest(254, 'c');
  std::ofstream(folder_ / "cpuinfo") << "\n\n\n" << longest << "\n" << longest << "c\n";
  std::ofstream(folder_ / "meminfo") << longest << "m\n";
  fake.blocks = 1;
  fake.host = std::string(255, 'h');
  std::string text = os_ + "CPU " + longest + "cCPU: 0 cores\n" + longest + "mHard Disk Size: 0MB. ";
  text.replace(text.find("box1"), 4, fake.host);
  EXPECT_EQ(Written(config), text);
  fake.system_field = std::string(64, 'u');
  while (text.find("unix") != std::string::npos) text.replace(text.find("unix"), 4, fake.system_field);
  text.erase(text.find('h'), 255 - 157);  // the rest takes 866 of the 1023 bytes
  EXPECT_EQ(Written(config), text);
}

TEST_F(BannerTest, FailuresEndTheStartUp) {
  // clang-format off
  constexpr struct { const char *system, *name, *host, *field; LogLevel level; sint32 code; } kCases[] = {
      {"%O", "app.log", "box1", "", Log_Level_Trace, 13}, {"%O", "app.log", "", "unix", Log_Level_Disable, 13},
      {"%O", "/dev/full", "box1", "unix", Log_Level_Trace, 7}, {"%N", "/dev/full", "", "", Log_Level_Trace, 7},
      {"%C", "app.log", "", "", Log_Level_Trace, 0}};
  // clang-format on
  for (const auto& row : kCases) {
    fake.host = row.host;
    fake.system_field = row.field;
    LogConfigRecEx config = Banners(row.system, "%P", row.name);
    config.log_level = row.level;
    handle_ = 77;
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle_), row.code);
    EXPECT_EQ(handle_ == null_log_handle, row.code != 0);
  }
}

}  // namespace
