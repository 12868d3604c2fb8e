// What a record costs its host, beside a bare loop that puts the same bytes into a file.
//
// Both sides write to files of the same folder (VINTRA_BENCH_DIR, or the system's temporary folder) with a
// stream buffer of the same size, and both start the file over when it has reached the same size.
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

namespace {

constexpr uint32 kFlushSize = 65536;
constexpr uint32 kFileLimit = 4 * 1024 * 1024;  // small enough to stay in memory that is warm
constexpr std::size_t kStreamBuffer = kFlushSize + 2048;

std::string FilePath(const char* name) {
  const char* const folder = std::getenv("VINTRA_BENCH_DIR");
  return (folder != nullptr ? std::filesystem::path(folder) : std::filesystem::temp_directory_path()) / name;
}

// A simple-mode log that is removed with its last user.
class BenchLog {
 public:
  BenchLog(const char* name, uint32 flush_size, LogLevel threshold, uint32 encrypt) : path_(FilePath(name)) {
    LogConfigRecEx config{};
    std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s", path_.c_str());
    config.log_mode = Log_Mode_Simple;
    config.log_level = threshold;
    config.max_file_size = kFileLimit;
    config.file_flush_size = flush_size;
    std::snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%N");
    std::snprintf(config.module_name, sizeof config.module_name, "net");
    config.log_encrypt = encrypt;
    if (const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &handle_); code != 0) {
      std::fprintf(stderr, "%s: start-up failed with %d\n", path_.c_str(), code);
      std::exit(1);
    }
  }
  BenchLog(const BenchLog&) = delete;
  BenchLog& operator=(const BenchLog&) = delete;
  ~BenchLog() {
    LOG_MODULE_DESTORY(&handle_);
    std::filesystem::remove(path_);
  }

  LOGHANDLE handle() const { return handle_; }

 private:
  std::string path_;
  LOGHANDLE handle_ = null_log_handle;
};

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
  const std::string path = FilePath("vintra_bench_bare.log");
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

void Record(benchmark::State& state) {
  RunRecords(state, BenchLog("vintra_bench_record.log", kFlushSize, Log_Level_Trace, 0));
}

void RecordScrambled(benchmark::State& state) {
  RunRecords(state, BenchLog("vintra_bench_scrambled.log", kFlushSize, Log_Level_Trace, 1));
}

void RecordFlushed(benchmark::State& state) {
  RunRecords(state, BenchLog("vintra_bench_flushed.log", 0, Log_Level_Trace, 0));
}

void RecordFilteredOut(benchmark::State& state) {
  RunRecords(state, BenchLog("vintra_bench_filtered.log", kFlushSize, Log_Level_Warn, 0));
}

BENCHMARK(BareLoop);
BENCHMARK(Record);
BENCHMARK(RecordScrambled);
BENCHMARK(RecordFlushed);
BENCHMARK(RecordFilteredOut);

}  // namespace
