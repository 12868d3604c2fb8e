// log4cplus with a file appender, our line and a buffer of 64 KiB, through its printf-style macro, which is
// faster than the one for streams. CR LF stands behind each record instead of before it.
//
// log4cplus has threads of its own, which have nothing to do here, from the moment it is loaded.
#include <log4cplus/fileappender.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <memory>

#include "bench/PeerBench.h"

namespace {

void RecordLog4cplus(benchmark::State& state) {
  const PeerFile file;
  log4cplus::helpers::Properties settings;
  settings.setProperty("File", file.path);
  settings.setProperty("Append", "true");
  settings.setProperty("ImmediateFlush", "false");
  settings.setProperty("BufferSize", std::to_string(kPeerFlushSize));
  const log4cplus::SharedAppenderPtr appender(new log4cplus::FileAppender(settings));
  appender->setLayout(
      std::make_unique<log4cplus::PatternLayout>("%D{%Y-%m-%d %H:%M:%S.%q} [%p]  %c  %m\r\n"));
  log4cplus::Logger logger = log4cplus::Logger::getInstance("net");
  logger.setLogLevel(log4cplus::INFO_LOG_LEVEL);
  logger.addAppender(appender);
  RunPeer(
      state, file,
      [&](int number, const char* host, double milliseconds) {
        LOG4CPLUS_INFO_FMT(logger, "request %d from %s took %.3f ms", number, host, milliseconds);
      },
      [&] { appender->close(); });
  logger.removeAllAppenders();
}

BENCHMARK(RecordLog4cplus);

}  // namespace
