#pragma once

#include <memory>

#include "common/font_info/CharMetricsRange.h"

namespace qro_common {

// A block, first..last, in which every mapped character has the same
// advance: one shared CharMetrics and a visibility bit per code (bit k % 8
// of byte k / 8 for code first + k).
//
// Body of the binary form: first (int32), last (int32), the visibility bits
// (getByteSize(first, last) bytes), the shared advance (uint16).
class ZippedCharMetricsRange : public CharMetricsRange {
 public:
  // first = last = -1, no metrics, no bits (a range to be read).
  ZippedCharMetricsRange();
  // Takes ownership of `shared` and of `bits` (allocated with new[],
  // getByteSize(first, last) bytes). An invalid first..last
  // (isValidCodeRange) makes a range that covers nothing.
  ZippedCharMetricsRange(int first, int last, CharMetrics* shared, char* bits);
  ~ZippedCharMetricsRange() override = default;

  int GetType() const override { return kZipped; }
  // The shared metrics for every code of first..last, whether mapped or
  // not; null outside.
  CharMetrics* Get(unsigned int code) override;
  // The visibility bit of `code`; false outside first..last.
  bool IsVisibleChar(unsigned int code) const override;
  bool Read(qro_base::InputStream& in) override;
  bool Write(qro_base::OutputStream& out) const override;

  int GetFirst() const { return first_; }
  int GetLast() const { return last_; }
  const CharMetrics* GetSharedMetrics() const { return shared_.get(); }

 private:
  void Clear();

  int first_ = -1;
  int last_ = -1;
  // Number of covered codes; 0 unless first..last is valid and bits exist.
  unsigned size_ = 0;
  std::unique_ptr<CharMetrics> shared_;
  std::unique_ptr<char[]> bits_;
};

}  // namespace qro_common
