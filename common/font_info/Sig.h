#pragma once

#include "base/Clonable.h"

namespace qro_common {

// The font signature: the four OS/2 Unicode-range words, the two code-page
// words, and the Unicode-range words expanded into 128 flags (flag 32 * (r -
// 1) + k is bit k of range word r, bit 0 least significant). The code-page
// words are kept as words only.
class Sig : public qro_base::Clonable {
 public:
  Sig(unsigned u1 = 0, unsigned u2 = 0, unsigned u3 = 0, unsigned u4 = 0, unsigned cp1 = 0,
      unsigned cp2 = 0);
  Sig(const Sig&) = default;
  Sig& operator=(const Sig&) = default;

  Sig* Clone() const override { return new Sig(*this); }

  // Unicode-range word 1..4; 0 for another number.
  unsigned GetUnicodeRange(int range) const;
  // Code-page word 1 or 2; 0 for another number.
  unsigned GetCodePageRange(int range) const;
  // Flag of Unicode-range bit 0..127; false for another bit.
  bool IsUnicodeRangeBitSet(int bit) const;

 private:
  unsigned unicodeRanges_[4];
  unsigned codePageRanges_[2];
  bool unicodeRangeBits_[4][32];
};

}  // namespace qro_common
