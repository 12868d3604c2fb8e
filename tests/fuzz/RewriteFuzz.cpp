// A key written into any file: a refusal changes nothing, and success is read back, with every other key and
// section as before.
#include <algorithm>

#include "Common/Handles.h"
#include "ConfigFileINI/ConfigFileINIInter.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

struct Key {
  std::string section, name, value;
};

std::vector<Key> AllKeys() {
  std::vector<Key> keys;
  for (const std::string& section : List()) {
    for (const std::string& name : List(&section)) keys.push_back({section, name, Value(section, name)});
  }
  return keys;
}

// True when a line that continues a value looks like a section's. Then it is both, and a change of one
// changes the other.
bool IsAmbiguous() {
  const vintra::FilePtr file(std::fopen(kFile, "r"));
  bool goes_on = false;
  sint8 line[vintra::kLineSize];
  while (FileGetLine(file.get(), line, vintra::kLongestLine) >= 0) {
    const std::string_view text = string_trim_right(string_trim_left(line));
    if (goes_on && text.starts_with('[')) return true;
    goes_on = text.ends_with('+');
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string section = TakeText(input), key = TakeText(input), value = TakeText(input);
  SetUp(input);
  // What the caller has to see to: a value and a section on one line, and the value without blanks at its
  // ends.
  if ((section + value).find_first_of("\r\n\f\x1a") != std::string::npos) return 0;
  if (value.find_last_not_of(" \t+") + 1 != value.size() || value.find_first_not_of(" \t") != 0) return 0;
  if (IsAmbiguous()) return 0;

  const std::string before = Content();
  const std::vector<Key> others = AllKeys();
  std::vector<std::string> sections = List(), keys = List(&section);
  const bool was_found = Value(section, key) != "\n";

  if (WriteConfigFileString(section.c_str(), key.c_str(), value.c_str(), kFile) == 0) {
    Require(Content() == before);
    return 0;
  }
  Require(Value(section, key) == value);
  for (const Key& other : others) {
    const bool is_written = other.section == section && other.name == key;
    Require(Value(other.section, other.name) == (is_written ? value : other.value));
  }
  if (was_found) return 0;
  keys.insert(keys.begin(), key);
  Require(List(&section) == keys);
  if (std::find(sections.begin(), sections.end(), section) == sections.end()) sections.push_back(section);
  Require(List() == sections);
  return 0;
}
