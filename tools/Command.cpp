#include "tools/Command.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>
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

void AppendEscaped(std::string& shown, char byte) {
  char escape[] = "\\xNN";
  std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(byte));
  shown += escape;
}

constexpr wchar_t kLastCharacter = 0x10FFFF;
constexpr auto kBegun = static_cast<std::size_t>(-2);  // as mbrtowc says it

// The bytes of what text begins with and a terminal may get as it is; 0 where it may not, kBegun where the
// end of it is not there yet. main has chosen UTF-8.
std::size_t HarmlessSize(std::string_view text, bool keeps_lines) {
  if (keeps_lines && (text.front() == '\n' || text.front() == '\t')) return 1;
  if (keeps_lines && text.front() == '\r') return text.size() == 1 ? kBegun : text[1] == '\n' ? 2 : 0;
  wchar_t character = 0;
  std::mbstate_t state{};
  const std::size_t size = std::mbrtowc(&character, text.data(), text.size(), &state);
  if (size == kBegun || size == static_cast<std::size_t>(-1)) return size == kBegun ? kBegun : 0;
  // The C library reads on beyond the last character that there is.
  const bool is_shown =
      character <= kLastCharacter && std::iswcntrl(static_cast<std::wint_t>(character)) == 0;
  return is_shown ? size : 0;
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
  std::string shown;
  const std::size_t begun = AppendShown(shown, text, false);
  for (const char byte : text.substr(text.size() - begun)) AppendEscaped(shown, byte);
  return shown;
}

std::size_t AppendShown(std::string& shown, std::string_view text, bool keeps_lines) {
  while (!text.empty()) {
    const std::size_t size = HarmlessSize(text, keeps_lines);
    if (size == kBegun) break;
    if (size == 0) AppendEscaped(shown, text.front());
    shown += text.substr(0, size);
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
  return text.size();
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
    case 10:
      return "the head of a line could not be formatted";
    case 12:
      return "the clock could not be read";
    case 13:
      return "the host name or the system's identification could not be read";
    default:
      return "unknown";
  }
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

Descriptor::~Descriptor() {
  if (descriptor_ >= 0) close(descriptor_);
}
