#pragma once

#include <vector>

#include "common/font_info/CharMetricsRange.h"

namespace qro_common {

// The advances of one block, first..last, one entry per code; an entry is
// present where the font maps a glyph. Entries are stored by value (16-bit
// advances plus a presence bit each); Get() hands out pointers into them.
//
// Body of the binary form: first (int32), last (int32), K (uint16, number
// of present entries), then K times the offset from first (uint16,
// ascending) and the advance (uint16).
class SingleCharMetricsRange : public CharMetricsRange {
 public:
  // last - first + 1 empty entries when first..last is a valid range
  // (isValidCodeRange), none otherwise (a range to be read).
  SingleCharMetricsRange(int first, int last);
  ~SingleCharMetricsRange() override = default;

  int GetType() const override { return kSingle; }
  // Entry code - first when present; null when absent or outside the range.
  CharMetrics* Get(unsigned int code) override;
  bool IsVisibleChar(unsigned int code) const override;
  bool Read(qro_base::InputStream& in) override;
  bool Write(qro_base::OutputStream& out) const override;

  // Stores `metrics` as the entry of `code` and takes ownership of it: the
  // value is copied and the object deleted (unless it is one of this
  // range's own entries). Null clears the entry. A code outside the range
  // stores nothing.
  void Set(unsigned int code, CharMetrics* metrics);
  // The same without an object to hand over.
  void SetAdvance(unsigned int code, unsigned short advance);
  // Clears every entry; the covered codes stay.
  void RemoveAll();

  // A new bit array of getByteSize(first, last) bytes (allocated with
  // new[], owned by the caller): bit k % 8 of byte k / 8 is set when entry
  // k is present.
  char* MakeVisibleCharInfo() const;
  // A new CharMetrics with the common advance when at least two entries are
  // present and all present entries share it; null otherwise.
  CharMetrics* CheckZipCharMetrics() const;

  int GetFirst() const { return first_; }
  int GetLast() const { return last_; }
  // Number of entries (covered codes).
  int GetSize() const { return static_cast<int>(advances_.size()); }
  // Number of present entries.
  int GetPresentCount() const;

 private:
  void Reset(int first, int last);
  bool IsPresent(unsigned offset) const { return (present_[offset >> 3] >> (offset & 7)) & 1; }

  int first_;
  int last_;
  std::vector<CharMetrics> advances_;
  std::vector<unsigned char> present_;
};

}  // namespace qro_common
