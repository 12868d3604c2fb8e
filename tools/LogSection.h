// What a log section of an INI file comes to: the value that each key has when LOG_MODULE_INIT reads it.
#ifndef VINTRA_TOOLS_LOGSECTION_H
#define VINTRA_TOOLS_LOGSECTION_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/Command.h"

enum class Verdict {
  kSet,      // as the section says
  kDefault,  // by default, which need not be bad
  kUnused,   // not read in this mode
  kWrong     // not what the section says, or nothing to start up with
};

struct Setting {
  std::string key;
  std::string value;  // in force
  Verdict verdict;
  std::string remark;  // why the value is what it is, or empty
};

struct LogSection {
  LogConfigRecEx config = {};  // what start-up is given
  std::vector<Setting> settings;
};

// The letters of a format's directives, known or not; a blank for a "%" at its end.
std::string DirectivesOf(std::string_view format);

LogSection ReadLogSection(const char* file, const char* section);

#endif
