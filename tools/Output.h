// Text of logs on its way to standard output.
#ifndef VINTRA_TOOLS_OUTPUT_H
#define VINTRA_TOOLS_OUTPUT_H

#include <string>
#include <string_view>

class Output {
 public:
  // A terminal gets what AppendShown makes of the text.
  explicit Output(bool is_terminal) : is_terminal_(is_terminal) {}

  // Writes text to standard output at once, without a buffer of its own. source tells logs apart: the last
  // record of a log has no line end, so where another one goes on the line is ended first. Where
  // writing fails, that is reported, and all later calls do nothing.
  void Put(const void* source, std::string_view text);

  // Says that what source puts out next is from the beginning of a file again.
  void Restart(const void* source) {
    if (source == source_) source_ = nullptr;
  }

  // Ends the line that is begun, if any.
  void EndLine();

  [[nodiscard]] bool failed() const { return failed_; }

 private:
  void Write(std::string_view text);
  void WriteAll(std::string_view text);

  bool is_terminal_;
  std::string begun_;  // of a character or a line break, for the terminal
  std::string shown_;  // what the terminal gets of a text
  const void* source_ = nullptr;
  char last_ = '\n';
  bool failed_ = false;
};

#endif
