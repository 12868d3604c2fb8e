// Many threads on one handle, on the error log, and on files.
#include <chrono>
#include <mutex>
#include <thread>

#include "ConfigFileINI/ConfigFileINI.h"
#include "FolderModule/FolderModule.h"
#include "TestSupport.h"
#include "VintraModule/ErrLog.h"

namespace {

using ThreadsTest = LogTest;

// Eight threads on one log, or each on its own, which moves on with every second record. What a log empties
// is kept.
TEST_F(ThreadsTest, RecordsAndReportsStayWholeInEveryMode) {
  constexpr uint32 kLimit = 100;
  const int each = Rounds(800);
  std::multiset<std::string> expected;
  for (int item = 0; item < 8 * each; ++item)
    expected.insert(std::to_string(item / each) + " " + std::to_string(item % each) + "\r");
  std::mutex mutex;
  std::string records;
  std::size_t rolls = 0;
  const auto keep = [&](const fs::path& path) {
    const std::string text = ReadFile(path);
    EXPECT_LE(text.size(), kLimit + 110);
    const std::lock_guard lock(mutex);
    if (!text.empty()) records += text + "\r\n", ++rolls;
  };
  fake.before_emptying = keep;
  for (const LogMode mode : {Log_Mode_Simple, Log_Mode_Rollback, Log_Mode_Date}) {
    for (const std::size_t logs : {1U, 8U}) {
      LOGHANDLE handles[8] = {};
      for (std::size_t log = 0; log < logs; ++log) {
        const LogConfigRecEx config =
            Settings{"%E%F%L%N", 50, kLimit, std::to_string(log) + ".log", mode, 2}.Config();
        EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handles[log]), 0);
      }
      std::thread threads[8];
      for (std::size_t id = 0; id < 8; ++id) {
        threads[id] = std::thread([id, each, handle = handles[logs == 1 ? 0 : id]] {
          const std::string source = std::string(id * 8 + 1, 's') + ".c";
          for (int number = 0; number < each; ++number) {
            EXPECT_EQ(LOG_INFO(SourceInfo(handle, source.c_str(), number + 1), "|%zu %d", id, number), 0);
            EXPECT_EQ(number % 50 == 0 ? LOG_MSG_FLUSH(handle) : 0, 0);
            if (number % 10 == 0) std::fflush(nullptr);  // reaches the log's stream beside the handle
            PrintErrLog("w.src", 1, "] |%zu %d\r", id, number);
          }
        });
      }
      for (std::thread& thread : threads) thread.join();
      for (std::size_t log = 0; log < logs; ++log) LOG_MODULE_DESTORY(&handles[log]);
      const std::string reports = Errors();
      for (const auto& entry : fs::directory_iterator(".")) {
        keep(entry.path());
        fs::remove(entry);
      }
      for (const std::string& text : {std::exchange(records, ""), reports}) {
        std::multiset<std::string> seen;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
          seen.insert(line.substr(std::min(line.find("] |") + 3, line.size())));
        EXPECT_EQ(seen, expected);
      }
    }
  }
  std::cout << 3 * 2 * 8 * each << " records in " << rolls << " files, each once and whole\n";
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

TEST_F(ThreadsTest, CancelledThreadsLeaveTheHandleUsableAndNoRecordTwice) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "AddressSanitizer takes the unwinding of a cancelled thread for an overflow";
#endif
#ifdef _LIBCPP_VERSION
  GTEST_SKIP() << "the C library unwinds cancelled threads by another unwinder than libc++ has";
#endif
  Open({"%N", 100, 500, "app.log", Log_Mode_Rollback});
  int number = 0;
  for (int round = 0; round < 200; ++round) {
    std::thread writer([this, &number] {
      while (LOG_INFO(handle_, "|%d|", ++number) == 0) {
        if (number % 100 == 0) PrintErrLog("w.src", 1, "x");
      }
    });
    std::this_thread::sleep_for(std::chrono::microseconds(round * 3));
    pthread_cancel(writer.native_handle());
    writer.join();
    ASSERT_EQ(LOG_INFO(handle_, "|%d|", ++number), 0);
  }
  Close();
  std::set<std::string> seen;
  for (const auto& entry : fs::directory_iterator(".")) {
    if (!entry.path().filename().string().starts_with("app")) continue;
    std::istringstream lines(ReadFile(entry.path()));
    for (std::string line; std::getline(lines, line, '\n');)
      EXPECT_TRUE(seen.insert(line.substr(0, line.rfind('|'))).second) << line;
  }
}

}  // namespace
