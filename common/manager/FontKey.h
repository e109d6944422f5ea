#pragma once

#include <cstddef>
#include <cstdint>

namespace qro_common {

// Key of the caches that remember which face answers a font index and
// style. Ordered by font index (signed), then bold, then italic (false
// first).
struct FontKey {
  int fontIndex;
  bool bold;
  bool italic;

  bool operator<(const FontKey& other) const {
    if (fontIndex != other.fontIndex) return fontIndex < other.fontIndex;
    if (bold != other.bold) return other.bold;
    return italic < other.italic;
  }
  bool operator==(const FontKey& other) const {
    return fontIndex == other.fontIndex && bold == other.bold && italic == other.italic;
  }
};

// Hash of all three fields, for unordered caches keyed by FontKey.
struct FontKeyHash {
  std::size_t operator()(const FontKey& key) const {
    std::uint64_t x = (static_cast<std::uint64_t>(static_cast<std::uint32_t>(key.fontIndex)) << 2) |
                      (static_cast<std::uint64_t>(key.bold) << 1) |
                      static_cast<std::uint64_t>(key.italic);
    x *= 0x9e3779b97f4a7c15ULL;
    return static_cast<std::size_t>(x ^ (x >> 32));
  }
};

}  // namespace qro_common
