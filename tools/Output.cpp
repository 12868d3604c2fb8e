#include "tools/Output.h"

#include <poll.h>
#include <unistd.h>

#include "tools/Command.h"

void Output::Put(const void* source, std::string_view text) {
  if (text.empty()) return;
  const bool begins_with_line_end = text.front() == '\r' || text.front() == '\n';
  if (source != source_ && !begins_with_line_end) EndLine();
  source_ = source;
  Write(text);
}

void Output::EndLine() {
  if (last_ != '\n') Write("\r\n");
}

void Output::Write(std::string_view text) {
  last_ = text.back();
  if (!is_terminal_) return WriteAll(text);
  begun_ += text;
  shown_.clear();
  begun_.erase(0, begun_.size() - AppendShown(shown_, begun_, true));
  WriteAll(shown_);
}

void Output::WriteAll(std::string_view text) {
  while (!failed_ && !text.empty()) {
    const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (!WorthRepeating(STDOUT_FILENO, POLLOUT)) {
      FailOn("standard output");
      failed_ = true;
    }
  }
}
