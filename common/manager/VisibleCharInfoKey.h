#pragma once

#include <cstdint>

#include "common/manager/CharKey.h"

namespace qro_common {

// Key of the visible-character cache: the character and font index the
// caller asked for. Ordered by character code, then font index (signed).
struct VisibleCharInfoKey {
  std::uint32_t code;
  int fontIndex;

  bool operator<(const VisibleCharInfoKey& other) const {
    if (code != other.code) return code < other.code;
    return fontIndex < other.fontIndex;
  }
  bool operator==(const VisibleCharInfoKey& other) const {
    return code == other.code && fontIndex == other.fontIndex;
  }
  // The key of the answer caches: regular style.
  CharKey AsCharKey() const { return CharKey{code, fontIndex, false, false}; }
};

// What the visible-character cache remembers for a key: the font and
// character that are drawn, and whether they differ from the request.
struct VisibleCharInfo {
  int fontIndex;
  std::uint32_t code;
  bool substituted;

  // The record in 64 bits, for the answer caches: the code, the font index
  // (31 bits, sign kept) and the flag.
  std::uint64_t Pack() const {
    return code |
           (static_cast<std::uint64_t>(static_cast<std::uint32_t>(fontIndex) & 0x7FFFFFFFu) << 32) |
           (static_cast<std::uint64_t>(substituted) << 63);
  }
  static VisibleCharInfo Unpack(std::uint64_t bits) {
    auto index = static_cast<std::uint32_t>((bits >> 32) & 0x7FFFFFFFu);
    if ((index & 0x40000000u) != 0) index |= 0x80000000u;
    return VisibleCharInfo{static_cast<int>(index), static_cast<std::uint32_t>(bits),
                           (bits >> 63) != 0};
  }
};

}  // namespace qro_common
