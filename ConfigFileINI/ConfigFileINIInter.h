// The primitives of INI files: lines, key lookup, the names of files that are written.
#ifndef VINTRA_CONFIGFILEINI_CONFIGFILEINIINTER_H
#define VINTRA_CONFIGFILEINI_CONFIGFILEINIINTER_H

#include <cstdio>

#include "ConfigFileINI/ConfigFileINI.h"

namespace vintra {

constexpr std::size_t kLineSize = VINTRA_INI_LINE_SIZE;
constexpr sint32 kLongestLine = kLineSize - 1;  // characters
constexpr std::size_t kIniPathSize = 260;
constexpr sint8 kBlanks[] = " \t";

// Results of the functions below. They stay inside this module.
enum IniCode : sint32 {
  kIniSuccess = 0,
  kNoSection = -1,
  kNoKey = -2,  // the section has no further key, or not the one sought
  kEmptyKey = -4,
  kNoSeparator = -5,
  kFileUnreadable = -10,  // it cannot be opened; errno says why
  kNoTarget = -11,        // nothing to write to: a temporary file, or the file to append to
  kLineUnreadable = -12,
  kNotWritten = -13,  // also a key or a line that could not be read back
  kMalformedLine = -14,
  kReadError = -15,
  kLineTooLong = -22,
  kNullArgument = -23,
  kEndOfFile = -24,
};

// A byte that ends a line as its last one.
inline bool ClosesLine(sint8 byte) { return byte == '\f' || byte == '\x1A'; }

}  // namespace vintra

// Where a lookup has found its key. Lines count from 1, as FileGetLine returns them.
struct INIFileRec {
  const sint8* file_name;  // the caller's
  sint32 Ini_section_line_no;
  sint32 Ini_key_line_no;  // of the last line examined while no key is found
  sint32 Ini_key_lines;    // with those that continue the first
};

extern const INIFileRec null_ini_file;

// Reads one line into str_buf, which holds buf_len characters and a terminator; the rest of a longer one is
// the next line. Returns the number of characters, kEndOfFile with str_buf as it was, or kReadError. The
// stream is not locked: it is nobody else's.
sint32 FileGetLine(FILE* file_in, sint8* str_buf, sint32 buf_len);

// Remove the blanks at one end, in place. Return their argument, which may be null.
sint8* string_trim_left(sint8* str_buf);
sint8* string_trim_right(sint8* str_buf);

// Splits a key's line in place at its first separator. Returns 0, or with the line unchanged kNoSeparator,
// kEmptyKey, or -1 for a null or empty text.
sint32 SplitKeyValue(sint8* buf, sint8** key, sint8** val);

// Finds the value of a key and copies it into buf, which holds a whole line. The names are not empty. Returns
// 0 or kNoSection, kNoKey, kFileUnreadable, kLineUnreadable, kMalformedLine, kLineTooLong, kNullArgument. The
// record's numbers say how far the search has come.
sint32 GetConfigFileKey(INIFileRec* Ini_file_info, const sint8* section, const sint8* key, sint8* buf);

// Writes a value, with a record that names the file and is zero otherwise. No text is empty. Returns 0 or the
// code of whatever failed; the file then is as it was.
sint32 SetConfigFileKey(INIFileRec* Ini_file_info, const sint8* section, const sint8* key, const sint8* buf);

// Resolves the name of a file to be written into ini_file_name (260 bytes), makes its folders and returns
// ini_file_name. Returns null, with ini_file_name as it was, when it names no file, when the resolved name
// does not fit (no folder is made then) and when a folder cannot be made.
sint8* CreateFolderPath(const sint8* Ini_file, sint8* ini_file_name);

#endif
