// Any text as a format, with arguments that suit it: formatted as vsnprintf does, or not at all.
#include <iostream>

#include "tests/FormatCase.h"
#include "tests/fuzz/FuzzFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string format = TakeText(input);
  Choices choices(input);
  const std::string problem = FormatCase::Problem(format.c_str(), choices);
  std::cerr << problem;
  Require(problem.empty());
  return 0;
}
