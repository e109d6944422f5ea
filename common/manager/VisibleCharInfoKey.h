#pragma once

#include <cstddef>
#include <cstdint>

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
};

// What the visible-character cache remembers for a key: the font and
// character that are drawn, and whether they differ from the request.
struct VisibleCharInfo {
  int fontIndex;
  std::uint32_t code;
  bool substituted;
};

struct VisibleCharInfoKeyHash {
  std::size_t operator()(const VisibleCharInfoKey& key) const {
    std::uint64_t x =
        (static_cast<std::uint64_t>(key.code) << 32) | static_cast<std::uint32_t>(key.fontIndex);
    x ^= x >> 33;
    x *= 0xff51afd7ed558ccdULL;
    x ^= x >> 33;
    x *= 0xc4ceb9fe1a85ec53ULL;
    x ^= x >> 33;
    return static_cast<std::size_t>(x);
  }
};

}  // namespace qro_common
