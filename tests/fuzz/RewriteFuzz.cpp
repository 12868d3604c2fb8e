// A key written into any file: a refusal changes nothing, success is read back, and all else is as before.
#include <map>

#include "Common/Handles.h"
#include "ConfigFileINI/ConfigFileINIInter.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

// True when a line that continues a value looks like a section's. Then it is both.
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

void Try(std::string_view input) {
  const std::string section = TakeText(input), key = TakeText(input), value = TakeText(input);
  SetUp(input);
  // What the caller has to see to: section and value on one line, the value without blanks at its ends.
  if ((section + value).find_first_of("\r\n\f\x1a") != std::string::npos) return;
  if (value.find_last_not_of(" \t+") + 1 != value.size() || value.find_first_not_of(" \t") != 0) return;
  if (IsAmbiguous()) return;

  const std::string before = Content();
  std::vector<std::string> sections = List(), keys = List(&section);
  std::map<std::pair<std::string, std::string>, std::string> values;
  for (const std::string& name : sections)
    for (const std::string& listed : List(&name)) values[{name, listed}] = Value(name, listed);
  const bool was_found = Value(section, key) != "\n";

  if (WriteConfigFileString(section.c_str(), key.c_str(), value.c_str(), kFile) == 0) {
    Require(Content() == before);
    return;
  }
  values[{section, key}] = value;
  for (const auto& [place, text] : values) Require(Value(place.first, place.second) == text);
  if (was_found) return;
  keys.insert(keys.begin(), key);
  Require(List(&section) == keys);
  if (std::find(sections.begin(), sections.end(), section) == sections.end()) sections.push_back(section);
  Require(List() == sections);
}
