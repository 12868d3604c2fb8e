// Copying of a few bytes where it is done for every record.
#ifndef VINTRA_COMMON_COPY_H
#define VINTRA_COMMON_COPY_H

#include <cstddef>
#include <cstring>

namespace vintra {

// Copies N to 2 N bytes in two steps, the first N and the last N, of which some may be copied twice.
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

}  // namespace vintra

#endif
