// What a record costs its host, beside a bare loop that puts the same bytes into a file.
//
// Both sides write to files of the same folder with a stream buffer of the same size, and both start the file
// over when it has reached the same size.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "VintraModule/VintraModule.h"
#include "bench/BenchPath.h"

namespace {

constexpr uint32 kFlushSize = 65536;
constexpr uint32 kFileLimit = 4 * 1024 * 1024;  // small enough to stay in memory that is warm
constexpr std::size_t kStreamBuffer = kFlushSize + 2048;

// A log in a folder of its own, which is removed with its last user.
class BenchLog {
 public:
  explicit BenchLog(const LogConfigRecEx& settings) : folder_(BenchPath("vintra_bench_log")) {
    LogConfigRecEx config = settings;
    std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s/app.log", folder_.c_str());
    if (const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &handle_); code != 0) {
      std::fprintf(stderr, "%s: start-up failed with %d\n", config.log_file_name, code);
      std::exit(1);
    }
  }
  BenchLog(const BenchLog&) = delete;
  BenchLog& operator=(const BenchLog&) = delete;
  ~BenchLog() {
    LOG_MODULE_DESTORY(&handle_);
    std::filesystem::remove_all(folder_);
  }

  LOGHANDLE handle() const { return handle_; }

 private:
  std::string folder_;
  LOGHANDLE handle_ = null_log_handle;
};

LogConfigRecEx Settings() {
  LogConfigRecEx config{};
  config.log_mode = Log_Mode_Simple;
  config.log_level = Log_Level_Trace;
  config.max_file_size = kFileLimit;
  config.file_flush_size = kFlushSize;
  std::snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%N");
  std::snprintf(config.module_name, sizeof config.module_name, "net");
  return config;
}

// Four files of 1 MiB take the room of the one file of the simple mode.
LogConfigRecEx NumberedSettings(LogMode mode) {
  LogConfigRecEx config = Settings();
  config.log_mode = mode;
  config.max_file_size = kFileLimit / 4;
  config.max_backup_index = 4;
  return config;
}

void RunRecords(benchmark::State& state, const BenchLog& log) {
  int number = 0;
  for (auto _ : state) {
    const sint32 code =
        LOG_INFO(log.handle(), "request %d from %s took %.3f ms", number, "10.0.0.17", number * 0.001);
    if (code != 0) state.SkipWithError("a record was refused");
    ++number;
  }
  state.SetItemsProcessed(state.iterations());
}

void BareLoop(benchmark::State& state) {
  constexpr std::string_view kHeader = "\r\n2026-11-16 13:24:14.007 [INFO]  net  ";
  const std::string path = BenchPath("vintra_bench_bare.log");
  std::vector<char> buffer(kStreamBuffer);
  std::FILE* const file = std::fopen(path.c_str(), "w");
  std::setvbuf(file, buffer.data(), _IOFBF, buffer.size());
  std::size_t size = 0;
  int number = 0;
  for (auto _ : state) {
    char message[1024];
    const int length = std::snprintf(message, sizeof message, "request %d from %s took %.3f ms", number,
                                     "10.0.0.17", number * 0.001);
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    benchmark::DoNotOptimize(now);
    fwrite_unlocked(kHeader.data(), kHeader.size(), 1, file);
    fwrite_unlocked(message, static_cast<std::size_t>(length), 1, file);
    size += kHeader.size() + static_cast<std::size_t>(length);
    if (size >= kFileLimit) {
      size = 0;
      std::rewind(file);
      if (ftruncate(fileno(file), 0) != 0) state.SkipWithError("the file could not be emptied");
    }
    ++number;
  }
  std::fclose(file);
  std::filesystem::remove(path);
  state.SetItemsProcessed(state.iterations());
}

void Record(benchmark::State& state) { RunRecords(state, BenchLog(Settings())); }

void RecordRollback(benchmark::State& state) {
  RunRecords(state, BenchLog(NumberedSettings(Log_Mode_Rollback)));
}

void RecordDate(benchmark::State& state) { RunRecords(state, BenchLog(NumberedSettings(Log_Mode_Date))); }

void RecordScrambled(benchmark::State& state) {
  LogConfigRecEx config = Settings();
  config.log_encrypt = 1;
  RunRecords(state, BenchLog(config));
}

void RecordFlushed(benchmark::State& state) {
  LogConfigRecEx config = Settings();
  config.file_flush_size = 0;
  RunRecords(state, BenchLog(config));
}

void RecordFilteredOut(benchmark::State& state) {
  LogConfigRecEx config = Settings();
  config.log_level = Log_Level_Warn;
  RunRecords(state, BenchLog(config));
}

BENCHMARK(BareLoop);
BENCHMARK(Record);
BENCHMARK(RecordRollback);
BENCHMARK(RecordDate);
BENCHMARK(RecordScrambled);
BENCHMARK(RecordFlushed);
BENCHMARK(RecordFilteredOut);

}  // namespace
