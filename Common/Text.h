// Bounded text: the only ways in which this library reads and writes fixed text fields.
#ifndef VINTRA_COMMON_TEXT_H
#define VINTRA_COMMON_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace vintra {

// Copies text into field, cut to fit and always terminated. Returns false when it was cut.
template <std::size_t N>
bool CopyText(char (&field)[N], std::string_view text) {
  const std::size_t length = std::min(text.size(), N - 1);
  if (length != 0) std::memcpy(field, text.data(), length);
  field[length] = '\0';
  return length == text.size();
}

// The text of a fixed field that a host may have left unterminated.
template <std::size_t N>
std::string_view FieldText(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

}  // namespace vintra

#endif
