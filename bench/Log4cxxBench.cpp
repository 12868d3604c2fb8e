// log4cxx with its file appenders and our line, through its macro for fmt, which is faster than the one for
// streams. CR LF stands behind each record instead of before it. The daily policy's files have no limit.
//
// The buffer has 64 KiB, but log4cxx writes what is in it in pieces of 1 KiB.
#include <fmt/format.h>
#include <log4cxx/fileappender.h>
#include <log4cxx/helpers/pool.h>
#include <log4cxx/logger.h>
#include <log4cxx/patternlayout.h>
#include <log4cxx/rolling/rollingfileappender.h>
#include <log4cxx/rolling/timebasedrollingpolicy.h>

#include "bench/PeerBench.h"

namespace {

log4cxx::FileAppenderPtr MakeAppender(Kind kind, const std::string& path) {
  log4cxx::helpers::Pool pool;
  const bool rolls = kind == Kind::kRollover || kind == Kind::kDate;
  const auto rolling = std::make_shared<log4cxx::rolling::RollingFileAppender>();
  const log4cxx::FileAppenderPtr appender = rolls ? rolling : std::make_shared<log4cxx::FileAppender>();
  appender->setFile(path);  // first, as the files of a ring are named for it
  if (kind == Kind::kRollover) {
    rolling->setMaximumFileSize(kFileLimit / kRingFiles);
    rolling->setMaxBackupIndex(kRingFiles - 1);
  }
  if (kind == Kind::kDate) {
    const auto days = std::make_shared<log4cxx::rolling::TimeBasedRollingPolicy>();
    days->setFileNamePattern(path + ".%d{yyyyMMdd}");
    days->activateOptions(pool);
    rolling->setRollingPolicy(days);
  }
  appender->setLayout(
      std::make_shared<log4cxx::PatternLayout>("%d{yyyy-MM-dd HH:mm:ss.SSS} [%p]  %c  %m\r%n"));
  appender->setAppend(true);
  if (kind != Kind::kFlushed) {  // without a buffer of its own, it writes every record at once
    appender->setBufferedIO(true);
    appender->setBufferSize(kFlushSize);
  }
  appender->activateOptions(pool);
  return appender;
}

class Log4cxxPeer : NotCopied {
 public:
  static constexpr const char* kName = "log4cxx";
  static constexpr bool kLimitsFiles = false;
  static bool Does(Kind kind, int) { return kind != Kind::kScrambled; }

  Log4cxxPeer(Kind kind, const std::string& path) : appender_(MakeAppender(kind, path)) {
    logger_->setLevel(kind == Kind::kFiltered ? log4cxx::Level::getWarn() : log4cxx::Level::getInfo());
    logger_->addAppender(appender_);
  }
  ~Log4cxxPeer() {
    appender_->close();
    logger_->removeAllAppenders();
  }

  void Long(int number) {
    LOG4CXX_INFO_FMT(logger_, "request {} from {} took {:.3f} ms", number, kHost, number * 0.001);
  }
  void Short(int number) { LOG4CXX_INFO_FMT(logger_, "request {}", number); }

 private:
  log4cxx::FileAppenderPtr appender_;
  log4cxx::LoggerPtr logger_ = log4cxx::Logger::getLogger("net");
};

const bool registered = RegisterPeer<Log4cxxPeer>();

}  // namespace
