// The text of logs, which may be scrambled.
#ifndef VINTRA_TOOLS_LOGTEXT_H
#define VINTRA_TOOLS_LOGTEXT_H

#include <cstddef>
#include <span>

enum class Masking {
  kRecognise,  // from what the log begins with
  kOn,         // its bytes are scrambled, or to be
  kOff,
};

// One log, from its beginning on.
class LogText {
 public:
  explicit LogText(Masking masking) : masking_(masking) {}

  // Turns the next bytes of the log into text, in place. They are taken for text until a blank or another
  // sign tells.
  void Decode(std::span<char> bytes);

 private:
  Masking masking_;
  std::size_t looked_at_ = 0;
  long evidence_ = 0;  // above 0 for text, below it for scrambled bytes
};

#endif
