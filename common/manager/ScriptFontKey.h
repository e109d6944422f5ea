#pragma once

#include <cstdint>

#include "common/manager/CharKey.h"

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
  // The key of the answer caches: the script as the code.
  CharKey AsCharKey() const { return CharKey{script, fontIndex, bold, italic}; }
};

}  // namespace qro_common
