#pragma once

#include <cstddef>
#include <vector>

#include "base/InputStream.h"
#include "base/OutputStream.h"
#include "common/font_info/CharMetrics.h"

namespace qro_common {

// The advances of the characters a face maps that no Unicode-range slot
// of its table can hold (code points whose range bit is 57, 123 to 126 or
// none, or that lie outside their bit's blocks: Javanese, Tai Tham, most
// of the supplementary planes), ascending by code point.
//
// Binary form, little-endian: count (uint32), then per character its code
// point (uint32) and advance (uint16), ascending.
class ExtraCharMetrics {
 public:
  // Counts above this are taken as damage: there are no more code points.
  static constexpr unsigned kMaxCount = 0x110000;

  // Adds `code`; codes come in ascending order (a code not above the last
  // one is ignored).
  void Add(unsigned code, unsigned short advance);
  // The metrics of `code`, or null.
  const CharMetrics* Find(unsigned code) const;
  CharMetrics* Find(unsigned code);
  std::size_t GetCount() const { return codes_.size(); }
  unsigned GetCode(std::size_t i) const { return codes_[i]; }

  // Replaces the content; false (and empty) when the input ends early, the
  // count is too large or the codes are not ascending.
  bool Read(qro_base::InputStream& in);
  // False when the stream refused a byte.
  bool Write(qro_base::OutputStream& out) const;

 private:
  std::vector<unsigned> codes_;
  std::vector<CharMetrics> metrics_;
};

}  // namespace qro_common
