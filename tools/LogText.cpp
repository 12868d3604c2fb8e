#include "tools/LogText.h"

#include <vintra.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

constexpr std::size_t kLook = 4096;  // bytes of a log by which it is recognised
constexpr int kMask = 0x3C;

// A control character that texts do not have. Blanks, most digits and signs, scrambled, are such; a tab, an
// end of a line, the escape that colours begin with, and the NUL of a file that a crash has left tell
// nothing.
constexpr bool IsOdd(int byte) {
  return byte < ' ' && byte != '\0' && byte != '\t' && byte != '\n' && byte != '\r' && byte != '\033';
}

// What a byte says: 1 that it is one of a text, -1 that it is scrambled.
constexpr auto kEvidence = [] {
  std::array<int, 256> evidence{};
  for (int byte = 0; byte < 256; ++byte)
    evidence[static_cast<std::size_t>(byte)] = (IsOdd(byte ^ kMask) ? 1 : 0) - (IsOdd(byte) ? 1 : 0);
  return evidence;
}();

}  // namespace

void LogText::Decode(std::span<char> bytes) {
  if (masking_ == Masking::kRecognise) {
    const auto looked_at = bytes.first(std::min(bytes.size(), kLook - looked_at_));
    const auto add = [](long sum, char byte) { return sum + kEvidence[static_cast<unsigned char>(byte)]; };
    evidence_ = std::accumulate(looked_at.begin(), looked_at.end(), evidence_, add);
    looked_at_ += looked_at.size();
  }
  if (masking_ == Masking::kOff || (masking_ == Masking::kRecognise && evidence_ >= 0)) return;
  auto length = static_cast<uint32>(bytes.size());
  GetEncryptData(bytes.data(), length, bytes.data(), &length);
}
