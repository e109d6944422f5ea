#pragma once

#include <memory>
#include <vector>

#include "base/InputStream.h"
#include "base/NonCopyable.h"
#include "base/OutputStream.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsRange.h"
#include "common/font_info/ExtraCharMetrics.h"
#include "common/font_info/RangeSlots.h"

namespace qro_common {

// The advances of every character a face maps, in 128 slots, one per OS/2
// Unicode-range bit (FontUSBType), each holding the bit's range or nothing.
// Owns the ranges.
//
// Binary form: 128 entries in slot order, each a type byte (0 for an empty
// slot) followed by the range's body.
class CharMetricsInfo : public qro_base::NonCopyable {
 public:
  // What ReadChecked() found.
  using ReadResult = RangeTableRead;

  CharMetricsInfo();
  virtual ~CharMetricsInfo();

  // The range of slot `usb`, or null; std::out_of_range for usb >= 128.
  CharMetricsRange* GetCharMetricsRange(unsigned char usb) const;
  // Stores `range` (owning), deleting a different range that was there;
  // std::out_of_range for usb >= 128 (after deleting `range`).
  void SetCharMetricsRange(unsigned char usb, CharMetricsRange* range);

  // The metrics of `code`, or null: from its slot, else from the extra
  // characters (those no slot holds: Unicode-range bit 57, 123 to 126 or
  // none at all).
  CharMetrics* GetCharMetrics(unsigned int code);
  const CharMetrics* GetCharMetrics(unsigned int code) const;
  // Whether the face maps `code`, by the same rules.
  bool IsVisibleChar(unsigned int code) const;

  // The extra characters, kept apart from the slots (and from the binary
  // form below); null for none.
  const ExtraCharMetrics* GetExtraCharMetrics() const { return extra_.get(); }
  void SetExtraCharMetrics(ExtraCharMetrics* extra);  // owning

  // Replaces every single range (also inside multi ranges) whose present
  // entries, at least two, share one advance by a zipped range.
  void ZipCharMetricsRanges();
  // Deletes every range.
  void RemoveAll();

  // ReadChecked() == kLoaded.
  bool Read(qro_base::InputStream& in);
  // Replaces the content by the ranges read from `in`. A type byte other
  // than 0 to 3 leaves its slot empty and the next byte is the next slot's
  // type byte. On kDamaged every slot is left empty.
  ReadResult ReadChecked(qro_base::InputStream& in);
  // False when a range could not be written or the stream refused a byte.
  bool Write(qro_base::OutputStream& out) const;

 private:
  CharMetricsRange* RangeOf(unsigned int code) const;

  std::vector<CharMetricsRange*> ranges_;
  std::unique_ptr<ExtraCharMetrics> extra_;
};

}  // namespace qro_common
