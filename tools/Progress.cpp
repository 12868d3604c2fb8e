#include "tools/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "tools/Command.h"

namespace {

constexpr std::uint64_t kMebibyte = 1 << 20;
constexpr std::uint64_t kWorthShowing = 8 * kMebibyte;
constexpr auto kInterval = std::chrono::milliseconds(100);

}  // namespace

Progress::Progress(std::uint64_t total, bool terminal_is_free)
    : total_(total),
      shown_(terminal_is_free && total >= kWorthShowing && isatty(STDERR_FILENO) == 1),
      next_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (shown_) ShowStatus("");
}

void Progress::Add(std::uint64_t bytes) {
  done_ += bytes;
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  next_ = now + kInterval;
  // The input may grow while it is read.
  const std::uint64_t percent = std::min<std::uint64_t>(done_ * 100 / total_, 100);
  char text[64] = "";
  std::snprintf(text, sizeof text, "%3" PRIu64 "%%  %" PRIu64 " of %" PRIu64 " MiB", percent,
                done_ / kMebibyte, std::max(done_, total_) / kMebibyte);
  ShowStatus(text);
}
