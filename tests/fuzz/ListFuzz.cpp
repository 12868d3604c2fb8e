// Listings into a buffer of any size: a list ends in it with two NULs, and begins the whole list.
#include "tests/fuzz/FuzzFile.h"

void Try(std::string_view input) {
  const std::string key_section = TakeText(input);
  const auto room = static_cast<std::size_t>(FirstByte(input));
  SetUp(input);

  for (const std::string* section : {static_cast<const std::string*>(nullptr), &key_section}) {
    const std::string before(room, '~');
    std::string list = before;
    const sint32 used = ListInto(list.data(), static_cast<sint32>(room), section);
    const auto end = static_cast<std::size_t>(used);
    Require(used >= 0 && (used == 0 || end + 1 < room));
    Require(used == 0 ? list == before : list[end] == '\0' && list.substr(end + 1) == before.substr(end + 1));
    const std::vector<std::string> names = Names(list.data(), used), all = List(section);
    Require(names.size() <= all.size() && std::equal(names.begin(), names.end(), all.begin()));
    Require(names.size() == all.size() || end + all[names.size()].size() + 2 >= room);
  }
}
