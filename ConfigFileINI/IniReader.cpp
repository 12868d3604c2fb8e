#include "ConfigFileINI/IniReader.h"

#include <cstdint>
#include <cstring>

namespace vintra {

sint32 IniReader::ReadLine(sint8* line) {
  if (line_no_ == INT32_MAX) return kLineUnreadable;  // an endless device, or a line without a number
  const sint32 length = FileGetLine(file_.get(), line, kLongestLine);
  if (length == kReadError) return kLineUnreadable;
  if (length >= 0) ++line_no_;
  return length;
}

sint32 IniReader::NextSection(std::string_view& name) {
  for (;;) {
    if (const sint32 length = ReadLine(line_); length < 0) return length;
    const sint8 first = *string_trim_left(line_);
    if (first == '\0' || first == NoteLineSign || first != SectionSymbolLeft) continue;
    const std::string_view line = string_trim_right(line_);
    name = {};
    if (line.size() < 3) return kIniSuccess;
    if (line.back() != SectionSymbolRight) return kMalformedLine;
    name = line.substr(1, line.size() - 2);
    return kIniSuccess;
  }
}

sint32 IniReader::FindSection(std::string_view section) {
  std::string_view name;
  do {
    if (const sint32 code = NextSection(name); code != 0) return code == kEndOfFile ? kNoSection : code;
  } while (name != section);
  section_line_no_ = line_no_;
  return kIniSuccess;
}

sint32 IniReader::NextKey(sint8*& key, sint8*& value) {
  for (;;) {
    if (const sint32 length = ReadLine(line_); length < 0) return length == kEndOfFile ? kNoKey : length;
    key_line_no_ = line_no_;
    key_lines_ = 1;
    const sint8 first = *string_trim_right(string_trim_left(line_));
    if (first == '\0' || first == NoteLineSign) continue;
    if (first == SectionSymbolLeft) return kNoKey;
    if (const sint32 code = JoinContinuations(); code != 0) return code;
    if (SplitKeyValue(line_, &key, &value) != 0) return kMalformedLine;
    return kIniSuccess;
  }
}

// Appends the lines that continue line_, which is not empty.
sint32 IniReader::JoinContinuations() {
  std::size_t length = std::strlen(line_);
  bool goes_on = line_[length - 1] == ConnectLineSign;
  if (goes_on) line_[--length] = '\0';
  while (goes_on) {
    if (const sint32 code = ReadLine(continuation_); code < 0) return code == kEndOfFile ? sint32{0} : code;
    ++key_lines_;
    std::string_view piece = string_trim_left(continuation_);
    goes_on = !piece.empty() && piece.back() == ConnectLineSign;
    if (goes_on) piece.remove_suffix(1);
    if (length + piece.size() > kLongestLine) return kLineTooLong;
    std::memcpy(line_ + length, piece.data(), piece.size());
    length += piece.size();
    line_[length] = '\0';
  }
  return kIniSuccess;
}

}  // namespace vintra
