#pragma once

#include <vector>

#include "common/font_info/DefaultFontRange.h"

namespace qro_common {

// Font indexes of one block, first..last, one 16-bit entry per code.
//
// Body of the binary form: first (int32), last (int32), K (uint16, number
// of entries that are not negative), then K times the offset from first
// (uint16, ascending) and the font index (int16).
class SingleDefaultFontRange : public DefaultFontRange {
 public:
  // last - first + 1 entries of -1 when first..last is a valid range
  // (isValidCodeRange), none otherwise (a range to be read).
  SingleDefaultFontRange(int first, int last);
  ~SingleDefaultFontRange() override = default;

  int GetType() const override { return kSingle; }
  // Entry code - first; -1 outside the range.
  short Get(unsigned int code) const override;
  bool Read(qro_base::InputStream& in) override;
  bool Write(qro_base::OutputStream& out) const override;

  // Entry code - first := fontIndex; ignored outside the range.
  void Set(unsigned int code, short fontIndex);

  int GetFirst() const { return first_; }
  int GetLast() const { return last_; }
  int GetSize() const { return static_cast<int>(entries_.size()); }

 private:
  void Reset(int first, int last);

  int first_;
  int last_;
  std::vector<short> entries_;
};

}  // namespace qro_common
