// Every entry point while the system fails it: each call that it makes, one after the other, once, from then
// on, and with a write half done. Whatever fails, the result is a documented one, and nothing else is left
// behind.

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include "ConfigFileINI/ConfigFileINI.h"
#include "FolderModule/FolderModule.h"
#include "TestSupport.h"
#include "VintraModule/ErrLog.h"

namespace {

int Leaks() {
#if defined(__SANITIZE_ADDRESS__)
  return __lsan_do_recoverable_leak_check();
#else
  return 0;
#endif
}

std::size_t OpenDescriptors() {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

class FaultsTest : public LogTest {
 protected:
  struct Entry {
    const char* name;
    std::function<std::string()> run;
    std::string outcome;   // of a run without a fault
    std::string outcomes;  // and all other ones, each behind the kind of call that failed: "open=5 time=12 "
  };

  // The files that every run begins with.
  static void LayOut() {
    for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry);
    fs::create_directories("walk/deep/deeper");
    WriteFile("walk/deep/file", "");
    WriteFile("x.ini", "[a]\nk=1+\n2\nz=3\n[log]\nlevel=Log_Level_Trace\nfile_name=ini/app.log\n");
    WriteFile("three", "abc");
    WriteFile("cpuinfo", "1\n2\n3\n4\nname\n");
    WriteFile("meminfo", "memory\n");
    fs::create_directory("log");
    for (const char* file : {"", "_20261116_000", "_20200101_000", "_20200102_000"})
      MakeFile("log/app"s + file + ".log", 3000);
    fake.SetClock(kStart);
  }

  // The life of a log, with rolls. Returns the codes of the calls that failed, each once.
  std::string Live(const Settings& settings) {
    std::string codes;
    const auto note = [&codes](sint32 code) {
      if (code != 0 && codes.find(std::to_string(code)) == std::string::npos)
        codes += (codes.empty() ? "" : "+") + std::to_string(code);
      return code;
    };
    std::string accepted, refused;
    if (note(Start(settings)) != 0) {
      EXPECT_TRUE(written_ == 77 || written_ == null_log_handle);
      EXPECT_TRUE(codes != "4" || !fs::exists("log/new"));
      return codes;
    }
    const auto log = [&](char letter, int width) {
      const uint32 size = Record().file_size;
      const sint32 code = LOG_INFO(handle_, "|%c%*s|", letter, width, "");
      if (settings.mode == Log_Mode_Simple && Record().file_size < size) accepted.clear();  // as configured
      (code == 0 ? accepted : refused) += letter;
      return code;
    };
    for (const char letter : {'a', 'b', 'c', 'd', 'e', 'f'}) {
      if (letter == 'e') fake.SetClock(kStart + 86400);
      note(log(letter, letter == 'b' ? 3000 : 500));
    }
    note(LOG_MSG_FLUSH(handle_));
    // The system is well again, and so is the log, unless a file could not be opened.
    EXPECT_EQ(pthread_mutex_trylock(&Record().Critical_Section), 0);
    pthread_mutex_unlock(&Record().Critical_Section);
    const bool has_file = Record().file_out != nullptr;
    fake.notes_calls = false;
    EXPECT_EQ(log('g', 500), has_file ? 0 : 1);
    fake.notes_calls = true;
    Close();
    std::string text;
    for (const auto& entry : fs::recursive_directory_iterator("log"))
      if (!entry.is_directory()) text += ReadFile(entry.path());
    const auto is_whole = [&](char letter) {
      return text.find("|"s + letter + std::string(letter == 'b' ? 3000 : 500, ' ') + "|") !=
             std::string::npos;
    };
    for (const char letter : accepted) EXPECT_TRUE(is_whole(letter)) << letter << " is lost";
    for (const char letter : refused) EXPECT_FALSE(is_whole(letter)) << letter << " was refused";
    return codes;
  }

  // A change of a key: the result, and whether the file is as it was, or changed as asked.
  static std::string Change(const char* file, const char* section, const char* key,
                            const std::string& changed) {
    const std::string before = ReadFile(file);
    const BOOL code = WriteConfigFileString(section, key, "v", file);
    const std::string after = ReadFile(file);
    return Bars(code, after == before ? "old" : after == changed ? "new" : after);
  }

  static std::string Run(const Entry& entry, const std::string& failing_call, Fault fault = Fault::kOnce) {
    LayOut();
    const testing::ScopedTrace trace(__FILE__, __LINE__, entry.name + (" " + failing_call));
    fake.NoteCalls(failing_call, fault);
    std::string outcome = entry.run();
    fake.notes_calls = false;
    return outcome;
  }
  static bool HasWholeErrors() {
    std::istringstream lines(ReadFile("LogModuleErrMsg.log"));
    bool is_whole = true;
    for (std::string line; std::getline(lines, line);) {
      // The stamp as far as there is one, and the place.
      const std::size_t place = line.find("  Errlog:"), end = line.find(") ");
      is_whole = is_whole && !lines.eof() && place <= sizeof "2026-11-16 13:24:14.007" - 1 &&
                 end != std::string::npos && line.find("Errlog", end) == std::string::npos;
    }
    return is_whole;
  }

  void Check(const Entry& entry) {
    std::set<std::string> outcomes;
    const std::size_t descriptors = OpenDescriptors();
    EXPECT_EQ(Run(entry, ""), entry.outcome) << entry.name;
    std::istringstream calls(std::exchange(fake.calls, ""));
    for (std::string call; calls >> call;) {
      const std::string kind = call.substr(0, call.find_last_not_of("0123456789") + 1);
      for (const Fault fault : {Fault::kOnce, Fault::kFromThenOn, Fault::kHalfDone}) {
        if (fault == Fault::kHalfDone && kind != "write") continue;
        const std::string outcome = Run(entry, call, fault);
        if (outcome != entry.outcome) outcomes.insert(std::string(kind).append("=").append(outcome));
        EXPECT_EQ(OpenDescriptors(), descriptors) << entry.name << " " << call;
        EXPECT_TRUE(fault == Fault::kHalfDone || HasWholeErrors()) << entry.name << " " << call;
        ++faults_;
      }
    }
    EXPECT_EQ(Listed(outcomes), entry.outcomes) << entry.name;
    EXPECT_EQ(Leaks(), 0) << entry.name;
  }

  ~FaultsTest() override { std::cout << faults_ << " faults\n"; }
  int faults_ = 0;
};

TEST_F(FaultsTest, LogsOfEveryMode) {
  for (const auto& [mode, name] :
       {std::pair(1U, "log/app.log"), {2U, "log/new/app.log"}, {3U, "log/app.log"}})
    for (const uint32 flush : {0U, 4096U}) {
      const Settings settings{"%N%D", flush, 3000, folder_ + name, mode, 5, 2, 1, 0, "%O%C%M", "%P%T"};
      const auto in = [is = mode](uint32 some, const char* outcome) { return is == some ? outcome : ""; };
      Check({name, [&, this] { return Live(settings); }, "",
             "access=4 "s + in(1, "fdopen=5 ") +
                 "fdopen=5+1 fopen=5 fstat=5 fwrite=7 gethostname=13 localtime=" + (mode == 3 ? "12" : "10") +
                 " malloc=2 " + in(2, "mkdir=4 ") + "mutex=2 new=2 " + in(1, "open=5 ") +
                 "open=5+1 realloc=2 strftime=10 time=12 uname=13 write=7 "});
    }
}

TEST_F(FaultsTest, EverythingElse) {
  const std::string log = "[log]\nlevel=Log_Level_Trace\nfile_name=ini/app.log\n",
                    old = "[a]\nk=1+\n2\nz=3\n" + log;
  char text[300];
  const auto made = [](int code) { return Bars(code, fs::exists("n"), fs::exists("n/a/b")); };
  const auto walked = [&text](auto walk) {
    int size = 0, count = 7;
    const int code = walk(text, int{sizeof text}, &size, &count);
    return Bars(code, size, count);
  };
  const std::string rewriting =
      "access=0|old fclose=0|old fdopen=0|old fflush=0|old fopen=0|old fsync=0|old fwrite=0|old "
      "mkostemp=0|old rename=0|old ";
  // clang-format off
  const Entry entries[] = {
      {"CreateMulDir", [&] { return made(CreateMulDir("n/a/b")); }, "1|1|1", "mkdir=0|0|0 "},
      {"CreateChildDir", [&] { return made(CreateChildDir(std::strcpy(text, "./"), "n/a/b")); }, "1|1|1", "mkdir=0|0|0 "},
      {"RecursiveCreateDir", [&] { char chain[] = "n/a/b"; return made(RecursiveCreateDir(chain, std::strcpy(text, "./"), 2)); },
       "1|1|1", "mkdir=0|0|0 "},
      {"TraversalFolder", [&] { return walked([](auto... to) { return TraversalFolder("walk", to...); }); },
       "1|42|3", "fdopendir=1|10|1 openat=1|10|1 opendir=1|0|0 readdir=0|0|7 realloc=0|0|7 "},
      {"FindPathByFileName", [&] { return walked([](auto... to) { return FindPathByFileName("walk", "file", to...); }); },
       "1|15|1", "fdopendir=1|0|0 openat=1|0|0 opendir=1|0|0 readdir=0|0|7 realloc=0|0|7 "},
      {"CustomReadFile", [&] { int size = 7; std::strcpy(text, "~"); const int code = CustomReadFile("three", text, 9, &size);
                               return Bars(code, size, text); }, "1|3|abc", "fstat=0|7|~ open=0|7|~ read=1|0| "},
      {"CustomWriteFile", [] { const int code = CustomWriteFile("three", "w", "new", 3); return Bars(code, ReadFile("three")); },
       "1|new", "fopen=0|abc fwrite=0| "},
      {"GetDLLDir", [&] { return Bars(GetDLLDir(std::strcpy(text, "none")) == folder_); }, "1", "dladdr=0 "},
      {"FileConvert", [] { const sint32 code = FileConvert("three", "x"); return Bars(code, Unscrambled(ReadFile("x"))); },
       "0|abc", "fstat=5| ftruncate=5| malloc=5| open=5| read=5| read=5|abc write=0| write=0|a "},
      {"PrintErrLog", [] { return Bars(PrintErrLog("w.cpp", 1, "x")); }, "43", "asprintf=0 asprintf=42 localtime=24 open=0 strftime=24 "
       "strftime=32 strftime=35 time=12 write=0 write=21 "},
      {"LOG_MODULE_INIT", [this] { const sint32 code = LOG_MODULE_INIT("x.ini", "log", &handle_); const LogLevel level = LOG_LEVEL(handle_);
                                   Close(); return Bars(code, level); },
       "0|1", "access=4|9 fopen=0|9 fopen=5|9 fstat=5|9 mkdir=4|9 mutex=2|9 new=2|9 "},
      {"GetConfigFileString", [&] { return Bars(GetConfigFileString("a", "k", "none", text, 9, "x.ini"), text); }, "2|12", "fopen=4|none "},
      {"GetConfigFileInt", [] { return Bars(GetConfigFileInt("a", "k", 7, "x.ini")); }, "12", "fopen=7 "},
      {"GetConfigFileSections", [&] { return Bars(GetConfigFileSections(text, 9, "x.ini")); }, "6", "fopen=0 "},
      {"GetConfigFileKeys", [&] { return Bars(GetConfigFileKeys("a", text, 9, "x.ini")); }, "4", "fopen=0 "},
      {"a key changed", [&] { return Change("x.ini", "a", "k", "[a]\nk=v\nz=3\n" + log); }, "1|new", rewriting},
      {"a key added", [&] { return Change("x.ini", "a", "m", "[a]\nm=v\n" + old.substr(4)); }, "1|new", rewriting},
      {"a section added", [&] { return Change("x.ini", "b", "k", old + "\n[b]\nk=v\n"); },
       "1|new", "access=0|old fopen=0|old fstat=0|old fsync=0|old open=0|old pread=0|old write=0|old "},
      {"a file made", [&] { return Change("n/a/y.ini", "b", "k", "\n[b]\nk=v\n"); },
       "1|new", "access=0|old fopen=0|old fstat=0|old fsync=0|old mkdir=0|old open=0|old pread=0|old write=0|old "}};
  // clang-format on
  for (const Entry& entry : entries) Check(entry);
  // Not every file system knows how to sync.
  for (const int error : {EINVAL, ENOSYS, ENOTSUP, EROFS}) {
    fake.error = error;
    for (const Entry& entry : entries) {
      if (entry.outcome != "1|new" || entry.name == "CustomWriteFile"s) continue;
      EXPECT_EQ(Run(entry, "fsync", Fault::kFromThenOn), error == EROFS ? "0|old" : entry.outcome);
    }
  }
}

}  // namespace
