// A format with arguments that are chosen for it, formatted by FormatCommon and by vsnprintf.
#ifndef VINTRA_TESTS_FORMATCASE_H
#define VINTRA_TESTS_FORMATCASE_H

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "VintraModule/MessageFormat.h"

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

// Where choices come from: random numbers, or bytes as far as there are any and zeros from there on.
class Choices {
 public:
  explicit Choices(std::uint64_t seed) : random_(seed) {}
  explicit Choices(std::string_view bytes) : bytes_(bytes), is_random_(false) {}
  std::uint64_t Bits(std::size_t width = 8) {
    if (is_random_) return random_();
    std::uint64_t bits = 0;
    bytes_.remove_prefix(bytes_.copy(reinterpret_cast<char*>(&bits), width));
    return bits;
  }
  std::size_t Below(std::size_t limit) {
    return static_cast<std::uint16_t>(Bits(2)) % static_cast<std::uint32_t>(limit);
  }
  template <typename Values>
  auto Of(const Values& values) {
    return values[Below(std::size(values))];
  }

 private:
  std::mt19937_64 random_;
  std::string_view bytes_;
  bool is_random_ = true;
};

class FormatCase {
 public:
  // What is wrong with the message of format and chosen arguments; empty when nothing is. Only where the host
  // is as usual does a common format have to be formatted.
  static std::string Problem(const char* format, Choices& choices, bool is_usual = true) {
    const FormatCase format_case(format, choices, is_usual);
    return format_case.arguments_.size() > kMost ? "" : format_case.Call(format_case.arguments_);
  }

 private:
  static constexpr std::size_t kMost = 4;
  // Signed and unsigned ones are passed in the same way.
  using Argument = std::variant<int, long, long long, double, const void*>;

  FormatCase(const char* format, Choices& choices, bool is_usual)
      : format_(format), may_refuse_(!is_usual), variant_(choices.Bits(2) & 0xFFFF) {
    Choose(choices);
  }

  // Chooses the arguments up to the first conversion that is not a common one.
  void Choose(Choices& choices) {
    const char* at = format_;
    const auto skip = [&at](const char* set) {
      const char* const begin = at;
      at += std::strspn(at, set);
      return std::string(begin, at);
    };
    while ((at = std::strchr(at, '%')) != nullptr && arguments_.size() <= kMost) {
      ++at;
      const std::string flags = skip("-0+"), width = skip("0123456789");
      if (*at == '.') ++at;
      const std::string precision = at[-1] == '.' ? "0" + skip("0123456789") : "-1", size = skip("hlzjt");
      const long numbers[] = {std::strtol(width.c_str(), nullptr, 10),
                              std::strtol(precision.c_str(), nullptr, 10)};
      may_refuse_ |= std::max(numbers[0], numbers[1]) > 4000;
      has_to_refuse_ |= std::max(numbers[0], numbers[1]) > 20000;
      const bool is_plain = at[-1] == '%', has_number_flags = flags.find_first_of("0+") != std::string::npos;
      if (std::string_view("diuxXo").find(*at) != std::string_view::npos &&
          std::strstr("hh ll z j t", size.c_str()) != nullptr) {
        arguments_.push_back(Sized(size, Integer(choices)));
      } else if (*at == 'f' && (size.empty() || size == "l")) {
        arguments_.emplace_back(Real(choices));
        may_refuse_ |= !size.empty() || numbers[1] > 20;
      } else if (*at == 's' && size.empty()) {
        arguments_.emplace_back(Text(numbers[1], choices));
        may_refuse_ |= has_number_flags || std::get<const void*>(arguments_.back()) == nullptr;
      } else if (*at == 'c' && size.empty()) {
        arguments_.emplace_back(static_cast<int>(choices.Bits(2)));
        may_refuse_ |= has_number_flags || numbers[1] >= 0;
        has_to_refuse_ |= static_cast<char>(std::get<int>(arguments_.back())) == '\0';
      } else if (*at == 'p' && is_plain) {
        arguments_.emplace_back(std::bit_cast<const void*>(static_cast<std::uintptr_t>(Integer(choices))));
        may_refuse_ |= std::get<const void*>(arguments_.back()) == nullptr;
      } else if (*at != '%' || !is_plain) {
        has_to_refuse_ = true;
        return;
      }
      ++at;
    }
  }

  static Argument Sized(const std::string& size, std::uint64_t integer) {
    if (size == "l") return static_cast<long>(integer);
    if (size == "ll") return static_cast<long long>(integer);
    if (size == "j") return static_cast<std::intmax_t>(integer);
    if (size == "z" || size == "t") return static_cast<std::ptrdiff_t>(integer);
    return static_cast<int>(integer);
  }

  static std::uint64_t Integer(Choices& choices) {
    std::uint64_t edge = choices.Below(2);
    for (std::size_t digits = choices.Below(20); edge != 0 && digits > 0; --digits) edge *= 10;
    if (edge == 0) edge = std::uint64_t{1} << choices.Below(64);
    const std::uint64_t integer =
        choices.Below(2) == 0 ? edge + choices.Below(3) - 1 : choices.Bits() >> choices.Below(64);
    return choices.Below(2) == 0 ? 0 - integer : integer;
  }

  static double Real(Choices& choices) {
    using Limits = std::numeric_limits<double>;
    static constexpr double kEdges[] = {
        0, Limits::infinity(), Limits::quiet_NaN(), DBL_MAX, DBL_MIN, DBL_TRUE_MIN, 1e22, 0x1p53, 0x1p64};
    const auto small = static_cast<double>((choices.Bits(3) & 0xFFFFFF) >> choices.Below(24));
    const auto large = static_cast<double>(choices.Bits() >> choices.Below(64));
    const auto power = static_cast<int>(choices.Below(64));
    const double values[] = {std::bit_cast<double>(choices.Bits()),
                             choices.Of(kEdges),
                             std::pow(10, power - 30),
                             large + 0.5,
                             std::ldexp(large, 20 - 2 * power),
                             std::ldexp(small, -power / 2),  // ties among them
                             small / std::pow(10, power / 6),
                             (small * 10 + 5) / std::pow(10, power / 6)};  // nearly ties
    double value = choices.Of(values);
    if (choices.Below(4) == 0) value = std::nextafter(value, choices.Below(2) == 0 ? 0 : Limits::infinity());
    return choices.Below(3) == 0 ? -value : value;
  }

  const void* Text(long precision, Choices& choices) {
    static const std::string kLong(3000, 'L');
    static const char* const kTexts[] = {nullptr,          "",      "a",          "disk full",
                                         "h\xC3\xA9 \x7F", "100%d", kLong.c_str()};
    if (precision <= 0 || precision > 40 || choices.Below(2) == 0) return choices.Of(kTexts);
    const auto size = static_cast<std::size_t>(precision);  // and no NUL behind it
    return std::memset(texts_.emplace_back(new char[size]).get(), 'u', size);
  }

  // Passes the arguments as the types that they have.
  template <typename... Values>
  std::string Call(std::span<const Argument> rest, Values... values) const {
    if constexpr (sizeof...(Values) == kMost) {
      return Compare(format_, values...);
    } else {
      const auto others = rest.subspan(rest.empty() ? 0 : 1);
      return std::visit([&](auto value) { return Call(others, values..., value); },
                        rest.empty() ? Argument(0) : rest.front());
    }
  }

  // Formats into a block as large as the message and into another, with the same va_list.
  std::string Compare(const char* format, ...) const {
    static char expected[1 << 17];
    va_list args, expected_args;
    va_start(args, format);
    va_copy(expected_args, args);
    const int length = has_to_refuse_ ? 7 : std::vsnprintf(expected, sizeof expected, format, expected_args);
    va_end(expected_args);
    const std::size_t needed = static_cast<std::size_t>(length) + 1;
    const std::size_t sizes[] = {1, length == 0 ? 1 : needed - 1, needed + 1, variant_ % needed + 1};
    std::string problem;
    for (const std::size_t size : {needed, sizes[variant_ / 2 % 4]})
      if (problem.empty() && needed <= sizeof expected) problem = Attempt(size, length, expected, args);
    va_end(args);
    return problem;
  }

  std::string Attempt(std::size_t size, int length, const char* expected, va_list args) const {
    const std::size_t guard = variant_ % 2 * 8;  // 0: a sanitizer sees what is written behind the block
    const std::unique_ptr<char[]> block(new char[size + guard]);
    std::memset(block.get(), '~', size + guard);
    const int result = vintra::FormatCommon(block.get(), size, format_, args);
    const std::size_t cut = std::min(size - 1, static_cast<std::size_t>(length));
    const bool is_right = result == vintra::kNotCommon
                              ? has_to_refuse_ || may_refuse_
                              : !has_to_refuse_ && result == length && block[cut] == '\0' &&
                                    std::memcmp(block.get(), expected, cut) == 0;
    if (is_right && std::memcmp(block.get() + size, "~~~~~~~~", guard) == 0) return "";
    std::ostringstream problem;
    problem << "\"" << format_ << "\" of" << std::hexfloat;
    for (const Argument& argument : arguments_)
      std::visit([&problem](auto value) { problem << " " << value; }, argument);
    problem << " in " << size << " bytes gives " << result << " <"
            << std::string_view(block.get(), size + guard) << ">, not ";
    if (has_to_refuse_) return problem.str() + "-1";
    problem << length << " <" << std::string_view(expected, cut) << ">";
    return problem.str();
  }

  const char* const format_;
  bool may_refuse_, has_to_refuse_ = false;
  std::size_t variant_ = 0;  // of the block
  std::vector<Argument> arguments_;
  std::vector<std::unique_ptr<char[]>> texts_;
};

#endif
