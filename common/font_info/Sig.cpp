#include "common/font_info/Sig.h"

namespace qro_common {

Sig::Sig(unsigned u1, unsigned u2, unsigned u3, unsigned u4, unsigned cp1, unsigned cp2)
    : unicodeRanges_{u1, u2, u3, u4}, codePageRanges_{cp1, cp2} {
  for (int r = 0; r < 4; ++r) {
    for (int k = 0; k < 32; ++k) unicodeRangeBits_[r][k] = ((unicodeRanges_[r] >> k) & 1u) != 0;
  }
}

unsigned Sig::GetUnicodeRange(int range) const {
  return range >= 1 && range <= 4 ? unicodeRanges_[range - 1] : 0;
}

unsigned Sig::GetCodePageRange(int range) const {
  return range >= 1 && range <= 2 ? codePageRanges_[range - 1] : 0;
}

bool Sig::IsUnicodeRangeBitSet(int bit) const {
  if (bit < 0 || bit >= 128) return false;
  return unicodeRangeBits_[bit / 32][bit % 32];
}

}  // namespace qro_common
