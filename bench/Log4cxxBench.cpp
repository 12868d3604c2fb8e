// log4cxx with a file appender and our line, through its macro for fmt, which is faster than the one for
// streams. CR LF stands behind each record instead of before it.
//
// The buffer has 64 KiB, but log4cxx writes what is in it in pieces of 1 KiB.
#include <fmt/format.h>
#include <log4cxx/fileappender.h>
#include <log4cxx/logger.h>
#include <log4cxx/patternlayout.h>

#include <memory>

#include "bench/PeerBench.h"

namespace {

void RecordLog4cxx(benchmark::State& state) {
  const PeerFile file;
  const auto appender = std::make_shared<log4cxx::FileAppender>(
      std::make_shared<log4cxx::PatternLayout>("%d{yyyy-MM-dd HH:mm:ss.SSS} [%p]  %c  %m\r%n"), file.path,
      true, true, kPeerFlushSize);
  const log4cxx::LoggerPtr logger = log4cxx::Logger::getLogger("net");
  logger->setLevel(log4cxx::Level::getInfo());
  logger->addAppender(appender);
  RunPeer(
      state, file,
      [&](int number, const char* host, double milliseconds) {
        LOG4CXX_INFO_FMT(logger, "request {} from {} took {:.3f} ms", number, host, milliseconds);
      },
      [&] { appender->close(); });
  logger->removeAllAppenders();
}

BENCHMARK(RecordLog4cxx);

}  // namespace
