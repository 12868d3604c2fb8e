// A log in a folder of its own, and a system whose clock, loader, memory and folders a test can bend.
#ifndef VINTRA_TESTS_TESTSUPPORT_H
#define VINTRA_TESTS_TESTSUPPORT_H

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "Common/Text.h"
#include "VintraModule/LogHandle.h"

namespace fs = std::filesystem;

constexpr std::time_t kStart = 1794835454;             // 2026-11-16 13:24:14 UTC
constexpr std::time_t kNoYear = std::time_t{1} << 60;  // in a year that has no number

struct FakeSystem {
  std::string library_file;                                   // what the loader says the library is
  std::atomic<std::time_t> coarse_second{0}, fine_second{0};  // what time() and ftime() return
  unsigned short millisecond = 0;
  std::atomic<int> allocations{0}, failing_allocation{0};  // malloc and realloc; which one fails, from 1
  bool folder_race = false;     // another process makes each folder just before mkdir does
  int good_statuses = 1 << 30;  // calls of fstat until it fails
  int seconds_per_reading = 0;  // by which the clock moves on
  // What the banners ask for. The files of /proc lie beside the library.
  std::string host, system_field;  // empty: cannot be read; all fields of the system are the same
  unsigned long long blocks = 0;   // of "/", of 4 KiB; 0: cannot be read
  int pid = 1, tid = 1;
  void SetClock(std::time_t second) { coarse_second = fine_second = second; }
};
inline FakeSystem fake;  // each test starts with a new one

inline std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string Unscrambled(std::string bytes) {
  for (char& byte : bytes) byte ^= 0x3C;
  return bytes;
}

// Each test has its own folder, which is also the library's; the clock stands at 2026-11-16 13:24:14.007 UTC.
class LogTest : public testing::Test {
 protected:
  LogTest() {
    std::string name = fs::temp_directory_path() / "vintra_test_XXXXXX";
    folder_ = mkdtemp(name.data());
    setenv("TZ", "UTC", 1);
    tzset();
    std::destroy_at(&fake);
    std::construct_at(&fake);
    fake.library_file = folder_ / "libvintra.so";
    fake.SetClock(kStart);
    fake.millisecond = 7;
  }
  ~LogTest() override {
    Close();
    fs::remove_all(folder_);
  }

  // A log in plain text, of every level, flushed after each record unless told otherwise.
  static LogConfigRecEx Config(const char* format, uint32 flush_size = 0, uint32 limit = 1U << 30,
                               const std::string& name = "app.log", LogMode mode = Log_Mode_Simple,
                               uint32 ring = 0, uint32 days = 0) {
    LogConfigRecEx config{};
    name.copy(config.log_file_name, sizeof config.log_file_name);  // 260 characters leave no terminator
    vintra::CopyText(config.log_format, format);
    config.log_mode = mode;
    config.log_level = Log_Level_Trace;
    config.max_file_size = limit;
    config.max_backup_index = ring;
    config.file_flush_size = flush_size;
    config.log_time_span = days;
    return config;
  }
  bool Exists(const std::string& name) const { return fs::exists(folder_ / name); }
  LOGHANDLE Open(const LogConfigRecEx& config) {
    Close();
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle_), 0);
    return handle_;
  }
  void Close() { LOG_MODULE_DESTORY(&handle_); }
  // A record of exactly size bytes in a log without directives.
  sint32 Write(std::size_t size) const { return LOG_INFO(handle_, "%s", std::string(size - 2, 'x').c_str()); }
  LogHandleRec& Record() const { return *vintra::LiveHandle(handle_); }
  std::string Log() const { return ReadFile(folder_ / "app.log"); }
  void MakeFile(const std::string& name, std::uintmax_t size) const {
    std::ofstream(folder_ / name) << "";
    fs::resize_file(folder_ / name, size);
  }
  // The log files that there are and their sizes: "app000.log:12 app001.log:7 ".
  std::string Files() const {
    std::map<std::string, std::uintmax_t> sizes;
    for (const auto& entry : fs::directory_iterator(folder_))
      sizes[entry.path().filename()] = fs::file_size(entry);
    std::string text;
    for (const auto& [name, size] : sizes) {
      if (name.starts_with("app")) text += name + ":" + std::to_string(size) + " ";
    }
    return text;
  }
  // The messages in the error log so far, without stamp and place, each with a line feed.
  std::string Errors() const {
    std::string messages;
    std::ifstream file(folder_ / "LogModuleErrMsg.log");
    for (std::string line; std::getline(file, line);) messages += line.substr(line.find(") ") + 2) + "\n";
    return messages;
  }

  fs::path folder_;
  LOGHANDLE handle_ = null_log_handle;
};

#endif
