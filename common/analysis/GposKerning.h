#pragma once
// Kerning from OpenType positioning (GPOS), for faces whose legacy `kern`
// table gives none. The values are what HarfBuzz's shaping makes of each
// pair: the first glyph's advance when the two characters are shaped
// together (ligatures and contextual alternates off), minus its advance
// shaped alone, in font units.

#include <ft2build.h>
#include FT_FREETYPE_H

namespace qro_common {

class KerningInfo;

// Whether this build reads GPOS kerning (the KELFONT_HARFBUZZ option).
bool hasGposKerning();

// Registers, in `kerning`, every non-zero kerning value between two of the
// `count` characters from `first` on (left character outer, right inner,
// both ascending, as the `kern` pairs are registered), truncated to 16
// bits. Reads the face's tables through FreeType. Returns the number of
// pairs registered: 0 without HarfBuzz, for a face without positioning
// tables, and for a damaged GPOS table (which is logged).
int registerGposKerning(FT_Face face, unsigned first, int count, KerningInfo& kerning);

}  // namespace qro_common
