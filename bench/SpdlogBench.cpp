// spdlog's logger with its file sink for many threads.
//
// The line begins as spdlog's own does, which is faster than a pattern with our order, and ends in LF:
// "[2026-11-16 13:24:14.007] [net] [info] ". The file's stream gets a buffer of 64 KiB, and so writes at that
// size.
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <vector>

#include "bench/PeerBench.h"

namespace {

void RecordSpdlog(benchmark::State& state) {
  const PeerFile file;
  std::vector<char> buffer(kPeerFlushSize);
  spdlog::file_event_handlers handlers;
  handlers.after_open = [&](const spdlog::filename_t&, std::FILE* stream) {
    std::setvbuf(stream, buffer.data(), _IOFBF, buffer.size());
  };
  spdlog::logger logger("net",
                        std::make_shared<spdlog::sinks::basic_file_sink_mt>(file.path, false, handlers));
  RunPeer(
      state, file,
      [&](int number, const char* host, double milliseconds) {
        logger.info("request {} from {} took {:.3f} ms", number, host, milliseconds);
      },
      [&] { logger.flush(); });
}

BENCHMARK(RecordSpdlog);

}  // namespace
