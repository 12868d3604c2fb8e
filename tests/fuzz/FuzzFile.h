// The folder and the file that a fuzzed operation works on, and pieces of the fuzzer's bytes.
#ifndef VINTRA_TESTS_FUZZ_FUZZFILE_H
#define VINTRA_TESTS_FUZZ_FUZZFILE_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "ConfigFileINI/ConfigFileINI.h"

// One input, which each target tries in its own way.
void Try(std::string_view input);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Try({reinterpret_cast<const char*>(data), size});
  return 0;
}

constexpr char kFile[] = "x.ini";  // in the folder of this process

// Ends the run with the input that led here.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

// The folder of this process, empty at first and its working directory.
inline const std::string& Folder() {
  static std::string folder;
  if (folder.empty()) {
    folder = (std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp") + std::string("/vintra_fuzz_XXXXXX");
    Require(mkdtemp(folder.data()) != nullptr);
    std::filesystem::current_path(folder);
    std::atexit([] { std::filesystem::remove_all(folder); });
  }
  return folder;
}

inline void SetUp(std::string_view bytes) {
  Folder();
  SetConfigINISign(0, 0, 0, 0, 0);
  std::ofstream(kFile, std::ios::binary) << bytes;
}

inline std::string Content() {
  std::ifstream file(kFile, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Exactly as many bytes, so that a sanitizer sees one too many.
inline std::unique_ptr<char[]> Block(std::size_t size) {
  std::unique_ptr<char[]> block(new char[size]);
  std::fill_n(block.get(), size, '~');
  return block;
}

// Takes what stands before the first NUL of input, with it.
inline std::string TakeText(std::string_view& input) {
  std::string text(input.substr(0, input.find('\0')));
  input.remove_prefix(std::min(input.size(), text.size() + 1));
  return text;
}

inline int FirstByte(std::string_view input) {
  return input.empty() ? 0 : static_cast<unsigned char>(input.front());
}

inline std::vector<std::string> Names(const char* list, sint32 used) {
  std::vector<std::string> names;
  for (std::size_t at = 0; at < static_cast<std::size_t>(used); at += names.back().size() + 1)
    names.emplace_back(list + at);
  return names;
}

// A list of the file's sections, or of the keys of one.
inline sint32 ListInto(char* list, sint32 size, const std::string* section) {
  return section == nullptr ? GetConfigFileSections(list, size, kFile)
                            : GetConfigFileKeys(section->c_str(), list, size, kFile);
}

// All names. The buffer is as large as the header says it has to be, to the byte.
inline std::vector<std::string> List(const std::string* section = nullptr) {
  std::string list(Content().size() + 2, '~');
  const sint32 used = ListInto(list.data(), static_cast<sint32>(list.size()), section);
  return Names(list.data(), used);
}

// The value of a key, or a line feed, which no value has.
inline std::string Value(const std::string& section, const std::string& key) {
  char value[VINTRA_INI_LINE_SIZE] = "";
  const uint32 length = GetConfigFileString(section.c_str(), key.c_str(), "\n", value, sizeof value, kFile);
  Require(length == std::string_view(value).size());
  return value;
}

#endif
