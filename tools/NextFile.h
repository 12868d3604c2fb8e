// The file in which a log goes on when it is opened.
#ifndef VINTRA_TOOLS_NEXTFILE_H
#define VINTRA_TOOLS_NEXTFILE_H

#include <vintra.h>

#include <string>

struct NextFile {
  std::string path;
  std::string fate;  // what start-up does to it
};

// What start-up would choose now for a record that it accepts.
NextFile FindNextFile(const LogConfigRecEx& config);

#endif
