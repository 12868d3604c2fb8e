// Where things stand in an INI file, by line, which the library's own functions do not tell.
#ifndef VINTRA_TOOLS_INISCAN_H
#define VINTRA_TOOLS_INISCAN_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/Command.h"

// An INI file that can be read any number of times, as the library does.
struct IniFile {
  std::string name;  // for messages
  std::string path;  // of the file, or of the copy
  Descriptor copy;
};

// Finds the file of a name. What is no file, such as a pipe, is copied, up to 16 MiB. Returns false with
// errno when it cannot be read.
bool FindIniFile(const char* name, IniFile& file);

// Whether the name stands for standard input: "-", or what the system has for it.
bool IsStandardInput(std::string_view name);

struct IniKey {
  std::string name;
  int line;  // of the file, from 1
};

// A section as lookups see it: the first one of its name, up to the line that ends their search.
struct IniSection {
  bool readable = false;         // the file; errno says why not
  bool byte_order_mark = false;  // in front of the first line, which then is none of a section
  int line = 0;                  // of the section; 0 where it is not there
  int repeated = 0;              // line of a second section of the name, or 0
  std::vector<IniKey> keys;
  // The line that hides what is behind it, and what is wrong with it; 0 where there is none.
  int bad_line = 0;
  const char* problem = "";
};

IniSection ScanSection(const char* file, std::string_view section);

// Says why a section that was looked for is not to be found. Returns kFailed.
int FailOnMissing(const IniFile& file, const IniSection& lines, const char* section);

struct IniProblem {
  int line;
  std::string text;
};

// What is wrong with the file: a byte order mark, sections without a name, and the first malformed line of
// each section; nothing behind a section's own line that is malformed.
std::vector<IniProblem> ScanProblems(const char* file);

#endif
