// glog with its own file.
//
// The prefix is glog's own: "I20261116 13:24:14.007123  4242 GlogBench.cpp:35] ", with microseconds, the
// thread and the place but no module, and the line ends in LF. The file's stream writes every 4 KiB, the C
// library's buffer, which glog cannot be told to change.
#include <glog/logging.h>

#include <cstdlib>
#include <iomanip>

#include "bench/PeerBench.h"

namespace {

void StartGlog() {
  static const bool started = [] {
    setenv("TZ", ":/etc/localtime", 0);  // without it, glog has every record look whether that has changed
    FLAGS_timestamp_in_logfile_name = false;  // the file has the name that it is given
    FLAGS_max_log_size = 4095;                // MiB, the most: it is emptied before
    google::InitGoogleLogging("vintra_bench");
    google::SetLogSymlink(google::GLOG_INFO, "");
    return true;
  }();
  static_cast<void>(started);
}

void RecordGlog(benchmark::State& state) {
  StartGlog();
  const PeerFile file;
  google::SetLogDestination(google::GLOG_INFO, file.path.c_str());
  RunPeer(
      state, file,
      [](int number, const char* host, double milliseconds) {
        LOG(INFO) << "request " << number << " from " << host << " took " << std::fixed
                  << std::setprecision(3) << milliseconds << " ms";
      },
      [] { google::FlushLogFiles(google::GLOG_INFO); });
  google::SetLogDestination(google::GLOG_INFO, "");  // closes the file
}

BENCHMARK(RecordGlog);

}  // namespace
