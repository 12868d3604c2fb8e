// The file that a fuzzed operation works on, and pieces of the fuzzer's bytes.
#ifndef VINTRA_TESTS_FUZZ_FUZZFILE_H
#define VINTRA_TESTS_FUZZ_FUZZFILE_H

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "ConfigFileINI/ConfigFileINI.h"

// Ends the run with the input that led here.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

constexpr char kFile[] = "x.ini";  // in a folder of this process, which is the working directory

inline void SetUp(std::string_view bytes) {
  static const bool is_ready = [] {
    static std::string folder =
        std::filesystem::exists("/dev/shm") ? "/dev/shm/vintra_fuzz_XXXXXX" : "/tmp/vintra_fuzz_XXXXXX";
    Require(mkdtemp(folder.data()) != nullptr);
    std::filesystem::current_path(folder);
    std::atexit([] { std::filesystem::remove_all(folder); });
    return true;
  }();
  Require(is_ready && SetConfigINISign(0, 0, 0, 0, 0) == 0);
  std::ofstream(kFile, std::ios::binary) << bytes;
}

inline std::string Content() {
  std::ifstream file(kFile, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Takes what stands before the first NUL of input, with it.
inline std::string TakeText(std::string_view& input) {
  const std::string_view text = input.substr(0, input.find('\0'));
  input.remove_prefix(std::min(input.size(), text.size() + 1));
  return std::string(text);
}

inline std::vector<std::string> Names(const std::string& list, sint32 used) {
  std::vector<std::string> names;
  for (std::size_t at = 0; at < static_cast<std::size_t>(used); at += names.back().size() + 1) {
    names.emplace_back(list.c_str() + at);
  }
  return names;
}

// All names of the file's sections, or of the keys of one. The buffer is as large as the header says it has
// to be, to the byte.
inline std::vector<std::string> List(const std::string* section = nullptr) {
  std::string list(Content().size() + 2, '~');
  const auto size = static_cast<sint32>(list.size());
  return Names(list, section == nullptr ? GetConfigFileSections(list.data(), size, kFile)
                                        : GetConfigFileKeys(section->c_str(), list.data(), size, kFile));
}

// The value of a key, or a line feed, which no value has.
inline std::string Value(const std::string& section, const std::string& key) {
  char value[VINTRA_INI_LINE_SIZE];
  value[0] = '\0';
  const uint32 length = GetConfigFileString(section.c_str(), key.c_str(), "\n", value, sizeof value, kFile);
  Require(length == std::string_view(value).size());
  return value;
}

#endif
