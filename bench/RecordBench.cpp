// What a record costs its host, and the bare loop that puts the same bytes into a file.
#include <cstring>
#include <string_view>

#include "VintraModule/VintraModule.h"
#include "bench/PeerBench.h"

namespace {

class VintraPeer : NotCopied {
 public:
  static constexpr const char* kName = "Vintra";
  static constexpr bool kLimitsFiles = true;
  static bool Does(Kind, int) { return true; }

  VintraPeer(Kind kind, const std::string& path) {
    const bool numbered = kind == Kind::kRollover || kind == Kind::kDate;
    LogConfigRecEx config{};
    std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s", path.c_str());
    std::snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%N");
    std::snprintf(config.module_name, sizeof config.module_name, "net");
    config.log_mode = kind == Kind::kRollover ? Log_Mode_Rollback
                      : kind == Kind::kDate   ? Log_Mode_Date
                                              : Log_Mode_Simple;
    config.log_level = kind == Kind::kFiltered ? Log_Level_Warn : Log_Level_Info;
    config.max_file_size = numbered ? kFileLimit / kRingFiles : kFileLimit;
    config.max_backup_index = kRingFiles;
    config.file_flush_size = kind == Kind::kFlushed ? 0 : kFlushSize;
    config.log_encrypt = kind == Kind::kScrambled;
    if (const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &handle_); code != 0) {
      std::fprintf(stderr, "%s: start-up failed with %d\n", config.log_file_name, code);
      std::exit(1);
    }
  }
  ~VintraPeer() { LOG_MODULE_DESTORY(&handle_); }

  void Long(int number) {
    LOG_INFO(handle_, "request %d from %s took %.3f ms", number, kHost, number * 0.001);
  }
  void Short(int number) { LOG_INFO(handle_, "request %d", number); }

 private:
  LOGHANDLE handle_ = null_log_handle;
};

// Formats with the C library, reads the clock, and writes behind a line head that never changes.
class BarePeer : NotCopied {
 public:
  static constexpr const char* kName = "bare loop";
  static constexpr bool kLimitsFiles = false;
  static bool Does(Kind kind, int threads) {
    return threads == 1 && (kind == Kind::kBuffered || kind == Kind::kFlushed);
  }

  BarePeer(Kind kind, const std::string& path)
      : flushes_(kind == Kind::kFlushed), file_(std::fopen(path.c_str(), "a")) {
    std::setvbuf(file_, buffer_.data(), _IOFBF, buffer_.size());
  }
  ~BarePeer() { std::fclose(file_); }

  void Long(int number) {
    Write(std::snprintf(message_, sizeof message_, "request %d from %s took %.3f ms", number, kHost,
                        number * 0.001));
  }
  void Short(int number) { Write(std::snprintf(message_, sizeof message_, "request %d", number)); }

 private:
  void Write(int length) {
    constexpr std::string_view kHead = "\r\n2026-11-16 13:24:14.007 [INFO]  net  ";
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    benchmark::DoNotOptimize(now);
    fwrite_unlocked(kHead.data(), kHead.size(), 1, file_);
    fwrite_unlocked(message_, static_cast<std::size_t>(length), 1, file_);
    if (flushes_) std::fflush(file_);
  }

  std::vector<char> buffer_ = std::vector<char>(kFlushSize);
  char message_[1024];
  bool flushes_;
  std::FILE* file_;
};

const bool registered = RegisterPeer<VintraPeer>() && RegisterPeer<BarePeer>();

}  // namespace

// With "--write SCENARIO/PEER COUNT" only writes records, and measures nothing.
int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "--write") == 0) {
    const auto writer = Writers().find(argv[2]);
    if (writer == Writers().end()) return 1;
    writer->second(std::atoi(argv[3]));
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
