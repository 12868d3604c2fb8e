// Any text as a format, with arguments that suit it: formatted as vsnprintf does, or not at all.
#include <iostream>

#include "tests/FormatCase.h"
#include "tests/fuzz/FuzzFile.h"

void Try(std::string_view input) {
  const std::string format = TakeText(input);
  Choices choices(input);
  const std::string problem = FormatCase::Problem(format.c_str(), choices);
  std::cerr << problem;
  Require(problem.empty());
}
