#include "ConfigFileINI/ConfigFileINI.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "Common/Handles.h"
#include "ConfigFileINI/IniReader.h"

namespace {

bool IsEmpty(const sint8* text) { return text == nullptr || *text == '\0'; }

// The value of a key. False when there is none, or none that can be read.
bool FindValue(const sint8* file, const sint8* section, const sint8* key, sint8 (&value)[vintra::kLineSize]) {
  INIFileRec cursor = null_ini_file;
  cursor.file_name = file;
  return GetConfigFileKey(&cursor, section, key, value) == 0;
}

BOOL WriteKey(const sint8* file, const sint8* section, const sint8* key, const sint8* value) {
  const vintra::CancellationPause pause;
  sint8 path[vintra::kIniPathSize];
  if (CreateFolderPath(file, path) == nullptr) return 0;
  INIFileRec cursor = null_ini_file;
  cursor.file_name = path;
  return SetConfigFileKey(&cursor, section, key, value) == 0 ? 1 : 0;
}

// Names in the caller's buffer, each with a NUL behind it and the last one with two.
class NameList {
 public:
  NameList(sint8* list, sint32 size) : list_(list), size_(static_cast<std::size_t>(size)) {}

  // Returns false when the name does not fit; the list is then what it was.
  bool Append(std::string_view name) {
    if (used_ + name.size() + 2 >= size_) return false;
    if (!name.empty()) std::memcpy(list_ + used_, name.data(), name.size());
    used_ += name.size() + 1;
    list_[used_ - 1] = '\0';
    list_[used_] = '\0';
    return true;
  }
  sint32 used() const { return static_cast<sint32>(used_); }

 private:
  sint8* list_;
  std::size_t size_;
  std::size_t used_ = 0;
};

}  // namespace

uint32 SetConfigINISign(sint8 section_symbol_left, sint8 section_symbol_right, sint8 key_value_split_sign,
                        sint8 note_line_sign, sint8 connect_line_sign) {
  const auto sign_or = [](sint8 sign, sint8 default_sign) { return sign == '\0' ? default_sign : sign; };
  SectionSymbolLeft = sign_or(section_symbol_left, '[');
  SectionSymbolRight = sign_or(section_symbol_right, ']');
  KeyValueSplitSign = sign_or(key_value_split_sign, '=');
  NoteLineSign = sign_or(note_line_sign, '#');
  ConnectLineSign = sign_or(connect_line_sign, '+');
  return 0;
}

uint32 GetConfigINISign(sint8* section_symbol_left, sint8* section_symbol_right, sint8* key_value_split_sign,
                        sint8* note_line_sign, sint8* connect_line_sign) {
  if (section_symbol_left != nullptr) *section_symbol_left = SectionSymbolLeft;
  if (section_symbol_right != nullptr) *section_symbol_right = SectionSymbolRight;
  if (key_value_split_sign != nullptr) *key_value_split_sign = KeyValueSplitSign;
  if (note_line_sign != nullptr) *note_line_sign = NoteLineSign;
  if (connect_line_sign != nullptr) *connect_line_sign = ConnectLineSign;
  return 0;
}

uint32 GetConfigFileString(const sint8* section_name, const sint8* key_name, const sint8* key_value_default,
                           sint8* key_value_buf, uint32 value_buf_size, const sint8* Ini_file) {
  if (IsEmpty(section_name) || IsEmpty(key_name) || IsEmpty(Ini_file) || key_value_buf == nullptr ||
      value_buf_size == 0) {
    return 0;
  }
  const vintra::CancellationPause pause;
  sint8 value[vintra::kLineSize];
  const bool found = FindValue(Ini_file, section_name, key_name, value);
  const sint8* const source = found ? value : key_value_default;
  const std::size_t length = source == nullptr ? 0 : strnlen(source, value_buf_size - 1);
  if (length != 0) std::memmove(key_value_buf, source, length);  // the default may be the buffer's own text
  key_value_buf[length] = '\0';
  return static_cast<uint32>(length);
}

uint32 GetConfigFileInt(const sint8* section_name, const sint8* key_name, sint32 key_value_default,
                        const sint8* Ini_file) {
  const auto default_value = static_cast<uint32>(key_value_default);
  if (IsEmpty(section_name) || IsEmpty(key_name) || IsEmpty(Ini_file)) return default_value;
  const vintra::CancellationPause pause;
  sint8 value[vintra::kLineSize];
  if (!FindValue(Ini_file, section_name, key_name, value) || *value == '\0') return default_value;
  const auto number = static_cast<sint32>(std::strtoll(value, nullptr, 10));
  return number < 0 ? default_value : static_cast<uint32>(number);
}

sint32 GetConfigFileSections(sint8* sections, sint32 sections_size, const sint8* Ini_file) {
  if (sections == nullptr || sections_size < 1 || IsEmpty(Ini_file)) return 0;
  const vintra::CancellationPause pause;
  vintra::IniReader reader(Ini_file);
  if (!reader) return 0;
  NameList list(sections, sections_size);
  std::string_view name;
  while (reader.NextSection(name) == 0 && list.Append(name)) {
  }
  return list.used();
}

sint32 GetConfigFileKeys(const sint8* section, sint8* keys, sint32 keys_size, const sint8* Ini_file) {
  if (IsEmpty(section) || keys == nullptr || keys_size < 1 || IsEmpty(Ini_file)) return 0;
  const vintra::CancellationPause pause;
  vintra::IniReader reader(Ini_file);
  if (!reader || reader.FindSection(section) != 0) return 0;
  NameList list(keys, keys_size);
  sint8 *key = nullptr, *value = nullptr;
  while (reader.NextKey(key, value) == 0 && list.Append(key)) {
  }
  return list.used();
}

BOOL WriteConfigFileString(const sint8* section_name, const sint8* key_name, const sint8* key_value_buf,
                           const sint8* Ini_file) {
  if (IsEmpty(section_name) || IsEmpty(key_name) || IsEmpty(key_value_buf) || IsEmpty(Ini_file)) return 0;
  return WriteKey(Ini_file, section_name, key_name, key_value_buf);
}

BOOL WriteConfigFileInt(const sint8* section_name, const sint8* key_name, sint32 key_value,
                        const sint8* Ini_file) {
  if (IsEmpty(section_name) || IsEmpty(key_name) || IsEmpty(Ini_file)) return 0;
  sint8 text[sizeof "-2147483648"];
  std::snprintf(text, sizeof text, "%d", key_value);
  return WriteKey(Ini_file, section_name, key_name, text);
}
