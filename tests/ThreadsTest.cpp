// Many threads on one handle, on the error log, and on files.
#include <chrono>
#include <thread>

#include "ConfigFileINI/ConfigFileINI.h"
#include "FolderModule/FolderModule.h"
#include "TestSupport.h"
#include "VintraModule/ErrLog.h"

namespace {

using ThreadsTest = LogTest;

TEST_F(ThreadsTest, RecordsAndReportsStayWholeInEveryMode) {
  std::multiset<std::string> expected;
  for (int item = 0; item < 8 * 500; ++item)
    expected.insert(std::to_string(item / 500) + " " + std::to_string(item % 500) + "\r");
  for (const LogMode mode : {Log_Mode_Simple, Log_Mode_Rollback, Log_Mode_Date}) {
    const uint32 limit = mode == Log_Mode_Simple ? 1U << 30 : 2000;
    Open({"%E%F%L%N", 1000, limit, "app.log", mode});
    std::thread threads[8];
    for (int id = 0; id < 8; ++id) {
      threads[id] = std::thread([this, id] {
        const std::string source = std::string(static_cast<std::size_t>(id) * 8 + 1, 's') + ".c";
        for (int number = 0; number < 500; ++number) {
          EXPECT_EQ(LOG_INFO(SourceInfo(handle_, source.c_str(), id + 1), "|%d %d", id, number), 0);
          EXPECT_EQ(number % 50 == 0 ? LOG_MSG_FLUSH(handle_) : 0, 0);
          std::fflush(nullptr);  // reaches the log's stream beside the handle
          PrintErrLog("w.src", 1, "] |%d %d\r", id, number);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    Close();
    std::string records, reports = Errors();
    for (const auto& entry : fs::directory_iterator(".")) {
      EXPECT_LE(entry.file_size(), limit + 110);
      records += ReadFile(entry.path()) + "\r\n";
      fs::remove(entry);
    }
    for (const std::string& text : {records, reports}) {
      std::multiset<std::string> seen;
      std::istringstream lines(text);
      for (std::string line; std::getline(lines, line);)
        seen.insert(line.substr(std::min(line.find("] |") + 3, line.size())));
      EXPECT_EQ(seen, expected);
    }
  }
}

TEST_F(ThreadsTest, FilesAndFoldersServeManyThreads) {
  WriteFile("shared.ini", "[a]\nk=0\n");
  std::thread threads[4];
  for (int id = 0; id < 4; ++id) {
    threads[id] = std::thread([id] {
      const std::string own = "d/" + std::to_string(id) + ".ini";
      for (sint32 number = 1; number <= 50; ++number) {
        EXPECT_EQ(WriteConfigFileInt("a", "k", number, own.c_str()), 1);
        EXPECT_EQ(GetConfigFileInt("a", "k", 0, own.c_str()), static_cast<uint32>(number));
        // One thread changes what the others read: they see the file before a change or after it.
        EXPECT_TRUE(id != 0 || WriteConfigFileInt("a", "k", number, "shared.ini") == 1);
        EXPECT_LE(GetConfigFileInt("a", "k", 77, "shared.ini"), 50U);
        char files[4096];
        int size = 0, count = 0;
        EXPECT_EQ(
            FindPathByFileName(".", fs::path(own).filename().c_str(), files, sizeof files, &size, &count), 1);
        EXPECT_EQ(std::string(files, static_cast<std::size_t>(size)), "./" + own + "\0"s);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(ThreadsTest, CancelledThreadsLeaveTheHandleUsable) {
#ifndef __SANITIZE_ADDRESS__  // which takes the unwinding of a cancelled thread for an overflow
  Open({"", 0, 10});
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
