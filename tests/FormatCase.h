// A format with arguments that are chosen for it, formatted by FormatCommon and by vsnprintf.
#ifndef VINTRA_TESTS_FORMATCASE_H
#define VINTRA_TESTS_FORMATCASE_H

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
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
  std::size_t Below(std::size_t limit) { return static_cast<std::uint16_t>(Bits(2)) % limit; }
  auto Of(const auto& values) { return values[Below(std::size(values))]; }

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
    FormatCase one(format, choices, is_usual);
    if (!one.ChooseArguments()) return "";
    const auto& [first, second, third, fourth] = one.arguments_;
    const auto compare = [&one](auto... values) { return one.Compare(one.format_, values...); };
    return std::visit(compare, first, second, third, fourth);
  }

 private:
  // Signed and unsigned ones are passed in the same way.
  using Argument = std::variant<int, long, long long, double, const void*>;

  FormatCase(const char* format, Choices& choices, bool is_usual)
      : format_(format), from_(choices), may_refuse_(!is_usual) {}

  // Up to the first conversion that is not a common one. Returns false where they are too many.
  bool ChooseArguments() {
    const char* at = format_;
    const auto skip = [&at](const char* set) {
      const char* const begin = at;
      return std::string(begin, at += std::strspn(at, set));
    };
    const auto number = [&skip] { return std::strtol(skip("0123456789").c_str(), nullptr, 10); };
    for (std::size_t count = 0; (at = std::strchr(at, '%')) != nullptr; ++at) {
      if (*++at == '%') continue;
      if (count == arguments_.size()) return false;
      Argument& argument = arguments_[count++];
      const bool is_pointer = *at == 'p';
      const bool has_number_flags = skip("-0+").find_first_of("0+") != std::string::npos;
      const long width = number(), precision = *at == '.' ? (++at, number()) : -1;
      const std::string size = skip("hlzjt"), letter(1, *at);
      const bool is_number = letter == "f" || std::strpbrk(letter.c_str(), "diuxXo") != nullptr;
      may_refuse_ |= std::max(width, precision) > 4000 || (letter == "f" && (size == "l" || precision > 20));
      may_refuse_ |= (has_number_flags && !is_number) || (letter == "c" && precision >= 0);
      has_to_refuse_ |= std::max(width, precision) > 20000;
      if (letter == "f" && (size.empty() || size == "l"))
        argument = Real();
      else if (letter == "s" && size.empty())
        argument = Text(precision);
      else if (letter == "c" && size.empty())
        argument = static_cast<unsigned char>(from_.Bits(1));
      else if (is_pointer)
        argument = std::bit_cast<const void*>(static_cast<std::uintptr_t>(Integer() | 1));
      else if (is_number && letter != "f" && std::strstr("hh ll z j t", size.c_str()) != nullptr)
        argument = Sized(size, Integer());
      else
        return has_to_refuse_ = true;
      has_to_refuse_ |= letter == "c" && argument == Argument(0);
    }
    return true;
  }

  static Argument Sized(const std::string& size, std::uint64_t integer) {
    if (size.empty() || size[0] == 'h') return static_cast<int>(integer);
    if (size == "ll" || size == "j") return static_cast<long long>(integer);
    return static_cast<long>(integer);
  }

  // About powers of two and ten, or of any size.
  std::uint64_t Integer() {
    const auto power = static_cast<std::uint64_t>(std::pow(10, from_.Below(20)));
    const std::uint64_t values[] = {1ULL << from_.Below(64), power, from_.Bits() >> from_.Below(64)};
    const std::uint64_t value = from_.Of(values) + from_.Below(3) - 1;
    return from_.Below(2) == 0 ? 0 - value : value;
  }

  // Any bits, edges, powers of ten, and ties of every length; or a neighbour.
  double Real() {
    constexpr double kEdges[] = {0, INFINITY, NAN, DBL_MAX, DBL_MIN, DBL_TRUE_MIN, 1e22, 0x1p53, 0x1p64};
    const auto whole = static_cast<double>(from_.Bits() >> from_.Below(64));
    const auto power = static_cast<int>(from_.Below(64));
    const double values[] = {std::bit_cast<double>(from_.Bits()), from_.Of(kEdges), std::pow(10, power - 30),
                             std::ldexp(whole, 20 - power), (whole * 10 + 5) / std::pow(10, power / 3)};
    const double value = from_.Of(values), ends[] = {value, value, 0, INFINITY};
    const double near = std::nextafter(value, from_.Of(ends));
    return from_.Below(3) == 0 ? -near : near;
  }

  const void* Text(long precision) {
    static const std::string kLong(3000, 'L');
    const char* const texts[] = {"", "a", "disk full", "h\xC3\xA9 \x7F", "100%d", kLong.c_str()};
    if (precision <= 0 || precision > 40 || from_.Below(2) == 0) return from_.Of(texts);
    return texts_.emplace_back(precision, 'u').data();  // and no NUL behind it
  }

  // Formats into a block as large as the message and into another, with the same va_list.
  std::string Compare(const char* format, ...) {
    static char expected[1 << 17];
    va_list args, expected_args;
    va_start(args, format);
    va_copy(expected_args, args);
    const int length = has_to_refuse_ ? 7 : std::vsnprintf(expected, sizeof expected, format, expected_args);
    va_end(expected_args);
    const std::size_t needed = static_cast<std::size_t>(length) + 1;
    const std::size_t others[] = {1, std::max<std::size_t>(needed, 2) - 1, needed + 1,
                                  from_.Below(needed) + 1};
    std::ostringstream problem;
    for (const std::size_t size : {needed, from_.Of(others)}) {
      // Tildes behind the block tell what is written there, or else a sanitizer does.
      std::vector<char> block(size + from_.Below(2) * 8, '~');
      const int result = vintra::FormatCommon(block.data(), size, format, args);
      const std::string_view text(block.data(), block.size()), cut(expected, std::min(size, needed) - 1);
      const bool is_right = result == vintra::kNotCommon ? has_to_refuse_ || may_refuse_
                                                         : !has_to_refuse_ && result == length &&
                                                               text.starts_with(std::string(cut) + '\0');
      if (is_right && text.find_first_not_of('~', size) == std::string_view::npos) continue;
      problem << "\"" << format << "\" in " << size << " bytes gives " << result << " <" << text << ">, not ";
      problem << (has_to_refuse_ ? "-1" : std::to_string(length) + " <" + expected + ">\n");
    }
    va_end(args);
    return problem.str();
  }

  const char* const format_;
  Choices& from_;
  bool may_refuse_, has_to_refuse_ = false;
  std::array<Argument, 4> arguments_{};
  std::vector<std::vector<char>> texts_;
};

#endif
