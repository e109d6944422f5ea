#pragma once

#include <vector>

#include "common/font_info/CharMetricsRange.h"

namespace qro_common {

// The advances of a Unicode-range bit made of several blocks: one slot per
// block (in the bit's block order, see FontUSBType), each holding the
// block's range or nothing. Owns the sub-ranges.
//
// Body of the binary form: S (uint8, number of slots), D (uint8, number of
// occupied slots), then D times the slot number (uint8, ascending) and the
// sub-range (type byte and body). A sub-range of type 1 is read as a single
// range, any other type as a zipped range.
class MultiCharMetricsRange : public CharMetricsRange {
 public:
  // `count` empty slots when 0 <= count <= kMaxBlockCount; none otherwise.
  explicit MultiCharMetricsRange(int count);
  ~MultiCharMetricsRange() override;
  MultiCharMetricsRange(const MultiCharMetricsRange&) = delete;
  MultiCharMetricsRange& operator=(const MultiCharMetricsRange&) = delete;

  int GetType() const override { return kMulti; }
  // Delegate to the sub-range of the code's block; null or false when the
  // code is in no block of this bit or the block's slot is empty.
  CharMetrics* Get(unsigned int code) override;
  bool IsVisibleChar(unsigned int code) const override;
  bool Read(qro_base::InputStream& in) override;
  bool Write(qro_base::OutputStream& out) const override;

  // The range of `block`, or null (also for a block outside the slots).
  CharMetricsRange* GetCharMetricsRange(int block) const;
  // Stores `range` (owning) in the slot of `block`, deleting a different
  // range that was there. For a block outside the slots `range` is deleted.
  void SetCharMetricsRange(int block, CharMetricsRange* range);
  // Deletes every sub-range; the slots stay, empty.
  void RemoveAll();
  // Number of slots.
  int GetCount() const { return static_cast<int>(ranges_.size()); }

 private:
  // The sub-range of the block of `code`, or null.
  CharMetricsRange* RangeOf(unsigned int code) const;

  std::vector<CharMetricsRange*> ranges_;
};

}  // namespace qro_common
