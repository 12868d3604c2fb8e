// Many threads on one handle, and on the error log.
#include <chrono>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

#include "TestSupport.h"
#include "VintraModule/ErrLog.h"

namespace {

using ThreadsTest = LogTest;

// Calls work(id, number) 500 times in each of 8 threads at once.
template <typename Work>
void InThreads(Work work) {
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (int id = 0; id < 8; ++id) {
    threads.emplace_back([=] {
      for (int number = 0; number < 500; ++number) work(id, number);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// Expects each "id number" exactly once, behind prefix at the end of a line.
void ExpectEachOnce(const std::string& text, const std::string& prefix) {
  std::multiset<std::string> seen, expected;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    seen.insert(line.substr(std::min(line.find(prefix), line.size())));
  }
  for (int item = 0; item < 8 * 500; ++item) {
    expected.insert(prefix + std::to_string(item / 500) + " " + std::to_string(item % 500) + "\r");
  }
  EXPECT_EQ(seen, expected);
}

TEST_F(ThreadsTest, RecordsAndReportsStayWholeInEveryMode) {
  for (const LogMode mode : {Log_Mode_Simple, Log_Mode_Rollback, Log_Mode_Date}) {
    const uint32 limit = mode == Log_Mode_Simple ? 1U << 30 : 2000;
    Open(Config("%E%F%L%N", 1000, limit, "app.log", mode));
    InThreads([this](int id, int number) {
      const std::string source = std::string(static_cast<std::size_t>(id) * 8 + 1, 's') + ".c";
      EXPECT_EQ(LOG_INFO(SourceInfo(handle_, source.c_str(), id + 1), "|%d %d", id, number), 0);
      EXPECT_EQ(number % 50 == 0 ? LOG_MSG_FLUSH(handle_) : 0, 0);
      std::fflush(nullptr);  // reaches the log's stream beside the handle
      PrintErrLog("w.src", 1, "%d %d\r", id, number);
    });
    Close();
    std::string text;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      if (!entry.path().filename().string().starts_with("app")) continue;
      EXPECT_LE(entry.file_size(), limit + 110);
      text += ReadFile(entry.path()) + "\r\n";
      fs::remove(entry);
    }
    ExpectEachOnce(text, "] |");
    ExpectEachOnce(ReadFile(folder_ / "LogModuleErrMsg.log"), "2026-11-16 13:24:14.007  Errlog:w.src(1) ");
    fs::remove(folder_ / "LogModuleErrMsg.log");
  }
}

TEST_F(ThreadsTest, CancelledThreadsLeaveTheHandleUsable) {
#ifndef __SANITIZE_ADDRESS__  // which takes the unwinding of a cancelled thread for an overflow
  Open(Config("", 0, 10));
  for (int round = 0; round < 100; ++round) {
    std::thread writer([this] {
      while (LOG_INFO(handle_, "0123456789") == 0) PrintErrLog("w.src", 1, "x");
    });
    std::this_thread::sleep_for(std::chrono::microseconds(round * 5));
    pthread_cancel(writer.native_handle());
    writer.join();
    ASSERT_EQ(LOG_INFO(handle_, "next"), 0);
  }
#endif
}

}  // namespace
