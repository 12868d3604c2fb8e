// Following logs while they are written.
#ifndef VINTRA_TOOLS_FOLLOW_H
#define VINTRA_TOOLS_FOLLOW_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "tools/Command.h"
#include "tools/LogText.h"
#include "tools/Output.h"

// One log, by its name: what the name stands for may grow, be emptied, and be another file later.
class FollowedLog {
 public:
  FollowedLog(std::string path, Masking masking)
      : path_(std::move(path)), masking_(masking), text_(masking) {}

  // Puts out what is new.
  void PutNews(Output& output);

 private:
  bool Open(Output& output);
  void PutRest(Output& output);
  void Restart(Output& output);
  [[nodiscard]] bool IsReplaced() const;
  void ReportOnce();

  std::string path_;
  Masking masking_;
  LogText text_;
  Descriptor file_;
  off_t offset_ = 0;  // up to where it has been read
  // The bytes before offset_. Where they are not there any more the file was emptied, even if it has grown
  // beyond offset_ since.
  std::vector<char> tail_;
  bool reported_ = false;  // that it cannot be read
};

// Puts out the logs and what is added to them, until standard output cannot be written or has no reader.
void Follow(std::vector<FollowedLog>& logs, Output& output);

#endif
