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

// Copies the first and the last N of length bytes, which may overlap: N to 2 N bytes in two steps.
template <std::size_t N>
void CopyEnds(char* dest, const char* source, std::size_t length) {
  std::memcpy(dest, source, N);
  std::memcpy(dest + length - N, source + length - N, N);
}

// Copies length bytes, of which there are mostly a few: for those a call costs more than the copy.
inline void CopyShort(char* dest, const char* source, std::size_t length) {
  if (length > 64) {
    std::memcpy(dest, source, length);
  } else if (length >= 32) {
    CopyEnds<32>(dest, source, length);
  } else if (length >= 16) {
    CopyEnds<16>(dest, source, length);
  } else if (length >= 8) {
    CopyEnds<8>(dest, source, length);
  } else if (length >= 4) {
    CopyEnds<4>(dest, source, length);
  } else {
    for (std::size_t at = 0; at < length; ++at) dest[at] = source[at];
  }
}

// The text of a fixed field that a host may have left unterminated.
template <std::size_t N>
std::string_view FieldText(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

}  // namespace vintra

#endif
