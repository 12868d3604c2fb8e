// spdlog's logger with its file sinks for many threads.
//
// Once with our line, level and all, with CR LF behind each record instead of before it; and once with the
// line that spdlog writes by itself, which it has a faster way for: "[2026-11-16 13:24:14.007] [net] [info] "
// and LF. The file's stream gets a buffer of 64 KiB, and so writes at that size. The daily sink's files have
// no limit.
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/daily_file_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include "bench/PeerBench.h"

namespace {

char stream_buffer[kFlushSize];

spdlog::sink_ptr MakeSink(Kind kind, const std::string& path) {
  namespace sinks = spdlog::sinks;
  spdlog::file_event_handlers handlers;
  handlers.after_open = [](const spdlog::filename_t&, std::FILE* stream) {
    std::setvbuf(stream, stream_buffer, _IOFBF, sizeof stream_buffer);
  };
  if (kind == Kind::kRollover) {
    return std::make_shared<sinks::rotating_file_sink_mt>(path, kFileLimit / kRingFiles, kRingFiles - 1,
                                                          false, handlers);
  }
  if (kind == Kind::kDate) return std::make_shared<sinks::daily_file_sink_mt>(path, 0, 0, false, 0, handlers);
  return std::make_shared<sinks::basic_file_sink_mt>(path, false, handlers);
}

enum class Line { kOurs, kItsOwn };

template <Line line>
class SpdlogPeer {
 public:
  static constexpr const char* kName = line == Line::kOurs ? "spdlog" : "spdlog, its line";
  static constexpr bool kLimitsFiles = false;
  static bool Does(Kind kind, int) { return kind != Kind::kScrambled; }

  SpdlogPeer(Kind kind, const std::string& path) : logger_("net", MakeSink(kind, path)) {
    if (line == Line::kOurs) {
      logger_.set_formatter(std::make_unique<spdlog::pattern_formatter>(
          "%Y-%m-%d %H:%M:%S.%e [%l]  %n  %v", spdlog::pattern_time_type::local, "\r\n"));
    }
    if (kind == Kind::kFiltered) logger_.set_level(spdlog::level::warn);
    if (kind == Kind::kFlushed) logger_.flush_on(spdlog::level::info);
  }

  void Long(int number) { logger_.info("request {} from {} took {:.3f} ms", number, kHost, number * 0.001); }
  void Short(int number) { logger_.info("request {}", number); }

 private:
  spdlog::logger logger_;
};

const bool registered = RegisterPeer<SpdlogPeer<Line::kOurs>>() && RegisterPeer<SpdlogPeer<Line::kItsOwn>>();

}  // namespace
