// glog with its own file.
//
// The prefix is glog's own: "I20261116 13:24:14.007123  4242 GlogBench.cpp:35] ", with microseconds, the
// thread and the place but no module, and the line ends in LF. The file's stream writes every 4 KiB, the C
// library's buffer, which glog cannot be told to change. Its files have a limit but no ring and no days, and
// nothing opens one before the first record. A level below the threshold is VLOG: the others cannot be
// filtered before they are formatted.
#include <glog/logging.h>

#include <iomanip>

#include "bench/PeerBench.h"

namespace {

class GlogPeer : NotCopied {
 public:
  static constexpr const char* kName = "glog";
  static constexpr bool kLimitsFiles = false;
  static bool Does(Kind kind, int) {
    return kind == Kind::kBuffered || kind == Kind::kFlushed || kind == Kind::kFiltered;
  }

  GlogPeer(Kind kind, const std::string& path) : filtered_(kind == Kind::kFiltered) {
    static const bool started = [] {
      setenv("TZ", ":/etc/localtime", 0);  // without it, glog has every record look whether that has changed
      FLAGS_timestamp_in_logfile_name = false;  // the file has the name that it is given
      FLAGS_max_log_size = 4095;                // MiB, the most: it is emptied before
      google::InitGoogleLogging("vintra_bench");
      google::SetLogSymlink(google::GLOG_INFO, "");
      return true;
    }();
    static_cast<void>(started);
    FLAGS_logbuflevel = kind == Kind::kFlushed ? -1 : google::GLOG_INFO;
    google::SetLogDestination(google::GLOG_INFO, path.c_str());
  }
  ~GlogPeer() {
    google::FlushLogFiles(google::GLOG_INFO);
    google::SetLogDestination(google::GLOG_INFO, "");  // closes the file
  }

  void Long(int number) {
    LOG_IF(INFO, IsOn()) << "request " << number << " from " << kHost << " took " << std::fixed
                         << std::setprecision(3) << number * 0.001 << " ms";
  }
  void Short(int number) { LOG_IF(INFO, IsOn()) << "request " << number; }

 private:
  bool IsOn() const { return !filtered_ || VLOG_IS_ON(1); }

  const bool filtered_;
};

const bool registered = RegisterPeer<GlogPeer>();

}  // namespace
