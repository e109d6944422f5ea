#pragma once

#include <cstdint>
#include <vector>

#include "common/font_info/CharMetricsRange.h"

namespace qro_common {

// The advances of one block, first..last; an entry is present where the
// font maps a glyph.
//
// Stored compactly for sparse blocks as well as full ones: a presence bit
// per code and, while every present entry has the same advance (as in the
// Hangul and ideograph blocks of most CJK fonts), that one advance only.
// Otherwise the advances of the present entries (in code order) and, per
// 64 codes, the number of present entries before them, so that Get() finds
// an entry with one bit test and one population count. Get() hands out
// pointers into this storage.
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
  // stores nothing. Entries set in ascending code order are appended in
  // constant time; others move the entries after them.
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
  int GetSize() const { return static_cast<int>(size_); }
  // Number of present entries.
  int GetPresentCount() const { return static_cast<int>(count_); }

 private:
  void Reset(int first, int last);
  bool IsPresent(unsigned offset) const { return (bits_[offset >> 6] >> (offset & 63)) & 1; }
  // Stores the advance of an absent entry; `expected` is the number of
  // entries the range will hold (room is made for them).
  void Add(unsigned offset, unsigned short advance, unsigned expected);
  // Leaves the one-advance form: one advance per present entry.
  void Spread(unsigned expected);
  // Number of present entries before `offset` (not in the one-advance form).
  unsigned Rank(unsigned offset) const;
  // Recomputes the per-word counts and the end after entries moved.
  void Recount();

  int first_;
  int last_;
  unsigned size_ = 0;
  unsigned count_ = 0;
  // Highest present offset + 1; entries at or above it are appended.
  unsigned end_ = 0;
  // The advance of every present entry while uniform_ holds.
  CharMetrics shared_;
  bool uniform_ = true;
  std::vector<std::uint64_t> bits_;
  // Without uniform_: present entries before each word of bits_, right for
  // every word that holds a present entry (Get() reads no other), and the
  // advances of the present entries.
  std::vector<std::uint32_t> ranks_;
  std::vector<CharMetrics> advances_;
};

}  // namespace qro_common
