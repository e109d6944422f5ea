#pragma once

#include <vector>

#include "common/font_info/DefaultFontRange.h"

namespace qro_common {

// Font indexes of a Unicode-range bit made of several blocks: one slot per
// block (in the bit's block order, see FontUSBType). Owns the sub-ranges.
//
// Body of the binary form: S (uint8, number of slots), D (uint8, number of
// occupied slots), then D times the slot number (uint8, ascending), the
// sub-range's type byte and its body. The reader ignores the type byte and
// reads every sub-range as a single range.
class MultiDefaultFontRange : public DefaultFontRange {
 public:
  // `count` empty slots when 0 <= count <= kMaxBlockCount; none otherwise.
  explicit MultiDefaultFontRange(int count);
  ~MultiDefaultFontRange() override;
  MultiDefaultFontRange(const MultiDefaultFontRange&) = delete;
  MultiDefaultFontRange& operator=(const MultiDefaultFontRange&) = delete;

  int GetType() const override { return kMulti; }
  // The sub-range of the code's block; -1 when the code is in no block of
  // this bit or the block's slot is empty.
  short Get(unsigned int code) const override;
  bool Read(qro_base::InputStream& in) override;
  bool Write(qro_base::OutputStream& out) const override;

  // The range of `block`, or null (also for a block outside the slots).
  DefaultFontRange* GetDefaultFontRange(int block) const;
  // Stores `range` (owning), deleting a different range that was there.
  // For a block outside the slots `range` is deleted.
  void SetDefaultFontRange(int block, DefaultFontRange* range);
  // Deletes every sub-range; the slots stay, empty.
  void RemoveAll();
  int GetCount() const { return static_cast<int>(ranges_.size()); }

 private:
  std::vector<DefaultFontRange*> ranges_;
};

}  // namespace qro_common
