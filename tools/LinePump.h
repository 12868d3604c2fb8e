// Standard input on its way into a log.
#ifndef VINTRA_TOOLS_LINEPUMP_H
#define VINTRA_TOOLS_LINEPUMP_H

#include <sys/types.h>

#include <csignal>
#include <string>

#include "tools/Command.h"
#include "tools/Progress.h"

using RecordFunction = sint32 (*)(LOGHANDLE, const sint8*, ...);

// SIGTERM, SIGINT and SIGHUP as something to wait for. The first two end the process when one comes after the
// first was taken; a terminal that is closed may send SIGHUP twice.
class StopSignals {
 public:
  StopSignals();
  void Take();
  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

 private:
  sigset_t signals_ = {};
  Descriptor descriptor_;
};

class LinePump {
 public:
  LinePump(LOGHANDLE log, RecordFunction write, bool keep_going, StopSignals& signals);

  // Writes the lines of standard input into the log up to its end, a signal or, unless keep_going, a line
  // that could not be written. Everything is flushed then. Returns what to exit with.
  int Run();

 private:
  bool Step();
  void Drain();
  ssize_t Read(std::size_t limit);
  bool WriteLines();
  bool WriteRecord(char* line, std::size_t length);
  bool Refuse(sint32 code, const char* what);

  LOGHANDLE log_;
  RecordFunction write_;
  bool keep_going_;
  StopSignals& signals_;
  bool input_is_file_;
  Progress progress_;
  std::string pending_;      // has been read and is not in the log
  std::size_t scanned_ = 0;  // of it, has no line end
  std::uint64_t lines_ = 0;
  bool unflushed_ = false;
  bool refused_ = false;     // something that was to be written
  bool unreadable_ = false;  // the input
};

#endif
