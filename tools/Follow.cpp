#include "tools/Follow.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>

namespace {

constexpr std::size_t kBlockSize = 131072;
constexpr std::size_t kTailSize = 256;
constexpr int kInterval = 100;  // milliseconds between two looks

}  // namespace

void FollowedLog::ReportOnce() {
  if (!reported_) FailOn(path_.c_str());
  reported_ = true;
}

void FollowedLog::Restart(Output& output) {
  output.Restart(this);
  text_ = LogText(masking_);
  offset_ = 0;
  tail_.clear();
}

bool FollowedLog::Open(Output& output) {
  Descriptor file(
      open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));  // a FIFO does not hold up the others
  if (!file) {
    ReportOnce();
    return false;
  }
  file_ = std::move(file);
  reported_ = false;
  Restart(output);
  return true;
}

void FollowedLog::PutRest(Output& output) {
  std::vector<char> block(kTailSize + kBlockSize);
  while (!output.failed()) {
    // The tail and what follows it in one read, so that no emptying comes between them.
    const std::size_t known = tail_.size();
    const ssize_t got =
        pread(file_.get(), block.data(), known + kBlockSize, offset_ - static_cast<off_t>(known));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return ReportOnce();
    const std::string_view seen(block.data(), static_cast<std::size_t>(got));
    if (!seen.starts_with(std::string_view(tail_.data(), known))) {
      Restart(output);
      continue;
    }
    if (seen.size() == known) return;
    tail_.assign(seen.end() - static_cast<std::ptrdiff_t>(std::min(seen.size(), kTailSize)), seen.end());
    const std::span<char> fresh(block.data() + known, seen.size() - known);
    offset_ += static_cast<off_t>(fresh.size());
    text_.Decode(fresh);
    output.Put(this, {fresh.data(), fresh.size()});
  }
}

bool FollowedLog::IsReplaced() const {
  struct stat named = {};
  struct stat opened = {};
  return stat(path_.c_str(), &named) == 0 && fstat(file_.get(), &opened) == 0 &&
         (named.st_ino != opened.st_ino || named.st_dev != opened.st_dev);
}

void FollowedLog::PutNews(Output& output) {
  if (!file_ && !Open(output)) return;
  PutRest(output);
  if (!IsReplaced()) return;
  PutRest(output);  // what the old file received between the last look and its replacement
  if (Open(output)) PutRest(output);
}

void Follow(std::vector<FollowedLog>& logs, Output& output) {
  while (!output.failed()) {
    for (FollowedLog& log : logs) log.PutNews(output);
    pollfd reader = {STDOUT_FILENO, 0, 0};
    if (poll(&reader, 1, kInterval) > 0) return;  // it has gone; otherwise this is the pause
  }
}
