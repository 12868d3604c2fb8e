// Reads an INI file from its top. What a section, a key and a continued line are is decided here only.
#ifndef VINTRA_CONFIGFILEINI_INIREADER_H
#define VINTRA_CONFIGFILEINI_INIREADER_H

#include <string_view>

#include "Common/Handles.h"
#include "ConfigFileINI/ConfigFileINIInter.h"

namespace vintra {

class IniReader {
 public:
  explicit IniReader(const sint8* path) : file_(std::fopen(path, "re")) {}

  // False when the file could not be opened.
  explicit operator bool() const { return file_ != nullptr; }

  // Goes on behind the next section line. Returns 0, kEndOfFile, kLineUnreadable or kMalformedLine. The name
  // holds until the next call.
  sint32 NextSection(std::string_view& name);

  // Goes on behind the line of the next section of a name. Returns kNoSection at the end.
  sint32 FindSection(std::string_view section);

  // Reads the next key of the section that was found, with all its lines. Returns 0, kNoKey at the end of the
  // section, kLineUnreadable, kMalformedLine or kLineTooLong. Both texts hold until the next call.
  sint32 NextKey(sint8*& key, sint8*& value);

  sint32 section_line_no() const { return section_line_no_; }
  sint32 key_line_no() const { return key_line_no_; }
  sint32 key_lines() const { return key_lines_; }

 private:
  sint32 ReadLine(sint8* line);
  sint32 JoinContinuations();

  FilePtr file_;
  sint32 line_no_ = 0;
  sint32 section_line_no_ = 0;
  sint32 key_line_no_ = 0;
  sint32 key_lines_ = 0;
  sint8 line_[kLineSize];
  sint8 continuation_[kLineSize];
};

}  // namespace vintra

#endif
