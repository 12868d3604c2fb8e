// A log in a folder of its own, and a system whose clock, loader, memory and folders a test can bend.
#ifndef VINTRA_TESTS_TESTSUPPORT_H
#define VINTRA_TESTS_TESTSUPPORT_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Common/Text.h"
#include "VintraModule/LogHandle.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr std::time_t kStart = 1794835454;              // 2026-11-16 13:24:14 UTC
constexpr std::time_t kNoYear = std::time_t{1} << 60;   // in a year that has no number
constexpr std::time_t kFarYear = std::time_t{1} << 43;  // in one that the name of a file has no room for

// Where seconds are wider than the machine the library reads the clock once.
constexpr bool kHasOneClock = sizeof(std::time_t) > sizeof(long);

enum class Fault {
  kOnce,
  kFromThenOn,
  kHalfDone
};  // the last one: as the second, but half of a write is made

struct FakeSystem {
  std::string library_file;                                             // as the loader names it
  std::atomic<std::time_t> coarse_second{kStart}, fine_second{kStart};  // what time() and ftime() return
  unsigned short millisecond = 7;
  std::atomic<int> allocations{0};  // malloc and realloc
  bool folder_race = false;         // another process makes each folder just before mkdir does
  int seconds_per_reading = 0;      // by which the clock moves on
  std::function<void(const char* path)> before_emptying;  // of a file by open
  // What the banners ask for. The files of /proc lie in the working directory.
  std::string host = "box1", system_field = "unix";  // empty: cannot be read; the latter is every field
  unsigned long long blocks = 0;                     // of "/", of 4 KiB; 0: cannot be read
  int pid = 4242, tid = 4243;
  // The calls that the library makes of the system, by one thread, one word each: "open fsync fsync2 ". One
  // of them fails. An fopen that does opens other_file instead, or a file that cannot be read behind its
  // "[text".
  bool notes_calls = false;
  std::string calls, failing_call, other_file;
  std::map<std::string, int> calls_of_kind;
  Fault fault = Fault::kOnce;
  int error = EIO;  // of the call that fails
  bool has_failed = false;
  off_t synced_size = -1;  // of the first file that was synced

  void SetClock(std::time_t second) { coarse_second = fine_second = second; }
  void NoteCalls(const std::string& failing = "", Fault how = Fault::kOnce) {
    std::tie(notes_calls, failing_call, fault, has_failed) = std::tuple(true, failing, how, false);
    calls.clear();
    calls_of_kind.clear();
  }
};
inline FakeSystem fake;  // each test starts with a new one

// Some streams of C++ open files by calls that are replaced. They are none of the library's.
inline std::string ReadFile(const fs::path& path) {
  const bool notes_calls = fake.notes_calls;  // by the only thread, then
  if (notes_calls) fake.notes_calls = false;
  std::ifstream file(path, std::ios::binary);
  std::string bytes(std::istreambuf_iterator<char>(file), {});
  if (notes_calls) fake.notes_calls = true;
  return bytes;
}

inline void WriteFile(const fs::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// Text times over, for what is long.
inline std::string Repeat(std::string_view text, std::size_t times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

// The parts with a '|' between them.
template <typename... Parts>
std::string Bars(const Parts&... parts) {
  std::ostringstream text;
  ((text << "|" << parts), ...);
  return text.str().substr(1);
}

// Each text with a blank behind it.
inline std::string Listed(const std::set<std::string>& texts) {
  const auto add = [](const std::string& list, const std::string& text) { return list + text + " "; };
  return std::accumulate(texts.begin(), texts.end(), std::string(), add);
}

inline std::string Unscrambled(std::string bytes) {
  for (char& byte : bytes) byte ^= 0x3C;
  return bytes;
}

// How often a random test is repeated: more often where scripts/prove asks for it.
inline int Rounds(int usual) {
  const char* const factor = std::getenv("VINTRA_ROUNDS");
  return usual * std::max(factor == nullptr ? 1 : std::atoi(factor), 1);
}

// What whoever opens a file next gets.
inline int NextDescriptor() {
  const int next = dup(0);
  return close(next) == 0 ? next : -1;
}

// A log in plain text, of every level, flushed after each record unless told otherwise.
struct Settings {
  const char* format = "";
  uint32 flush = 0, limit = 1U << 30;
  std::string name = "app.log";  // 260 characters leave no terminator
  uint32 mode = Log_Mode_Simple, ring = 0, days = 0, level = Log_Level_Trace, encrypt = 0;
  const char *system = "", *process = "", *module = "";
  LogConfigRecEx Config() const {
    LogConfigRecEx config{0,  {}, LogMode{mode}, LogLevel{level}, limit, ring, flush, days, {}, {},
                          {}, {}, encrypt};
    name.copy(config.log_file_name, sizeof config.log_file_name);
    vintra::CopyText(config.log_format, format);
    vintra::CopyText(config.sysconf_format, system);
    vintra::CopyText(config.PidandTid, process);
    vintra::CopyText(config.module_name, module);
    return config;
  }
};

// Each test works in a folder of its own, also the library's, at 2026-11-16 13:24:14.007 UTC.
class LogTest : public testing::Test {
 protected:
  explicit LogTest(const fs::path& parent = fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) {
    std::string name = parent / "vintra_test_XXXXXX";
    folder_ = std::string(mkdtemp(name.data())) + "/";
    fs::current_path(folder_);
    setenv("TZ", "UTC", 1);
    tzset();
    std::destroy_at(&fake);
    std::construct_at(&fake);
    fake.library_file = folder_ + "libvintra.so";
  }
  ~LogTest() override {
    fake.notes_calls = false;
    Close();
    fs::current_path("/");
    fs::remove_all(folder_);
  }

  // The result of a start-up. written_ is what it leaves in a variable that held 77.
  sint32 Start(const Settings& settings) {
    const LogConfigRecEx config = settings.Config();
    Close();
    written_ = 77;
    const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &written_);
    if (code == 0) handle_ = written_;
    return code;
  }
  LOGHANDLE Open(const Settings& settings) {
    EXPECT_EQ(Start(settings), 0);
    return handle_;
  }
  void Close() {
    LOG_MODULE_DESTORY(&handle_);
    EXPECT_EQ(handle_, null_log_handle);
  }
  // A record of size bytes in a log without directives.
  sint32 Write(std::size_t size) const { return LOG_INFO(handle_, "%s", std::string(size - 2, 'x').c_str()); }
  LogHandleRec& Record() const { return *vintra::LiveHandle(handle_); }
  static std::string Log() { return ReadFile("app.log"); }
  static void MakeFile(const std::string& name, std::uintmax_t size) {
    std::ofstream(name) << "";
    fs::resize_file(name, size);
  }
  // The log files that there are and their sizes: "app000.log:12 app001.log:7 ".
  static std::string Files() {
    std::set<std::string> files;
    for (const auto& entry : fs::directory_iterator(".")) {
      const std::string name = entry.path().filename();
      if (name.starts_with("app")) files.insert(name + ":" + std::to_string(entry.file_size()));
    }
    return Listed(files);
  }
  // The messages of the error log, without stamp and place, each with a line feed. Removes the file.
  static std::string Errors() {
    std::string messages;
    std::ifstream file("LogModuleErrMsg.log");
    for (std::string line; std::getline(file, line);) messages += line.substr(line.find(") ") + 2) + "\n";
    fs::remove("LogModuleErrMsg.log");
    return messages;
  }

  std::string folder_;  // with a '/' behind it
  LOGHANDLE handle_ = null_log_handle, written_ = null_log_handle;
};

#endif
