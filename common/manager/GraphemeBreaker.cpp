#include "common/manager/GraphemeBreaker.h"

namespace qro_common {

std::uint8_t GraphemeBreaker::PropertyOf(char32_t code) {
  if (code >= 0x20 && code < 0x7F) return kOther;
  unsigned low = 0, high = kRangeCount;
  while (low < high) {
    const unsigned middle = (low + high) / 2;
    if (kRanges[middle].last < code) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (low < kRangeCount && kRanges[low].first <= code) return kRanges[low].value;
  return kOther;
}

bool GraphemeBreaker::BreaksBefore(char32_t code) {
  const std::uint8_t value = PropertyOf(code);
  const std::uint8_t current = value & 0x0F;
  const bool pictographic = (value & kExtendedPictographic) != 0;
  const std::uint8_t before = previous_;
  const int pictographicBefore = pictographicState_;
  bool breaks;
  if (!started_) {
    breaks = true;  // GB1
  } else if (before == kCR && current == kLF) {
    breaks = false;  // GB3
  } else if (before == kCR || before == kLF || before == kControl || current == kCR ||
             current == kLF || current == kControl) {
    breaks = true;  // GB4, GB5
  } else if (before == kL &&
             (current == kL || current == kV || current == kLV || current == kLVT)) {
    breaks = false;  // GB6
  } else if ((before == kLV || before == kV) && (current == kV || current == kT)) {
    breaks = false;  // GB7
  } else if ((before == kLVT || before == kT) && current == kT) {
    breaks = false;  // GB8
  } else if (current == kExtend || current == kZWJ || current == kSpacingMark ||
             before == kPrepend) {
    breaks = false;  // GB9, GB9a, GB9b
  } else if (pictographicBefore == 2 && pictographic) {
    breaks = false;  // GB11
  } else if (current == kRegionalIndicator && before == kRegionalIndicator) {
    breaks = regionalCount_ % 2 == 0;  // GB12, GB13
  } else {
    breaks = true;  // GB999
  }
  started_ = true;
  previous_ = current;
  regionalCount_ = current == kRegionalIndicator ? regionalCount_ + 1 : 0;
  if (pictographic) {
    pictographicState_ = 1;
  } else if (pictographicBefore == 1 && current == kExtend) {
    pictographicState_ = 1;
  } else if (pictographicBefore == 1 && current == kZWJ) {
    pictographicState_ = 2;
  } else {
    pictographicState_ = 0;
  }
  return breaks;
}

void GraphemeBreaker::MarkClusterStarts(const char32_t* codes, std::size_t count,
                                        std::uint8_t* starts) {
  GraphemeBreaker breaker;
  for (std::size_t i = 0; i < count; ++i) starts[i] = breaker.BreaksBefore(codes[i]) ? 1 : 0;
}

}  // namespace qro_common
