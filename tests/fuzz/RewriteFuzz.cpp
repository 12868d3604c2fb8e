// A key written into any file: a refusal changes nothing, and success is read back, with every other key and
// section as before.
#include <algorithm>

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string section = TakeText(input), key = TakeText(input), value = TakeText(input);
  SetUp(input);
  // What the caller has to see to: names and values that stand on one line and have no blanks at their ends.
  for (const std::string* text : {&section, &key, &value}) {
    if (text->find_first_of("\r\n\f\x1a") != std::string::npos) return 0;
  }
  for (const std::string* text : {&key, &value}) {
    if (!text->empty() && (std::string_view(" \t").find(text->front()) != std::string_view::npos ||
                           std::string_view(" \t+").find(text->back()) != std::string_view::npos)) {
      return 0;
    }
  }

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
