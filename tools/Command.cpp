#include "tools/Command.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t kMessageSize = 16384;  // for a file, a section, a key and a value of the longest

void Complain(const char* format, va_list args) VINTRA_PRINTF(1, 0);

void Complain(const char* format, va_list args) {
  char message[kMessageSize] = "";
  std::vsnprintf(message, sizeof message, format, args);
  ShowStatus("");
  std::fprintf(stderr, "vintra: %s\n", Printable(message).c_str());
}

}  // namespace

int Fail(const char* format, ...) {
  va_list args;
  va_start(args, format);
  Complain(format, args);
  va_end(args);
  return kFailed;
}

int FailOn(const char* subject) { return Fail("%s: %s", subject, std::strerror(errno)); }

std::string Printable(std::string_view text) {
  std::string result;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    char escape[] = "\\xNN";
    if (code < ' ' || code == 0x7F) std::snprintf(escape, sizeof escape, "\\x%02X", code);
    result += code < ' ' || code == 0x7F ? std::string_view(escape) : std::string_view(&byte, 1);
  }
  return result;
}

void ShowStatus(const char* text) {
  static bool shown = false;
  if (shown) std::fputs("\r\033[K", stderr);
  std::fputs(text, stderr);
  shown = *text != '\0';
}

bool WorthRepeating(int descriptor, short events) {
  if (errno != EAGAIN) return errno == EINTR;
  pollfd source = {descriptor, events, 0};
  poll(&source, 1, -1);
  return true;
}

int HintAtHelp(const char* name) {
  std::fprintf(stderr, "Try '%s --help'.\n", name);
  return kUsage;
}

int Misused(const char* name, const char* format, ...) {
  va_list args;
  va_start(args, format);
  Complain(format, args);
  va_end(args);
  return HintAtHelp(name);
}

const char* MeaningOf(sint32 code) {
  switch (code) {
    case 1:
      return "its configuration is invalid, or it has no open file";
    case 2:
      return "out of memory";
    case 4:
      return "the folder could not be made";
    case 5:
      return "a file could not be opened";
    case 7:
      return "writing failed, as on a full disk";
    case 9:
      return "the configuration is invalid";
    case 12:
      return "the clock could not be read";
    default:
      return "see the library's error log";
  }
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

Descriptor::~Descriptor() {
  if (descriptor_ >= 0) close(descriptor_);
}
