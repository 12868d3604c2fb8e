// A fortified vsnprintf ends the process at "%n" in a format that can be written to, as the formats of other
// languages are, and at "%2$d" without "%1$d". The library never ends its host, and the plain one takes both.
#undef _FORTIFY_SOURCE

#include "VintraModule/MessageFormat.h"

#include <langinfo.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cfenv>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "Common/Copy.h"

namespace vintra {

namespace {

constexpr int kLargestWidth = 9999;  // also of the precision of texts and integers
constexpr int kLargestDecimals = 99;
constexpr int kDefaultDecimals = 6;

// The text as far as it has room. What is beyond is only counted.
class BoundedText {
 public:
  BoundedText(sint8* text, std::size_t size) : begin_(text), at_(text), end_(text + size - 1) {}

  void Append(std::string_view piece) {
    const std::size_t count = Claim(piece.size());
    CopyShort(at_, piece.data(), count);
    at_ += count;
  }

  void Append(std::size_t count, sint8 character) {
    count = Claim(count);
    std::memset(at_, character, count);
    at_ += count;
  }

  // Appends count bytes for the caller to write. Returns null where there is no room for all of them.
  sint8* Extend(std::size_t count) {
    if (count > static_cast<std::size_t>(end_ - at_)) return nullptr;
    return std::exchange(at_, at_ + count);
  }

  // Ends the text and returns the length of all that was appended.
  std::size_t End() {
    *at_ = '\0';
    return static_cast<std::size_t>(at_ - begin_) + beyond_;
  }

 private:
  // Returns how many of count characters there is room for.
  std::size_t Claim(std::size_t count) {
    const auto room = static_cast<std::size_t>(end_ - at_);
    if (count <= room) return count;
    beyond_ += count - room;
    return room;
  }

  sint8* const begin_;
  sint8* at_;
  sint8* const end_;  // the last place of the terminator
  std::size_t beyond_ = 0;
};

// The arguments not yet formatted. A struct can be passed by reference, which not every machine's va_list
// can.
struct Arguments {
  va_list list;
};

enum class ArgumentSize { kInt, kChar, kShort, kLong, kLongLong, kSize, kMax, kDifference };

// What stands between '%' and the conversion's letter.
struct Directive {
  bool left = false;
  bool zeros = false;
  bool plus = false;
  int width = 0;
  int precision = -1;  // none
  ArgumentSize size = ArgumentSize::kInt;

  bool operator==(const Directive&) const = default;
};

void ReadFlags(const sint8*& format, Directive& directive) {
  for (;; ++format) {
    if (*format == '-') {
      directive.left = true;
    } else if (*format == '0') {
      directive.zeros = true;
    } else if (*format == '+') {
      directive.plus = true;
    } else {
      return;
    }
  }
}

// Reads a number, 0 where there is none. One that is too large stays so.
int ReadNumber(const sint8*& format) {
  int number = 0;
  for (; *format >= '0' && *format <= '9'; ++format) {
    number = std::min(number * 10 + (*format - '0'), kLargestWidth + 1);
  }
  return number;
}

void ReadSize(const sint8*& format, Directive& directive) {
  // once names what the letter alone asks for, and twice what the doubled one does.
  const auto read = [&](ArgumentSize once, ArgumentSize twice) {
    const bool is_twice = once != twice && format[1] == format[0];
    directive.size = is_twice ? twice : once;
    format += is_twice ? 2 : 1;
  };
  switch (*format) {
    case 'h':
      return read(ArgumentSize::kShort, ArgumentSize::kChar);
    case 'l':
      return read(ArgumentSize::kLong, ArgumentSize::kLongLong);
    case 'z':
      return read(ArgumentSize::kSize, ArgumentSize::kSize);
    case 'j':
      return read(ArgumentSize::kMax, ArgumentSize::kMax);
    case 't':
      return read(ArgumentSize::kDifference, ArgumentSize::kDifference);
    default:
      return;
  }
}

Directive ReadDirective(const sint8*& format) {
  Directive directive;
  if (*format < 'A') {  // most directives are a letter alone
    ReadFlags(format, directive);
    directive.width = ReadNumber(format);
    if (*format == '.') directive.precision = ReadNumber(++format);
  }
  ReadSize(format, directive);
  return directive;
}

// Appends number with zeros in front of its digits.
void AppendWithZeros(BoundedText& text, std::string_view number, std::size_t zeros) {
  const std::size_t sign = number.starts_with('-') || number.starts_with('+');
  text.Append(number.substr(0, sign));
  text.Append(zeros, '0');
  text.Append(number.substr(sign));
}

// Appends piece in the directive's width, behind at least so many zeros when it is a number.
[[gnu::noinline]] void AppendPadded(BoundedText& text, const Directive& directive, std::string_view piece,
                                    std::size_t zeros) {
  const std::size_t size = piece.size() + zeros;
  const auto width = static_cast<std::size_t>(directive.width);
  const std::size_t padding = width > size ? width - size : 0;
  if (directive.left) {
    AppendWithZeros(text, piece, zeros);
    text.Append(padding, ' ');
  } else if (directive.zeros) {
    AppendWithZeros(text, piece, zeros + padding);
  } else {
    text.Append(padding, ' ');
    AppendWithZeros(text, piece, zeros);
  }
}

// The same, for most pieces of a message without a call.
void AppendField(BoundedText& text, const Directive& directive, std::string_view piece,
                 std::size_t zeros = 0) {
  if (directive.width == 0 && zeros == 0) return text.Append(piece);
  AppendPadded(text, directive, piece, zeros);
}

constexpr auto PowersOfTen() {
  std::array<std::uint64_t, 20> powers{1};
  for (std::size_t at = 1; at < powers.size(); ++at) powers[at] = powers[at - 1] * 10;
  return powers;
}
constexpr auto kPowersOfTen = PowersOfTen();

std::size_t CountDecimals(std::uint64_t number) {
  number |= 1;  // 0 has a digit too, and a power of ten is reached from an odd number
  const auto least = static_cast<std::size_t>(std::bit_width(number) * 1233 / 4096);  // by the logarithm of 2
  return least + (number >= kPowersOfTen[least] ? 1 : 0);
}

// The writers of digits end before `at` and return where the first digit is.

sint8* WriteDecimal(sint8* at, std::uint64_t number) {
  static constexpr auto kPairs = [] {  // "000102" up to "99": one division for two digits
    std::array<sint8, 200> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      pairs[i] = static_cast<sint8>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
    }
    return pairs;
  }();
  const auto write_pair = [&at](std::uint64_t pair) {
    std::memcpy(at -= 2, &kPairs[static_cast<std::size_t>(2 * pair)], 2);
  };
  for (; number > UINT32_MAX; number /= 100) write_pair(number % 100);
  auto rest = static_cast<std::uint32_t>(number);  // whose divisions cost half
  for (; rest >= 100; rest /= 100) write_pair(rest % 100);
  if (rest >= 10) {
    write_pair(rest);
  } else {
    *--at = static_cast<sint8>('0' + rest);
  }
  return at;
}

// The base is 8 or 16.
sint8* WriteBits(sint8* at, std::uint64_t number, unsigned bits_per_digit, const sint8* digits) {
  do *--at = digits[number & ((1U << bits_per_digit) - 1)];
  while ((number >>= bits_per_digit) != 0);
  return at;
}

constexpr const sint8* kLowerDigits = "0123456789abcdef";
constexpr const sint8* kUpperDigits = "0123456789ABCDEF";

sint8* WriteDigits(sint8* at, sint8 letter, std::uint64_t number) {
  switch (letter) {
    case 'o':
      return WriteBits(at, number, 3, kLowerDigits);
    case 'x':
      return WriteBits(at, number, 4, kLowerDigits);
    case 'X':
      return WriteBits(at, number, 4, kUpperDigits);
    default:
      return WriteDecimal(at, number);
  }
}

sint8* WriteSign(sint8* at, const Directive& directive, bool negative) {
  if (negative || directive.plus) *--at = negative ? '-' : '+';
  return at;
}

constexpr std::size_t kIntegerSize = 24;  // 22 octal digits and a sign

// The next argument as an integer of the directive's size, widened with its sign or with zeros.
std::uint64_t NextInteger(Arguments& args, ArgumentSize size, bool is_signed) {
  const auto widen = [is_signed](auto value) {
    using Signed = std::make_signed_t<decltype(value)>;
    return is_signed ? static_cast<std::uint64_t>(std::int64_t{static_cast<Signed>(value)})
                     : std::uint64_t{value};
  };
  switch (size) {
    case ArgumentSize::kChar:
      return widen(static_cast<unsigned char>(va_arg(args.list, unsigned)));
    case ArgumentSize::kShort:
      return widen(static_cast<unsigned short>(va_arg(args.list, unsigned)));
    case ArgumentSize::kInt:
      return widen(va_arg(args.list, unsigned));
    case ArgumentSize::kLong:
      return widen(va_arg(args.list, unsigned long));
    case ArgumentSize::kLongLong:
      return widen(va_arg(args.list, unsigned long long));
    case ArgumentSize::kSize:  // NOLINT(bugprone-branch-clone): the same type as the next on some machines
      return widen(va_arg(args.list, std::size_t));
    case ArgumentSize::kMax:
      return widen(va_arg(args.list, std::uintmax_t));
    case ArgumentSize::kDifference:
      return widen(va_arg(args.list, std::make_unsigned_t<std::ptrdiff_t>));
  }
  return 0;
}

void AppendInteger(BoundedText& text, Directive directive, sint8 letter, Arguments& args) {
  const bool is_signed = letter == 'd' || letter == 'i';
  const std::uint64_t number = NextInteger(args, directive.size, is_signed);
  const bool negative = is_signed && number > INT64_MAX;
  const std::uint64_t magnitude = negative ? 0 - number : number;
  if (directive.width == 0 && directive.precision < 0 && !directive.plus && (is_signed || letter == 'u')) {
    // In its place, as a processor waits where what has just been written in pieces is copied.
    const std::size_t size = CountDecimals(magnitude) + (negative ? 1 : 0);
    if (sint8* const place = text.Extend(size); place != nullptr) {
      *place = '-';  // or a digit in a moment
      WriteDecimal(place + size, magnitude);
      return;
    }
  }

  sint8 buffer[kIntegerSize];
  sint8* const end = std::end(buffer);
  sint8* at = WriteDigits(end, letter, magnitude);

  std::size_t zeros = 0;
  if (directive.precision >= 0) {
    directive.zeros = false;
    if (directive.precision == 0 && number == 0) at = end;
    const auto least = static_cast<std::size_t>(directive.precision);
    const auto count = static_cast<std::size_t>(end - at);
    zeros = least > count ? least - count : 0;
  }
  if (is_signed) at = WriteSign(at, directive, negative);
  AppendField(text, directive, {at, end}, zeros);
}

bool AppendCharacter(BoundedText& text, const Directive& directive, Arguments& args) {
  const auto character = static_cast<sint8>(va_arg(args.list, int));
  AppendField(text, directive, {&character, 1});
  return character != '\0';
}

bool AppendText(BoundedText& text, const Directive& directive, Arguments& args) {
  const sint8* const value = va_arg(args.list, const sint8*);
  if (value == nullptr) return false;
  AppendField(
      text, directive,
      {value, directive.precision < 0 ? std::strlen(value)
                                      : strnlen(value, static_cast<std::size_t>(directive.precision))});
  return true;
}

bool AppendPointer(BoundedText& text, Arguments& args) {
  const void* const value = va_arg(args.list, const void*);
  sint8 buffer[kIntegerSize];
  sint8* const end = std::end(buffer);
  text.Append("0x");
  text.Append({WriteBits(end, reinterpret_cast<std::uintptr_t>(value), 4, kLowerDigits), end});
  return value != nullptr;
}

// Multiplies value by power, a power of ten, and rounds to the nearest integer, ties to even. Returns false
// where that takes more than this exact product.
//
// value is significand / 2^shift. The significand has 53 bits and the power 64, so a product of 128 bits is
// exact, and the bits that the shift drops decide the rounding.
bool MultiplyExactly(double value, std::uint64_t power, std::uint64_t& product) {
#ifdef __SIZEOF_INT128__
  __extension__ using Wide = unsigned __int128;
  constexpr int kFractionBits = std::numeric_limits<double>::digits - 1;
  constexpr std::uint64_t kLeadingBit = std::uint64_t{1} << kFractionBits;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  // Zero and the subnormal values have no leading bit. With it they round to 0 all the same.
  const std::uint64_t significand = (bits & (kLeadingBit - 1)) | kLeadingBit;
  const int shift = 1023 + kFractionBits - static_cast<int>(bits >> kFractionBits);
  if (shift <= 0) return false;
  const int dropped = std::min(shift, 127);  // beyond it everything is
  const Wide exact = Wide{significand} * power;
  const Wide below_half = (Wide{1} << (dropped - 1)) - 1;
  const Wide rounded = (exact + below_half + (exact >> dropped) % 2) >> dropped;
  product = static_cast<std::uint64_t>(rounded);
  return rounded <= UINT64_MAX;
#else
  static_cast<void>(value);
  static_cast<void>(power);
  static_cast<void>(product);
  return false;
#endif
}

constexpr std::size_t kFixedSize =  // sign, digits, point, decimals
    1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + kLargestDecimals;

// Writes a finite value that is not negative, with room for a sign in front. Values as logs have them take
// the exact product, which costs a third of what the general conversion does.
std::span<sint8> WriteFixed(double value, int decimals, sint8 (&buffer)[kFixedSize]) {
  const auto power_at = static_cast<std::size_t>(decimals);
  std::uint64_t product = 0;
  if (power_at >= kPowersOfTen.size() || !MultiplyExactly(value, kPowersOfTen[power_at], product)) {
    sint8* const begin = std::begin(buffer) + 1;
    return {begin, std::to_chars(begin, std::end(buffer), value, std::chars_format::fixed, decimals).ptr};
  }
  sint8* at = std::end(buffer);
  for (int place = 0; place < decimals; ++place, product /= 10)
    *--at = static_cast<sint8>('0' + product % 10);
  if (decimals > 0) *--at = '.';
  return {WriteDecimal(at, product), std::end(buffer)};
}

// The C library rounds as the thread asks for, and writes the point of the thread's locale.
bool FormatsPlainly() {
  const sint8* const point = nl_langinfo(RADIXCHAR);
  return std::fegetround() == FE_TONEAREST && point[0] == '.' && point[1] == '\0';
}

bool AppendDouble(BoundedText& text, Directive directive, Arguments& args) {
  const double value = va_arg(args.list, double);
  const int decimals = directive.precision < 0 ? kDefaultDecimals : directive.precision;
  sint8 buffer[kFixedSize];
  std::span<sint8> digits;
  if (std::isfinite(value)) {
    if (decimals > kLargestDecimals || !FormatsPlainly()) return false;
    digits = WriteFixed(std::fabs(value), decimals, buffer);
  } else {
    directive.zeros = false;
    digits = {std::begin(buffer) + 1, 3};
    std::memcpy(digits.data(), std::isnan(value) ? "nan" : "inf", digits.size());
  }
  const sint8* const begin = WriteSign(digits.data(), directive, std::signbit(value));
  AppendField(text, directive, {begin, digits.data() + digits.size()});
  return true;
}

// Appends the argument that the directive at format asks for, and moves format behind it. Returns false for
// what is not common.
bool AppendConversion(BoundedText& text, const sint8*& format, Arguments& args) {
  const Directive directive = ReadDirective(format);
  if (std::max(directive.width, directive.precision) > kLargestWidth) return false;
  const auto takes_text = [&] {
    return directive.size == ArgumentSize::kInt && !directive.zeros && !directive.plus;
  };
  switch (const sint8 letter = *format++) {
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
      AppendInteger(text, directive, letter, args);
      return true;
    case 's':
      return takes_text() && AppendText(text, directive, args);
    case 'c':
      return takes_text() && directive.precision < 0 && AppendCharacter(text, directive, args);
    case 'f':
      return (directive.size == ArgumentSize::kInt || directive.size == ArgumentSize::kLong) &&
             AppendDouble(text, directive, args);
    case 'p':
      return directive == Directive{} && AppendPointer(text, args);
    case '%':
      text.Append("%");
      return directive == Directive{};
    default:
      return false;
  }
}

bool AppendMessage(BoundedText& text, const sint8* format, Arguments& args) {
  while (*format != '\0') {
    const sint8* const percent = strchrnul(format, '%');
    text.Append({format, percent});
    if (*percent == '\0') break;
    format = percent + 1;
    if (!AppendConversion(text, format, args)) return false;
  }
  return true;
}

}  // namespace

int FormatCommon(sint8* text, std::size_t size, const sint8* format, va_list args) {
  BoundedText message(text, size);
  Arguments values;
  va_copy(values.list, args);
  const bool is_common = AppendMessage(message, format, values);
  va_end(values.list);
  const std::size_t length = message.End();
  return is_common && length <= INT_MAX ? static_cast<int>(length) : kNotCommon;
}

int FormatAny(sint8* text, std::size_t size, const sint8* format, va_list args) {
  va_list attempt;
  va_copy(attempt, args);
  const int length = std::vsnprintf(text, size, format, attempt);
  va_end(attempt);
  return length;
}

}  // namespace vintra
