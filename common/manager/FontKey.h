#pragma once

#include <cstdint>

#include "common/manager/CharKey.h"

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
  // The key of the answer caches: code 0.
  CharKey AsCharKey() const { return CharKey{0, fontIndex, bold, italic}; }
};

}  // namespace qro_common
