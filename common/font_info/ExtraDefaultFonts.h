#pragma once

#include <cstddef>
#include <vector>

#include "base/OutputStream.h"

namespace qro_common {

class ExtraCharMetrics;

// For the code points no Unicode-range slot holds (see ExtraCharMetrics),
// the font index of a font that maps them: the font applied last wins, as
// in the default font ranges. Kept as runs of consecutive code points with
// one font.
//
// Binary form (the "fx" file), little-endian: run count (uint32), then per
// run its first and last code point (uint32 each) and font index (int16),
// ascending and not overlapping.
class ExtraDefaultFonts {
 public:
  // Counts above this are taken as damage.
  static constexpr unsigned kMaxRuns = 0x110000;

  // Records `fontIndex` for every code of `chars`; nothing for a negative
  // index.
  void Apply(int fontIndex, const ExtraCharMetrics& chars);
  // The font index for `code`, -1 for none.
  int GetFontIndex(unsigned code) const;
  bool IsEmpty() const { return runs_.empty(); }
  void Clear() { runs_.clear(); }

  // Replaces the content with the binary form in `bytes`; false (and
  // empty) when it ends early, has bytes left over, or its runs are too
  // many, reversed, overlapping or out of order.
  bool Read(const char* bytes, std::size_t size);
  // False when the stream refused a byte.
  bool Write(qro_base::OutputStream& out) const;

 private:
  struct Run {
    unsigned first;
    unsigned last;
    short font;
  };
  // Appends `run`, joined to the last run when it continues it.
  void Push(const Run& run);

  std::vector<Run> runs_;
};

}  // namespace qro_common
