// The records that start-up writes about the system and the process.
#include "TestSupport.h"

namespace {

class BannerTest : public LogTest {
 protected:
  BannerTest() {
    fake.host = "box1";
    fake.system_field = "unix";
    fake.blocks = 393216;  // 1.5 GiB
    fake.pid = 4242;
    fake.tid = 4243;
    WriteLines("cpuinfo", 40, "cpu ");
    WriteLines("meminfo", 2, "mem ");
  }
  // Lines "<text>1" and so on.
  void WriteLines(const char* name, int count, const std::string& text) const {
    std::ofstream file(folder_ / name);
    for (int line = 1; line <= count; ++line) file << text << line << "\n";
  }
  static LogConfigRecEx Banners(const char* system, const char* process) {
    LogConfigRecEx config = Config("%E%N%C");
    vintra::CopyText(config.sysconf_format, system);
    vintra::CopyText(config.PidandTid, process);
    return config;
  }
  // What the start-up's records hold.
  std::string Written(const LogConfigRecEx& config) {
    Open(config);
    return Log();
  }
};

constexpr char kHeader[] = "[TRACE]    ";
constexpr char kSystem[] = "System name: unix, Host name: box1, Hardware: unix, Release: unix, Version: unix";

TEST_F(BannerTest, Directives) {
  const std::string header = kHeader, os = header + "\n" + kSystem + "\n", next = "\r\n" + header;
  const std::string cpu = "CPU cpu 5\nCPU: 2 cores", memory = "mem 1\nHard Disk Size: 1536MB. ";
  // clang-format off
  const struct { const char *system, *process; std::string text; } cases[] = {
      {"", "", ""}, {"%N", "%N", ""}, {"%O%N%C", "%P%N", ""}, {"%O%C%M", "%N", os + cpu + "\n" + memory},
      {"% O", "", os + "\n"}, {"%C", "", header + "\n\n" + cpu + "\n"}, {"%M", "", header + "\n\n\n" + memory},
      {"%o", "", header + "\n\n\n"}, {"%N", "%p", header + "[]"}, {"%N", "%P", header + "[ 4242 ]"},
      {"%N", "%T", header + "[ 4243 ]"}, {"%O", "%P%T", os + "\n" + next + "[ 4242  4243 ]"}};
  // clang-format on
  for (const auto& row : cases) EXPECT_EQ(Written(Banners(row.system, row.process)), row.text) << row.system;
  LogConfigRecEx higher = Banners("%O%C%M", "%P%T");
  higher.log_level = Log_Level_Debug;
  EXPECT_EQ(Written(higher), "");
}

TEST_F(BannerTest, PlatformsThatGiveLessOrMoreThanUsual) {
  const std::string header = kHeader, os = header + "\n" + kSystem + "\n";
  const LogConfigRecEx config = Banners("%O%C%M", "");
  for (const auto& [lines, text] : {std::pair(4, "CPU: 0 cores"),
                                    {5, "CPU cpu 5\nCPU: 0 cores"},
                                    {0, "CPU: 0 cores"},
                                    {19, "CPU cpu 5\nCPU: 1 cores"}}) {
    WriteLines("cpuinfo", lines, "cpu ");
    EXPECT_EQ(Written(config), os + text + "\nmem 1\nHard Disk Size: 1536MB. ");
  }
  fs::remove(folder_ / "cpuinfo");
  WriteLines("meminfo", 0, "");
  EXPECT_EQ(Written(config), os + "\nHard Disk Size: 1536MB. ");
  fake.blocks = 0;
  EXPECT_EQ(Written(config), os + "\n");
  fs::remove(folder_ / "meminfo");
  fake.blocks = 1ULL << 50;
  EXPECT_EQ(Written(config), os + "\nHard Disk Size: 4398046511104MB. ");

  // A line counts as one for every 255 bytes, its end included; of a longer one that much is shown.
  const std::string longest(254, 'c');
  std::ofstream(folder_ / "cpuinfo") << "\n\n\n" << longest << "\n" << longest << "c\n";
  std::ofstream(folder_ / "meminfo") << longest << "m\n";
  fake.host = std::string(255, 'h');
  fake.blocks = 1;
  std::string expected = os + "CPU " + longest + "cCPU: 0 cores\n" + longest + "mHard Disk Size: 0MB. ";
  expected.replace(expected.find("box1"), 4, fake.host);
  EXPECT_EQ(Written(config), expected);
  fake.system_field = std::string(64, 'u');
  for (std::size_t at = 0; (at = expected.find("unix")) != std::string::npos;) {
    expected.replace(at, 4, fake.system_field);
  }
  expected.erase(expected.find('h'), 255 - 157);  // the rest takes 866 of the 1023 bytes
  EXPECT_EQ(Written(config), expected);
  EXPECT_EQ(Written(Banners("", "%P%T")), header + "[ 4242  4243 ]");
  fake.pid = fake.tid = 2147483647;
  EXPECT_EQ(Written(Banners("", "%P%T")), header + "[ 2147483647  2147483647 ]");
}

TEST_F(BannerTest, FailuresEndTheStartUp) {
  LogConfigRecEx config = Banners("%O", "%P");
  const auto start = [&] {
    LOGHANDLE handle = 77;
    const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &handle);
    EXPECT_EQ(handle, null_log_handle);
    return code;
  };
  fake.system_field.clear();
  EXPECT_EQ(start(), 13);
  Open(Banners("%C", ""));  // which does not need it
  fake.system_field = "unix";
  fake.host.clear();
  config.log_level = Log_Level_Disable;
  EXPECT_EQ(start(), 13);
  fake.host = "box1";
  config.log_level = Log_Level_Trace;
  vintra::CopyText(config.log_file_name, "/dev/full");
  EXPECT_EQ(start(), 7);
  vintra::CopyText(config.sysconf_format, "%N");
  EXPECT_EQ(start(), 7);
}

}  // namespace
