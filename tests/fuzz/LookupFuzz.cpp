// Lookups in any file, under any signs: a value is a text of one line, and every listed key has one.
#include "tests/fuzz/FuzzFile.h"

void Try(std::string_view input) {
  const std::string signs = TakeText(input), section = TakeText(input), key = TakeText(input);
  SetUp(input);
  if (signs.size() == 5) SetConfigINISign(signs[0], signs[1], signs[2], signs[3], signs[4]);

  const std::string value = Value(section, key);
  Require(value == "\n" || value.find_first_of("\r\n") == std::string::npos);
  char cut[4] = "~~~";
  const uint32 length = GetConfigFileString(section.c_str(), key.c_str(), value.c_str(), cut, 3, kFile);
  Require(section.empty() || key.empty() ? length == 0 && cut[0] == '~' : value.substr(0, 2) == cut);
  Require(cut[3] == '\0');
  GetConfigFileInt(section.c_str(), key.c_str(), 7, kFile);

  for (const std::string& name : List())
    for (const std::string& listed : name.empty() ? std::vector<std::string>() : List(&name))
      Require(listed.empty() || Value(name, listed) != "\n");
}
