// How far a long run has come, on the last line of a terminal.
#ifndef VINTRA_TOOLS_PROGRESS_H
#define VINTRA_TOOLS_PROGRESS_H

#include <chrono>
#include <cstdint>

class Progress {
 public:
  // Shows nothing unless standard error is a terminal that nothing else is written to, and total, in bytes,
  // is large enough to be waited for.
  Progress(std::uint64_t total, bool terminal_is_free);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Add(std::uint64_t bytes);

 private:
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  bool shown_;
  std::chrono::steady_clock::time_point next_;
};

#endif
