// Killed writers, disks that are full, processes that fork: what was accepted is in the files.
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <csignal>
#include <random>
#include <thread>

#include "ConfigFileINI/ConfigFileINI.h"
#include "FolderModule/FolderModule.h"
#include "TestSupport.h"

namespace {

constexpr int kNotPermitted = 77;

// The message of a record, by its number: each of a length of its own, and some longer than what a log holds
// back.
constexpr int kLongest = 9020;  // with its header
std::string Text(int number) {
  const int length = number % 50 == 25 ? 9000 : number * 37 % 300;
  return "|" + std::to_string(number) + "|" + std::string(static_cast<std::size_t>(length), 'x') + "|";
}
sint32 WriteText(LOGHANDLE handle, int number) { return LOG_INFO(handle, "%s", Text(number).c_str()); }

class CrashTest : public LogTest {
 protected:
  CrashTest()  // on a disk, where there is one
      : LogTest(fs::temp_directory_path()),
        last_(static_cast<std::atomic<int>*>(
            mmap(nullptr, sizeof *last_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
  ~CrashTest() override { munmap(last_, sizeof *last_); }

  // Runs work in a process of its own. Returns its exit status, or its being killed. It is killed after it
  // has come so far that last_ is kill_at, and some microseconds: however slow the machine is.
  template <typename Work>
  int InChild(const Work& work, int kill_at = -1, int kill_after = 0) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
      work();
      std::fflush(nullptr);
      _exit(HasFailure() ? 1 : 0);
    }
    if (kill_at >= 0) {
      siginfo_t ended{};  // by itself, which is an error
      while (*last_ < kill_at && ended.si_pid == 0)
        waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT), usleep(20);
      std::this_thread::sleep_for(std::chrono::microseconds(kill_after));
      kill(child, SIGKILL);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  // The numbers of the whole records in the log's files, in the files' order by their first one; what is not
  // one goes to torn. Each line but a file's last ends with CR LF, of which a kill may have left the CR.
  static std::vector<int> Numbers(int& torn) {
    std::map<int, std::vector<int>> files;
    torn = 0;
    for (const auto& entry : fs::directory_iterator(".")) {
      if (!entry.path().filename().string().starts_with("app")) continue;
      std::vector<int> numbers;
      const std::string text = ReadFile(entry.path()) + "\r\n";
      for (std::size_t at = 0, end = 0; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2) {
        std::string line = text.substr(at, end - at);
        if (line.ends_with('\r')) line.pop_back();
        const int number = std::atoi(line.c_str() + std::min<std::size_t>(line.size(), 3));
        if (line == "  " + Text(number))
          numbers.push_back(number);
        else if (!line.empty())
          ++torn;
      }
      if (!numbers.empty()) files[numbers.front()] = numbers;
    }
    std::vector<int> all;
    for (const auto& [first, numbers] : files) all.insert(all.end(), numbers.begin(), numbers.end());
    return all;
  }

  std::atomic<int>* last_;  // seen by both processes: the number of the last record that was accepted
};

TEST_F(CrashTest, KilledWritersLoseNothingThatWasFlushed) {
  std::minstd_rand random(7);
  int kills = 0, records = 0, all_torn = 0, most_lost = 0;
  for (int history = 0; history < 6 * Rounds(1); ++history) {
    const uint32 flush = history % 2 == 0 ? 0 : 4096, mode = 1 + static_cast<uint32>(history / 2 % 3);
    for (const auto& entry : fs::directory_iterator(".")) fs::remove(entry);
    const Settings settings{"%N", flush, 20000, "app.log", mode, 1000};
    std::set<int> lost;
    for (int round = 0, next = 1, old_torn = 0; round < 25; ++round, ++kills) {
      fake.SetClock(kStart + std::time_t{86400} * (round / 5));
      *last_ = next - 1;
      EXPECT_EQ(InChild(
                    [&] {
                      Open(settings);
                      // No more than the ring has room for in all rounds, however late the kill comes.
                      for (int number = next; number < next + 2000; ++number) {
                        if (WriteText(handle_, number) != 0) _exit(1);
                        *last_ = number;
                      }
                      pause();
                    },
                    next - 1 + static_cast<int>(random() % 400), static_cast<int>(random() % 500)),
                -SIGKILL);
      int torn = 0;
      const std::vector<int> numbers = Numbers(torn);
      EXPECT_LE(torn, old_torn + 1) << "one for a kill, with a line of its own";
      all_torn += std::max(torn - std::exchange(old_torn, torn), 0);
      // The accepted ones are there in their order, but for what a threshold held back; in the simple mode
      // those since the last emptying, which may be the last thing that happened.
      const int unwritten = mode == Log_Mode_Simple ? last_->load() : 0;
      const int written = numbers.empty() ? unwritten : numbers.back();
      EXPECT_LE(written, *last_ + 1);
      int missing = 0;
      for (int number = std::max(written + 1, next); number <= *last_; ++number) {
        missing += static_cast<int>(Text(number).size()) + 4;
        lost.insert(number);
      }
      EXPECT_LE(missing, flush == 0 ? 0 : static_cast<int>(flush) + kLongest) << mode;
      most_lost = std::max(most_lost, missing);
      int expected = mode == Log_Mode_Simple && !numbers.empty() ? numbers.front() : 1;
      for (const int number : numbers) {
        while (lost.contains(expected)) ++expected;
        ASSERT_EQ(number, expected++) << mode;
      }
      next = std::max<int>(written, *last_) + 1;
    }
    records += *last_;
  }
  std::cout << kills << " kills, " << records << " records accepted, " << all_torn << " torn, at most "
            << most_lost << " bytes lost with a threshold of 4096\n";
}

TEST_F(CrashTest, KilledRewritesLeaveTheOldFileOrTheNewOne) {
  std::minstd_rand random(7);
  const auto content = [](int number) {
    return Repeat("[s]\nx=1\n", 500) + "[a]\nk=" + std::to_string(number) + "\n" + Repeat("[t]\nx=1\n", 500);
  };
  WriteFile("x.ini", content(0));
  *last_ = 0;
  int kills = 0;
  for (; kills < Rounds(100); ++kills) {
    EXPECT_EQ(InChild(
                  [&] {
                    for (int number = *last_ + 1; WriteConfigFileInt("a", "k", number, "x.ini") == 1;
                         ++number)
                      *last_ = number;
                  },
                  *last_ + static_cast<int>(random() % 4), static_cast<int>(random() % 2000)),
              -SIGKILL);
    const std::string now = ReadFile("x.ini");
    ASSERT_TRUE(now == content(*last_) || now == content(*last_ + 1));
    *last_ = static_cast<int>(GetConfigFileInt("a", "k", 0, "x.ini"));
  }
  std::cout << kills << " kills, " << *last_ << " rewrites\n";
}

// Fills and frees a disk, with a log on it whose codes tell exactly which of its records there are. Moving on
// waits for a disk's room, but not for a file's.
class FullDiskTest : public CrashTest {
 protected:
  template <typename Fill, typename Free>
  void Check(bool waits, const Fill& fill, const Free& free) {
    int refused = 0, records = 0;
    for (const uint32 flush : {0U, 4096U}) {
      for (const uint32 mode : {1U, 2U, 3U}) {
        if (!waits && flush != 0 && mode != Log_Mode_Simple) continue;
        fake.SetClock(kStart);
        const uint32 limit = mode == Log_Mode_Simple ? 1U << 30 : 100000;
        Open({"%N", flush, limit, "disk/app.log", mode, 1000, 3});
        const std::string expiring = "disk/app_20261115_900.log";  // while the log waits
        if (mode == Log_Mode_Date) WriteFile(expiring, std::string(20000, 'o'));
        std::vector<int> accepted;
        fake.NoteCalls();
        for (int number = 0; number < 500; ++number) {
          if (number == 100) fill();
          if (number == 250 || number == 300) fake.SetClock(fake.coarse_second + 86400);
          if (number == 400) free();
          if (WriteText(handle_, number) == 0) accepted.push_back(number);
          ++records;
        }
        fake.notes_calls = false;
        EXPECT_FALSE(fs::exists(expiring));
        EXPECT_LE(fake.calls_of_kind["opendir"], 5) << "not for each record that is refused";
        Close();
        fs::current_path("disk");
        int torn = 0;
        EXPECT_EQ(Numbers(torn), accepted) << flush << " " << mode;
        EXPECT_LT(accepted.size(), 500);
        EXPECT_EQ(accepted.back(), 499);
        EXPECT_TRUE(mode != Log_Mode_Date || flush == 0 || fs::file_size("app_20261118_000.log") > 0);
        EXPECT_LE(torn, flush == 0 ? 300 : 1) << "of those that were refused, the beginning at most";
        refused += 500 - static_cast<int>(accepted.size());
        for (const auto& entry : fs::directory_iterator(".")) fs::remove(entry);
        fs::current_path("..");
      }
    }
    EXPECT_EQ(Errors().find("fclose"), std::string::npos);
    std::cout << records << " records, " << refused << " refused, all others there\n";
  }
};

TEST_F(FullDiskTest, SizeLimit) {
  fs::create_directory("disk");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit all{};
  getrlimit(RLIMIT_FSIZE, &all);
  const rlimit full{7777, all.rlim_max};
  Check(
      false, [&] { setrlimit(RLIMIT_FSIZE, &full); }, [&] { setrlimit(RLIMIT_FSIZE, &all); });
}

TEST_F(FullDiskTest, SmallFileSystem) {
  fs::create_directory("disk");
  const int status = InChild([this] {
    if (unshare(CLONE_NEWNS) != 0) _exit(kNotPermitted);
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", "disk", "tmpfs", 0, "size=200k") != 0)
      _exit(kNotPermitted);
    Check(
        true, [] { std::ofstream("disk/other") << std::string(300000, 'o'); },
        [] { fs::remove("disk/other"); });
    // Rings that the disk is too small for: moving on makes room, also when it has to give up waiting for it.
    for (const uint32 ring : {3U, 4U}) {
      for (const uint32 flush : {0U, 4096U, 200000U}) {
        WriteFile("disk/other", std::string(160000, 'o'));
        Open({"%N", flush, 16000, "disk/app.log", Log_Mode_Rollback, ring});
        std::vector<int> accepted;
        for (int number = 0; number < 2000; ++number)
          if (WriteText(handle_, number) == 0) accepted.push_back(number);
        Close();
        fs::current_path("disk");
        int torn = 0;
        const std::vector<int> numbers = Numbers(torn);
        EXPECT_GT(accepted.back(), 1900) << ring << " " << flush;
        const std::vector<int> last(accepted.end() - std::ssize(numbers), accepted.end());
        fs::current_path("..");
        const bool is_told = Errors().find("fclose") != std::string::npos;
        EXPECT_TRUE(numbers == last || (flush != 0 && is_told)) << ring << " " << flush;
        for (const auto& entry : fs::directory_iterator("disk")) fs::remove(entry);
      }
    }
  });
  if (status == kNotPermitted) GTEST_SKIP() << "no file system can be mounted here";
  EXPECT_EQ(status, 0);
}

using ForkTest = CrashTest;

TEST_F(ForkTest, TheChildOfOneThreadGoesOnWithTheLog) {
  for (const uint32 flush : {0U, 4096U}) {
    Open({"%C%N", flush});
    for (int number = 0; number < 100; ++number) EXPECT_EQ(WriteText(handle_, number), 0);
    EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
    const auto write = [this](int begin) {
      for (int number = begin; number < begin + 100; ++number) EXPECT_EQ(WriteText(handle_, number), 0);
      EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
    };
    EXPECT_EQ(InChild([&] { write(100); }), 0);
    write(200);
    int torn = 0;
    std::vector<int> all(300);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(Numbers(torn), all) << "each once";
    EXPECT_EQ(torn, 0);
  }
  Open({"%C%N", 4096});
  EXPECT_EQ(WriteText(handle_, 7), 0);
  EXPECT_EQ(InChild([this] { EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0); }), 0);
  Close();
  EXPECT_EQ(Log(), Repeat("  " + Text(7), 2)) << "what was not flushed before, both have written";
}

TEST_F(ForkTest, NoDescriptorReachesAnotherProgram) {
  fs::create_directories("walk/a/b");
  WriteFile("x.ini", "[a]\nk=1\n");
  std::atomic<bool> stops{false};
  std::thread others[2];
  for (std::thread& other : others) {
    other = std::thread([&stops, id = &other - others] {
      const std::string own = "y" + std::to_string(id);
      for (int number = 0; !stops; ++number) {
        LOGHANDLE log = null_log_handle;
        const LogConfigRecEx config =
            Settings{"", 0, 50, own + ".log", 1 + static_cast<uint32>(number % 3), 2, 1}.Config();
        EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &log), 0);
        for (int record = 0; record < 3; ++record) EXPECT_EQ(LOG_INFO(log, "%40d", record), 0);
        LOG_MODULE_DESTORY(&log);
        EXPECT_EQ(WriteConfigFileInt("a", "k", number, (own + ".ini").c_str()), 1);
        EXPECT_EQ(CustomWriteFile(own.c_str(), "w", "text", 4), 1);
        EXPECT_EQ(FileConvert(own.c_str(), (own + "c").c_str()), 0);
        char files[9];
        int size = 0, count = 0;
        EXPECT_EQ(CustomReadFile(own.c_str(), files, 8, &size), 1);
        EXPECT_EQ(TraversalFolder("walk", files, 0, &size, &count), -1);
        char names[99];
        EXPECT_EQ(GetConfigFileSections(names, sizeof names, "x.ini"), 2);
      }
    });
  }
  const std::string command = "! readlink /proc/$$/fd/* | grep -F " + folder_;
  for (int round = 0; round < Rounds(30); ++round) {
    const pid_t child = fork();
    if (child == 0) execl("/bin/sh", "sh", "-c", command.c_str(), nullptr), _exit(99);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0) << round;
  }
  stops = true;
  for (std::thread& other : others) other.join();
}

}  // namespace
