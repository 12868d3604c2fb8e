// What the subcommands of vintra share: how they are called, how they complain and what they exit with.
#ifndef VINTRA_TOOLS_COMMAND_H
#define VINTRA_TOOLS_COMMAND_H

#include <getopt.h>
#include <vintra.h>

#include <algorithm>
#include <string>
#include <string_view>

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2 };

// The subcommands. Each takes its own name as argv[0] and returns an ExitCode.
int Cat(int argc, char** argv);
int Check(int argc, char** argv);
int Write(int argc, char** argv);

// Prints "vintra: " and the message to standard error, control characters as \xNN, and returns kFailed.
int Fail(const char* format, ...) VINTRA_PRINTF(1, 2);

// Says what errno means for the subject, in the same way.
int FailOn(const char* subject);

// Text as a terminal shows it without obeying it: control characters, and bytes that are no UTF-8, as \xNN.
std::string Printable(std::string_view text);

// Appends to shown what Printable makes of text, of which line breaks and tabs may stay as they are. Returns
// how many bytes are left of a character or line break whose end is not there yet.
std::size_t AppendShown(std::string& shown, std::string_view text, bool keeps_lines);

// Shows how far a run is, on a line of standard error that gives way to a message, or to an empty text.
void ShowStatus(const char* text);

// Whether the system call that failed on a descriptor is worth repeating. Waits for events where it is
// non-blocking.
bool WorthRepeating(int descriptor, short events);

// Prints where help is, once the mistake is named; name is argv[0] of a subcommand. Returns kUsage.
int HintAtHelp(const char* name);

// Names a mistake in the arguments, and where help is. Returns kUsage.
int Misused(const char* name, const char* format, ...) VINTRA_PRINTF(2, 3);

// What a result code of the library means to somebody who writes a log.
const char* MeaningOf(sint32 code);

// Copies text into field, cut to fit and always terminated. Returns false when it was cut.
template <std::size_t N>
bool Store(char (&field)[N], std::string_view text) {
  *std::copy_n(text.data(), std::min(text.size(), N - 1), field) = '\0';
  return text.size() < N;
}

// A descriptor that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : descriptor_(other.descriptor_) { other.descriptor_ = -1; }
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  [[nodiscard]] int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

#endif
