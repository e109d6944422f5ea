#pragma once

#include <cstddef>
#include <cstdint>

namespace qro_common {

// Key of the per-character caches: the character code (or glyph index) and
// the font index and style the caller asked for. Ordered by code
// (unsigned), then font index (signed), then bold, then italic (false
// first).
struct CharKey {
  std::uint32_t code;
  int fontIndex;
  bool bold;
  bool italic;

  bool operator<(const CharKey& other) const {
    if (code != other.code) return code < other.code;
    if (fontIndex != other.fontIndex) return fontIndex < other.fontIndex;
    if (bold != other.bold) return other.bold;
    return italic < other.italic;
  }
  bool operator==(const CharKey& other) const {
    return code == other.code && fontIndex == other.fontIndex && bold == other.bold &&
           italic == other.italic;
  }
};

// Hash of all four fields, for unordered caches keyed by CharKey.
struct CharKeyHash {
  std::size_t operator()(const CharKey& key) const {
    std::uint64_t x = (static_cast<std::uint64_t>(key.code) << 32) |
                      (static_cast<std::uint64_t>(static_cast<std::uint32_t>(key.fontIndex)) << 2) |
                      (static_cast<std::uint64_t>(key.bold) << 1) |
                      static_cast<std::uint64_t>(key.italic);
    // Distinct for font indexes below 2^30; the finaliser below spreads
    // every input bit over the whole result.
    x ^= x >> 30;
    x *= 0xbf58476d1ce4e5b9ULL;
    x ^= x >> 27;
    x *= 0x94d049bb133111ebULL;
    x ^= x >> 31;
    return static_cast<std::size_t>(x);
  }
};

}  // namespace qro_common
