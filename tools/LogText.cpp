#include "tools/LogText.h"

#include <vintra.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace {

constexpr std::size_t kLook = 4096;  // bytes of a log by which it is recognised
constexpr unsigned char kMask = 0x3C;

// How much a byte looks like one of a text: a control character hardly ever does.
constexpr int Plausibility(int byte) {
  if (byte >= 0x80) return 0;  // of a longer character in both
  if (byte == ' ') return 3;
  if (byte == '\r' || byte == '\n' || (byte >= 'a' && byte <= 'z')) return 2;
  if (byte == '\t' || byte == '\033') return 1;  // which colours begin with
  return byte < ' ' || byte == 0x7F ? -8 : 1;
}

// By how much a byte speaks for text rather than for a scrambled one. Blanks and most digits tell at once, as
// control characters take their places.
constexpr auto kEvidence = [] {
  std::array<int, 256> evidence{};
  for (int byte = 0; byte < 256; ++byte)
    evidence[static_cast<std::size_t>(byte)] = Plausibility(byte) - Plausibility(byte ^ kMask);
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
