#include "tools/Command.h"

#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

void Complain(const char* format, va_list args) {
  std::fputs("vintra: ", stderr);
  std::vfprintf(stderr, format, args);
  std::fputc('\n', stderr);
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
      return "writing failed, with which unflushed lines may be lost too";
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
