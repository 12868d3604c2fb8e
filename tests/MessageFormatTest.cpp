// Messages of common conversions against vsnprintf, and all messages in records.
#include <cfenv>
#include <clocale>

#include "FormatCase.h"
#include "TestSupport.h"

#pragma GCC diagnostic ignored "-Wformat"  // a pedantic C++ compiler knows no %m
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

using namespace std::string_view_literals;

using MessageFormatTest = LogTest;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__OPTIMIZE__)
constexpr int kCases = 200000;
#else
constexpr int kCases = 3000000;
#endif

// Common conversions in any combination with flags and numbers. Some are spoilt, or end early.
std::string ChooseFormat(Choices& choices) {
  // clang-format off
  static constexpr std::string_view kLiterals[] = {"", "x", " disk ", "%%", "\xC3\xA9", "\n", "1 + 2 = 3, and so it goes on. "},
      kFlags[] = {"", "", "-", "0", "+", "-0", "0+"}, kSizes[] = {"", "", "hh", "h", "l", "ll", "z", "j", "t"},
      kHuge[] = {"300", "20001", "2147483649", "4294967297", "18446744073709551617"};
  // clang-format on
  static constexpr auto kOthers = " #'*1$lLqhI.gGeEaAFCSmnyp%\0"sv;
  const auto number = [&](std::size_t end) { return std::to_string(choices.Below(end)); };
  std::string format(choices.Of(kLiterals));
  for (std::size_t left = choices.Below(5); left > 0; --left) {
    format.append("%").append(choices.Of(kFlags));
    if (choices.Below(2) == 0) format += number(25);
    if (choices.Below(2) == 0) format += "." + (choices.Below(8) == 0 ? "" : number(21));
    if (choices.Below(99) == 0) format += choices.Of(kHuge);
    if (choices.Below(20) == 0) format += choices.Of(kOthers);
    const bool is_integer = choices.Below(2) == 0;
    if (is_integer) format += choices.Of(kSizes);
    format += choices.Of(is_integer ? "diuxXo"sv : "ffffssscp"sv);
    format += choices.Of(kLiterals);
  }
  return format;
}

// The first problem with the cases of a seed.
std::string FirstProblem(std::uint64_t seed, int cases, bool is_usual = true) {
  Choices choices(seed);
  std::string problem;
  for (; cases > 0 && problem.empty(); --cases)
    problem = FormatCase::Problem(ChooseFormat(choices).c_str(), choices, is_usual);
  return problem;
}

TEST_F(MessageFormatTest, SameAsOfTheSystem) { EXPECT_EQ(FirstProblem(1, kCases), ""); }

TEST_F(MessageFormatTest, RoundingAndDecimalPointAreTheHosts) {
  for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    fesetround(rounding);
    const std::string problem = FirstProblem(2, kCases / 50, false);
    fesetround(FE_TONEAREST);
    EXPECT_EQ(problem, "") << rounding;
  }
  WriteFile("comma.src",
            "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n");
  EXPECT_NE(std::system("localedef -c -i comma.src ./comma >/dev/null 2>&1"), 0) << "it warns";
  setenv("LOCPATH", folder_.c_str(), 1);
  const bool has_comma = setlocale(LC_NUMERIC, "comma") != nullptr;
  unsetenv("LOCPATH");
  if (!has_comma) GTEST_SKIP() << "no locale with a decimal comma can be made";
  char half[8];
  std::snprintf(half, sizeof half, "%.1f", 0.5);
  const std::string problem = FirstProblem(3, kCases / 50, false);
  setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(Bars(half, problem), "0,5|");
}

// An allocation and one more for what is beyond the first: 1023 characters.
TEST_F(MessageFormatTest, Records) {
  Open({"%C"});
  const char nul = '\0', *volatile no_text = nullptr;  // volatile: gcc sees nulls
  EXPECT_EQ(LOG_INFO(handle_, "%05d %-4x|%+.2f %.3s%c%%", -42, 0xABCU, 2.675, "disk full", '!'), 0);
  EXPECT_EQ(LOG_INFO(handle_, "%s ", no_text), 0);
  EXPECT_EQ(LOG_INFO(handle_, "%p", static_cast<const void*>(nullptr)), 0);
  EXPECT_EQ(LOG_INFO(handle_, "%d %g %#o %*d %Lg %ls", 7, 0.1, 8U, 3, 9, 1.5L, L"w"), 0);
  EXPECT_EQ(LOG_INFO(handle_, "%s%cnot shown", "a", nul), 0);
  int count = 0;
  char counting[] = "ab%nc";  // not a literal, as the formats of other languages
  EXPECT_EQ(LOG_INFO(handle_, counting, &count), 0);
  EXPECT_EQ(count, 2);
  std::string expected = "  -0042 abc |+2.67 dis!%  (null)   (nil)  7 0.1 010   9 1.5 w  a  abc";
  const std::string message = "No such file or directory";  // of the host's errno
  for (const std::size_t length : {25U, 1022U, 1023U, 1024U, 200000U})
    for (const bool is_common : {true, false}) {
      const std::string text(is_common ? length : length - message.size(), 't');
      fake.allocations = 0;
      errno = ENOENT;
      EXPECT_EQ(LOG_INFO(handle_, is_common ? "%s" : "%s%m", text.c_str()), 0);
      EXPECT_EQ(Bars(fake.allocations, errno), Bars(length < 1024 ? 1 : 2, ENOENT));
      expected += "  " + text + (is_common ? "" : message);
    }
  EXPECT_EQ(Log(), expected);
  EXPECT_EQ(Record().file_size, expected.size());
}

}  // namespace
