#pragma once

#include <vector>

#include "base/InputStream.h"
#include "base/NonCopyable.h"
#include "base/OutputStream.h"
#include "common/font_info/DefaultFontRange.h"
#include "common/font_info/ExtraDefaultFonts.h"
#include "common/font_info/RangeSlots.h"

namespace qro_common {

// For every character, the font index of the font that draws it when the
// requested font cannot, in 128 slots, one per OS/2 Unicode-range bit
// (FontUSBType). Owns the ranges.
//
// Binary form (the "fi" file): 128 entries in slot order, each a type byte
// (0 for an empty slot) followed by the range's body.
class DefaultFontInfo : public qro_base::NonCopyable {
 public:
  // What ReadChecked() found.
  using ReadResult = RangeTableRead;

  DefaultFontInfo();
  ~DefaultFontInfo();

  // The range of slot `usb`, or null; std::out_of_range for usb >= 128.
  DefaultFontRange* GetDefaultFontRange(unsigned char usb) const;
  // Stores `range` (owning), deleting a different range that was there;
  // std::out_of_range for usb >= 128 (after deleting `range`).
  void SetDefaultFontRange(unsigned char usb, DefaultFontRange* range);

  // The font index for `code`, -1 for none: from its slot, else, for the
  // code points no slot holds (Unicode-range bit 57, 123 to 126 or none at
  // all), from the extra fonts.
  int GetFontIndex(unsigned int code) const;

  // The fonts of the code points no slot holds, kept apart from the slots
  // (and from the binary form below, in a file of their own).
  ExtraDefaultFonts& GetExtraFonts() { return extra_; }
  const ExtraDefaultFonts& GetExtraFonts() const { return extra_; }

  // Deletes every range.
  void RemoveAll();

  // ReadChecked() == kLoaded.
  bool Read(qro_base::InputStream& in);
  // Replaces the content by the ranges read from `in`. A type byte other
  // than 0 to 2 leaves its slot empty and the next byte is the next slot's
  // type byte. On kDamaged every slot is left empty.
  ReadResult ReadChecked(qro_base::InputStream& in);
  // False when a range could not be written or the stream refused a byte.
  bool Write(qro_base::OutputStream& out) const;

 private:
  std::vector<DefaultFontRange*> ranges_;
  ExtraDefaultFonts extra_;
};

}  // namespace qro_common
