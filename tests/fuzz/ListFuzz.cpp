// Listings into a buffer of any size: a list ends in it with two NULs, and is the beginning of the whole
// list.
#include <algorithm>

#include "tests/fuzz/FuzzFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string section = TakeText(input);
  const sint32 room = input.empty() ? 0 : static_cast<unsigned char>(input.front());
  SetUp(input);

  const auto check = [room](const std::vector<std::string>& all, auto list_into) {
    const std::string before(static_cast<std::size_t>(room), '~');
    std::string list = before;
    const sint32 used = list_into(list.data());
    Require(used >= 0 && (used == 0 || used + 1 < room));
    if (used == 0) return Require(list == before && (all.empty() || all.front().size() + 2 >= list.size()));
    const auto end = static_cast<std::size_t>(used);
    Require(list[end] == '\0' && list.substr(end + 1) == before.substr(end + 1));
    const std::vector<std::string> names = Names(list, used);
    Require(names.size() <= all.size() && std::equal(names.begin(), names.end(), all.begin()));
    Require(names.size() == all.size() || end + all[names.size()].size() + 2 >= list.size());
  };
  check(List(), [room](char* list) { return GetConfigFileSections(list, room, kFile); });
  check(List(&section), [&](char* list) { return GetConfigFileKeys(section.c_str(), list, room, kFile); });
  return 0;
}
