#include "ConfigFileINI/ConfigFileINIInter.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "Common/Text.h"
#include "ConfigFileINI/IniReader.h"
#include "ConfigFileINI/IniRewrite.h"
#include "FolderModule/FolderModule.h"
#include "FolderModule/PathParts.h"

sint8 SectionSymbolLeft = '[';
sint8 SectionSymbolRight = ']';
sint8 KeyValueSplitSign = '=';
sint8 NoteLineSign = '#';
sint8 ConnectLineSign = '+';

const INIFileRec null_ini_file = {};

namespace {

using vintra::ClosesLine;
using vintra::kBlanks;

// A byte that ends a line and is not part of it.
bool EndsLine(sint8 byte) { return byte == '\n' || byte == '\r' || byte == '\0'; }

#ifdef __GLIBC__
// True when one of eight bytes is below 0x20, as every byte that ends a line is.
bool HasControlByte(std::uint64_t bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  return ((bytes - 0x20 * kOnes) & ~bytes & 0x80 * kOnes) != 0;
}

// Takes what the stream has read ahead, up to a line's end, at the speed of memory. These are the two
// pointers that the C library's own getc_unlocked works on where it is expanded in its caller.
sint32 TakeReadAhead(FILE* file, sint8* text, sint32 room) {
  const sint8* const ahead = file->_IO_read_ptr;
  const std::ptrdiff_t limit = std::min<std::ptrdiff_t>(file->_IO_read_end - ahead, room);
  constexpr std::ptrdiff_t kStep = sizeof(std::uint64_t);
  std::ptrdiff_t count = 0;
  for (bool ends = false; !ends && count < limit;) {
    for (std::uint64_t bytes = 0; limit - count >= kStep; count += kStep) {
      std::memcpy(&bytes, ahead + count, kStep);
      if (HasControlByte(bytes)) break;
      std::memcpy(text + count, &bytes, kStep);
    }
    const std::ptrdiff_t step_end = std::min(limit, count + kStep);
    for (; count < step_end; ++count) {
      ends = EndsLine(ahead[count]) || ClosesLine(ahead[count]);
      if (ends) break;
      text[count] = ahead[count];
    }
  }
  file->_IO_read_ptr += count;
  return static_cast<sint32>(count);
}
#else
sint32 TakeReadAhead(FILE*, sint8*, sint32) { return 0; }
#endif

}  // namespace

sint32 FileGetLine(FILE* file_in, sint8* str_buf, sint32 buf_len) {
  sint32 count = 0;
  while (count < buf_len) {
    count += TakeReadAhead(file_in, str_buf + count, buf_len - count);
    if (count == buf_len) break;
    const int next = getc_unlocked(file_in);  // a line's end, or the first byte of more
    if (next == EOF) {
      if (!feof_unlocked(file_in)) return vintra::kReadError;
      if (count == 0) return vintra::kEndOfFile;
      break;
    }
    const auto byte = static_cast<sint8>(next);
    if (EndsLine(byte)) break;
    str_buf[count++] = byte;
    if (ClosesLine(byte)) break;
  }
  str_buf[count] = '\0';
  return count;
}

sint8* string_trim_left(sint8* str_buf) {
  if (str_buf == nullptr || (*str_buf != ' ' && *str_buf != '\t')) return str_buf;  // as nearly all lines
  const std::size_t blanks = std::strspn(str_buf, kBlanks);
  std::memmove(str_buf, str_buf + blanks, std::strlen(str_buf + blanks) + 1);
  return str_buf;
}

sint8* string_trim_right(sint8* str_buf) {
  if (str_buf == nullptr) return str_buf;
  const std::size_t last = std::string_view(str_buf).find_last_not_of(kBlanks);
  str_buf[last + 1] = '\0';  // npos + 1 is 0: nothing but blanks
  return str_buf;
}

sint32 SplitKeyValue(sint8* buf, sint8** key, sint8** val) {
  if (buf == nullptr || key == nullptr || val == nullptr || *buf == '\0') return -1;
  const std::size_t separator = std::string_view(buf).find(KeyValueSplitSign);
  if (separator == std::string_view::npos) return vintra::kNoSeparator;
  if (separator == 0) return vintra::kEmptyKey;
  buf[separator] = '\0';
  *key = string_trim_right(buf);
  *val = string_trim_left(buf + separator + 1);
  return vintra::kIniSuccess;
}

namespace {

sint32 FindKey(vintra::IniReader& reader, const sint8* section, std::string_view key, sint8* buf) {
  if (const sint32 code = reader.FindSection(section); code != 0) return code;
  for (;;) {
    sint8 *name = nullptr, *value = nullptr;
    if (const sint32 code = reader.NextKey(name, value); code != 0) return code;
    if (name != key) continue;
    std::memcpy(buf, value, std::strlen(value) + 1);
    return vintra::kIniSuccess;
  }
}

}  // namespace

sint32 GetConfigFileKey(INIFileRec* Ini_file_info, const sint8* section, const sint8* key, sint8* buf) {
  if (Ini_file_info == nullptr || Ini_file_info->file_name == nullptr || section == nullptr ||
      key == nullptr || buf == nullptr) {
    return vintra::kNullArgument;
  }
  vintra::IniReader reader(Ini_file_info->file_name);
  if (!reader) return vintra::kFileUnreadable;
  const sint32 code = FindKey(reader, section, key, buf);
  Ini_file_info->Ini_section_line_no = reader.section_line_no();
  Ini_file_info->Ini_key_line_no = reader.key_line_no();
  Ini_file_info->Ini_key_lines = reader.key_lines();
  return code;
}

namespace {

// False for a key that a line may hold and no lookup would find.
bool CanBeFound(std::string_view key) {
  const sint8 signs[] = {SectionSymbolLeft, SectionSymbolRight, KeyValueSplitSign, NoteLineSign,
                         ConnectLineSign};
  constexpr std::size_t kNone = std::string_view::npos;
  return KeyValueSplitSign != '\0' && key.find_first_of({signs, sizeof signs}) == kNone &&
         key.find_first_of("\n\r\f\x1A") == kNone && key.find_first_not_of(kBlanks) == 0 &&
         key.find_last_not_of(kBlanks) == key.size() - 1;
}

}  // namespace

sint32 SetConfigFileKey(INIFileRec* Ini_file_info, const sint8* section, const sint8* key, const sint8* buf) {
  if (buf == nullptr) return vintra::kNullArgument;
  sint8 old_value[vintra::kLineSize];
  const sint32 found = GetConfigFileKey(Ini_file_info, section, key, old_value);
  if (found < vintra::kFileUnreadable) return found;
  // Only a missing file is begun. One that is there may have the section, and a second one is never found.
  const bool is_missing = found == vintra::kFileUnreadable && errno == ENOENT;
  if (found == vintra::kFileUnreadable && !is_missing) return found;

  const vintra::KeyLine line{key, KeyValueSplitSign, buf};
  if (!CanBeFound(line.key) || line.key.size() + 1 + line.value.size() > vintra::kLongestLine)
    return vintra::kNotWritten;
  if (found == vintra::kIniSuccess) return vintra::ReplaceKey(*Ini_file_info, line);
  if (found == vintra::kNoKey) return vintra::InsertKey(*Ini_file_info, line);
  return vintra::AppendSection(Ini_file_info->file_name, is_missing, section, line);
}

sint8* CreateFolderPath(const sint8* Ini_file, sint8* ini_file_name) {
  if (Ini_file == nullptr || ini_file_name == nullptr) return nullptr;
  const vintra::PathParts parts = vintra::SplitPathParts(Ini_file);
  if (parts.name.empty()) return nullptr;

  sint8 folder[vintra::kIniPathSize];
  if (parts.drive.empty()) {
    GetModuleDir(folder);
  } else {
    static_cast<void>(vintra::CopyText(folder, parts.drive));
  }
  const std::size_t front = std::strlen(folder);
  if (front + parts.dir.size() + parts.name.size() + parts.ext.size() >= sizeof folder) return nullptr;
  *std::copy(parts.dir.begin(), parts.dir.end(), folder + front) = '\0';
  if (CreateMulDir(folder) == 0) return nullptr;
  const sint8* const name_and_ext = parts.name.data();  // the extension is the rest of the path
  MakePath(ini_file_name, nullptr, folder, name_and_ext, nullptr);
  return ini_file_name;
}
