#pragma once

#include <cstddef>
#include <cstdint>

namespace qro_common {

// Extended grapheme clusters of Unicode text (the default rules of Unicode
// Standard Annex #29 at the version of the generated property table): a
// base with its combining marks, variation selectors and emoji modifiers, a
// ZWJ emoji sequence, a pair of regional indicators, a Hangul syllable's
// jamo and CR LF each stay one cluster.
class GraphemeBreaker {
 public:
  enum Property : std::uint8_t {
    kOther,
    kCR,
    kLF,
    kControl,
    kExtend,
    kZWJ,
    kRegionalIndicator,
    kPrepend,
    kSpacingMark,
    kL,
    kV,
    kT,
    kLV,
    kLVT
  };
  static constexpr std::uint8_t kExtendedPictographic = 0x10;

  // The Grapheme_Cluster_Break property of `code`, with
  // kExtendedPictographic added for the emoji of that property.
  static std::uint8_t PropertyOf(char32_t code);

  // Starts a text.
  GraphemeBreaker() = default;
  // Whether a cluster begins at the next code point of the text; true for
  // the first one.
  bool BreaksBefore(char32_t code);

  // starts[i] = 1 where a cluster begins at codes[i], else 0.
  static void MarkClusterStarts(const char32_t* codes, std::size_t count, std::uint8_t* starts);

  struct Range {
    char32_t first;
    char32_t last;
    std::uint8_t value;
  };

 private:
  static const Range kRanges[];
  static const unsigned kRangeCount;

  bool started_ = false;
  std::uint8_t previous_ = kOther;
  // Regional indicators in a row just before the next code point.
  unsigned regionalCount_ = 0;
  // An Extended_Pictographic, Extend* seen just before: 1; followed by ZWJ: 2.
  int pictographicState_ = 0;
};

}  // namespace qro_common
