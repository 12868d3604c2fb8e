// log4cplus with its file appenders, our line and a buffer of 64 KiB, through its printf-style macro, which
// is faster than the one for streams. CR LF stands behind each record instead of before it. The daily
// appender's files have no limit.
//
// log4cplus has threads of its own, which have nothing to do here, from the moment it is loaded.
#include <log4cplus/fileappender.h>
#include <log4cplus/helpers/property.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include "bench/PeerBench.h"

namespace {

log4cplus::SharedAppenderPtr MakeAppender(Kind kind, const std::string& path) {
  log4cplus::helpers::Properties settings;
  settings.setProperty("File", path);
  settings.setProperty("Append", "true");
  settings.setProperty("ImmediateFlush", kind == Kind::kFlushed ? "true" : "false");
  settings.setProperty("BufferSize", std::to_string(kFlushSize));
  if (kind == Kind::kRollover) {
    settings.setProperty("MaxFileSize", std::to_string(kFileLimit / kRingFiles));
    settings.setProperty("MaxBackupIndex", std::to_string(kRingFiles - 1));
    return log4cplus::SharedAppenderPtr(new log4cplus::RollingFileAppender(settings));
  }
  if (kind == Kind::kDate) {
    settings.setProperty("Schedule", "DAILY");
    settings.setProperty("RollOnClose", "false");
    return log4cplus::SharedAppenderPtr(new log4cplus::DailyRollingFileAppender(settings));
  }
  return log4cplus::SharedAppenderPtr(new log4cplus::FileAppender(settings));
}

class Log4cplusPeer : NotCopied {
 public:
  static constexpr const char* kName = "log4cplus";
  static constexpr bool kLimitsFiles = false;
  static bool Does(Kind kind, int) { return kind != Kind::kScrambled; }

  Log4cplusPeer(Kind kind, const std::string& path) : appender_(MakeAppender(kind, path)) {
    appender_->setLayout(
        std::make_unique<log4cplus::PatternLayout>("%D{%Y-%m-%d %H:%M:%S.%q} [%p]  %c  %m\r\n"));
    logger_.setLogLevel(kind == Kind::kFiltered ? log4cplus::WARN_LOG_LEVEL : log4cplus::INFO_LOG_LEVEL);
    logger_.addAppender(appender_);
  }
  ~Log4cplusPeer() {
    appender_->close();
    logger_.removeAllAppenders();
  }

  void Long(int number) {
    LOG4CPLUS_INFO_FMT(logger_, "request %d from %s took %.3f ms", number, kHost, number * 0.001);
  }
  void Short(int number) { LOG4CPLUS_INFO_FMT(logger_, "request %d", number); }

 private:
  log4cplus::SharedAppenderPtr appender_;
  log4cplus::Logger logger_ = log4cplus::Logger::getInstance("net");
};

const bool registered = RegisterPeer<Log4cplusPeer>();

}  // namespace
