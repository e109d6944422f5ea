#pragma once
// Classification of Unicode code points by OS/2 Unicode-range bit
// (ulUnicodeRange1..4): which bit a code point belongs to, which sub-range
// (block) of that bit, and which code points the (sub-)range spans. Every
// per-character table of the library is split by this bit.
//
// Bits 0 to 122 follow the OpenType assignment, with Hangul Jamo
// Extended-A/B and the syllables up to U+D7FB in bit 56, surrogates in 57 and
// the BMP private use area in 60. Bit 127 is the library's own bucket for
// U+1F0A0..1F6FF (cards, enclosed supplements, pictographs, emoticons,
// transport); bits 123 to 126 are never produced. 255 means "no bit": code
// points outside every block, including U+F0000..FEFFF (private use of
// plane 15 counts only from U+FF000 on).

#include <array>

namespace qro_common {

class FontUSBType {
 public:
  static constexpr unsigned char kNoBit = 255;

  // Result of GetCodePointUSBInfo, fields in this order.
  struct CodePointUSBInfo {
    unsigned char usbType;   // bit number, or 255
    signed char subRangeIndex;  // -1: single-range bit, or in no sub-range
    int rangeFirst;          // first code point of the (sub-)range, -1 unknown
    int rangeLast;           // last code point, inclusive, -1 unknown
    int subRangeCount;       // number of sub-ranges of the bit, 0 if single
  };

  // The bit of every BMP code point (0 to 122, or 255). Constant data,
  // initialised before any code runs.
  static const std::array<unsigned char, 0x10000> USB_TYPES;

  FontUSBType() = default;
  virtual ~FontUSBType() = default;

  // Bit number (0 to 122, 127) of any 32-bit value, or 255.
  static int GetUSBType(unsigned int cp);

  // The bit of `cp`, as GetUSBType. For 255 only info.usbType is written and
  // the other fields keep their values. Otherwise every field is set: a
  // single-range bit gives sub-range -1, count 0 and the bit's range; a
  // multi-range bit gives its sub-range count and the first listed sub-range
  // containing cp with its index (index and bounds -1 when none contains it).
  static int GetCodePointUSBInfo(unsigned int cp, CodePointUSBInfo& info);
};

}  // namespace qro_common
