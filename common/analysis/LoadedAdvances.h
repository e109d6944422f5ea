#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <vector>

namespace qro_common {

// Turns the horizontal metrics of a face (unscaled) into what loading each
// glyph unscaled gives, loading only the glyphs whose outcome the font's
// own tables do not settle:
// - a TrueType composite with a component flagged USE_MY_METRICS advances
//   by that component (the last one so flagged), whatever its own entry;
// - every other glyph that loads advances by its entry, and the glyph data
//   tells which ones load: a glyph it cannot vouch for (an entry out of
//   bounds, data that runs past its end, a structure not followed here such
//   as deep nesting or components placed by points, a file that ends early)
//   is left for the caller to load, and dropped if that fails.
// TrueType glyph data is read once, in glyph order, in pieces of at most
// kChunkSize bytes. CFF glyphs take their advances from the metrics; a face
// of bitmaps only loads empty glyphs with the metrics' advances.
class LoadedAdvances {
 public:
  static constexpr FT_Fixed kLoad = -1;
  static constexpr unsigned long kChunkSize = 64u << 10;

  // Fills `advances` (one per glyph of the face) from the face's `hmtx`
  // read in one piece, as FreeType reads them one by one: a glyph past the
  // long entries takes the last one's advance, an entry beyond the table
  // gives 0. False (nothing usable) without `hhea`, `hmtx` or long entries.
  static bool ReadMetrics(FT_Face face, std::vector<FT_Fixed>& advances);

  // `advances` holds every glyph's advance from the metrics; `wanted[g]`
  // is non-zero for the glyphs whose advance is needed (the same size).
  // Only those entries change.
  static void Apply(FT_Face face, const std::vector<std::uint8_t>& wanted,
                    std::vector<FT_Fixed>& advances);
};

}  // namespace qro_common
