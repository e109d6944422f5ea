#pragma once

#include <cstddef>
#include <cstdint>

namespace qro_common {

// Key of the cache that remembers which face draws a script (a Unicode-range
// number) for a font index and style. Ordered by font index (signed), then
// script, then bold, then italic (false first).
struct ScriptFontKey {
  int fontIndex;
  std::uint8_t script;
  bool bold;
  bool italic;

  bool operator<(const ScriptFontKey& other) const {
    if (fontIndex != other.fontIndex) return fontIndex < other.fontIndex;
    if (script != other.script) return script < other.script;
    if (bold != other.bold) return other.bold;
    return italic < other.italic;
  }
  bool operator==(const ScriptFontKey& other) const {
    return fontIndex == other.fontIndex && script == other.script && bold == other.bold &&
           italic == other.italic;
  }
};

struct ScriptFontKeyHash {
  std::size_t operator()(const ScriptFontKey& key) const {
    std::uint64_t x =
        (static_cast<std::uint64_t>(static_cast<std::uint32_t>(key.fontIndex)) << 10) |
        (static_cast<std::uint64_t>(key.script) << 2) |
        (static_cast<std::uint64_t>(key.bold) << 1) | static_cast<std::uint64_t>(key.italic);
    x *= 0x9e3779b97f4a7c15ULL;
    return static_cast<std::size_t>(x ^ (x >> 32));
  }
};

}  // namespace qro_common
