// The two ways of writing a key: into a new file that takes the old one's place, or at the file's end.
#ifndef VINTRA_CONFIGFILEINI_INIREWRITE_H
#define VINTRA_CONFIGFILEINI_INIREWRITE_H

#include <string_view>

#include "ConfigFileINI/ConfigFileINIInter.h"

namespace vintra {

// A key's line as it is written: key, separator, value, LF.
struct KeyLine {
  std::string_view key;
  sint8 separator;
  std::string_view value;
};

// Copy the file that a lookup has searched, with line in the place of the key's lines or behind the section's
// line, and give the copy the file's name once it is on the disk. Return 0, kFileUnreadable, kNoTarget,
// kLineUnreadable or kNotWritten. After any but 0 the file is as it was, and the temporary file may remain.
sint32 ReplaceKey(const INIFileRec& found, const KeyLine& line);
sint32 InsertKey(const INIFileRec& found, const KeyLine& line);

// Appends an empty line, the section's line and line to the file at path, which is made if it is_missing. The
// key's line has up to kLongestLine characters. Returns 0, kNoTarget or kNotWritten; what was half written is
// then taken back.
sint32 AppendSection(const sint8* path, bool is_missing, std::string_view section, const KeyLine& line);

}  // namespace vintra

#endif
