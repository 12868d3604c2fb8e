#include "tools/LinePump.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::size_t kBlockSize = 65536;
constexpr int kPause = 1000;  // milliseconds without input, after which what there was is flushed

// The size of standard input where it is a file, else 0.
std::uint64_t InputSize() {
  struct stat status = {};
  const bool is_file = fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode);
  return is_file ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace

StopSignals::StopSignals() {
  sigemptyset(&signals_);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction action = {};
    // What the parent has switched off stays so.
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN)
      sigaddset(&signals_, signal);
  }
  sigprocmask(SIG_BLOCK, &signals_, nullptr);
  descriptor_ = Descriptor(signalfd(-1, &signals_, SFD_CLOEXEC | SFD_NONBLOCK));
}

void StopSignals::Take() {
  signalfd_siginfo signal = {};
  while (read(descriptor(), &signal, sizeof signal) > 0) continue;  // all that have come together
  sigdelset(&signals_, SIGHUP);
  sigprocmask(SIG_UNBLOCK, &signals_, nullptr);
}

LinePump::LinePump(LOGHANDLE log, RecordFunction write, bool keep_going, StopSignals& signals)
    : log_(log),
      write_(write),
      keep_going_(keep_going),
      signals_(signals),
      input_is_file_(InputSize() != 0),
      progress_(InputSize(), true) {}

// Reads up to limit bytes. Returns their number, 0 at the end of the input and -1 when it cannot be read.
ssize_t LinePump::Read(std::size_t limit) {
  const std::size_t before = pending_.size();
  pending_.resize(before + std::min(limit, kBlockSize));
  const ssize_t got = read(STDIN_FILENO, pending_.data() + before, pending_.size() - before);
  pending_.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  if (got > 0) progress_.Add(static_cast<std::uint64_t>(got));
  return got;
}

// Reports the first thing that was refused. Returns whether the run goes on all the same.
bool LinePump::Refuse(sint32 code, const char* what) {
  if (!refused_) {
    Fail("line %" PRIu64 " %s (%d: %s)", lines_, what, static_cast<int>(code), MeaningOf(code));
  }
  refused_ = true;
  return keep_going_;
}

// Writes a line, which has room for a terminator.
bool LinePump::WriteRecord(char* line, std::size_t length) {
  if (length != 0 && line[length - 1] == '\r') --length;
  line[length] = '\0';
  ++lines_;
  unflushed_ = true;
  const sint32 code = write_(log_, "%s", line);
  return code == 0 || Refuse(code, "could not be written");
}

// Writes every whole line of what is pending. Returns false where the run has to end.
bool LinePump::WriteLines() {
  char* line = pending_.data();
  const char* const end = line + pending_.size();
  char* from = line + scanned_;
  bool goes_on = true;
  while (goes_on) {
    char* const line_end = from + std::strcspn(from, "\n");  // or a NUL, as at the end
    if (line_end == end) break;
    goes_on = WriteRecord(line, static_cast<std::size_t>(line_end - line));
    from = line = line_end + 1;
  }
  pending_.erase(0, static_cast<std::size_t>(line - pending_.data()));
  scanned_ = pending_.size();
  return goes_on;
}

// Takes what a pipe holds, as the program that wrote it takes it for accepted. A file keeps what is not read.
void LinePump::Drain() {
  int waiting = 0;
  if (input_is_file_ || ioctl(STDIN_FILENO, FIONREAD, &waiting) != 0) return;
  while (waiting > 0) {
    const ssize_t got = Read(static_cast<std::size_t>(waiting));
    if (got <= 0 || !WriteLines()) return;
    waiting -= static_cast<int>(got);
  }
}

// Waits for input and writes it. Returns false where the run has to end.
bool LinePump::Step() {
  pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {signals_.descriptor(), POLLIN, 0}};
  const int ready = poll(sources, 2, unflushed_ ? kPause : -1);
  if (ready < 0) return true;  // it was interrupted
  if (ready == 0) {
    unflushed_ = false;
    const sint32 code = LOG_MSG_FLUSH(log_);
    return code == 0 || Refuse(code, "and lines before it could not be flushed");
  }
  if (sources[1].revents != 0) {
    signals_.Take();
    Drain();
    return false;
  }
  const ssize_t got = Read(kBlockSize);
  if (got > 0) return WriteLines();
  if (got == 0) return false;
  unreadable_ = errno != EINTR && errno != EAGAIN;
  if (unreadable_) FailOn("standard input");
  return !unreadable_;
}

int LinePump::Run() {
  while (Step()) continue;
  if (refused_ && !keep_going_) {
    if (!pending_.empty()) Fail("%zu bytes that were read behind it are not in the log", pending_.size());
  } else if (!pending_.empty()) {
    const std::size_t length = pending_.size();
    pending_.push_back('\0');
    WriteRecord(pending_.data(), length);
  }
  if (const sint32 code = LOG_MSG_FLUSH(log_); code != 0)
    Refuse(code, "and lines before it could not be flushed");
  return refused_ || unreadable_ ? kFailed : kDone;
}
