#pragma once
// Range data behind FontUSBType, defined in the generated
// UsbTypesGenerated.cpp (scripts/gen_usb_types.py). Internal to the
// classification code and its tests.

namespace qro_common {
namespace usb_data {

// Inclusive code point range.
struct UsbRange {
  unsigned int first;
  unsigned int last;
};

// Where the ranges of one bit start in kUsbRanges and how many there are.
// subRangeCount is 0 for a single-range bit (rangeCount 1 then), the number
// of sub-ranges otherwise; a bit with rangeCount 0 is never produced.
struct UsbBitRanges {
  unsigned char offset;
  unsigned char rangeCount;
  unsigned char subRangeCount;
};

// A block above the BMP and its bit; sorted by first, no overlaps.
struct SupplementaryRange {
  unsigned int first;
  unsigned int last;
  unsigned char bit;
};

constexpr unsigned kUsbBitCount = 128;

extern const UsbRange kUsbRanges[];
extern const UsbBitRanges kUsbBits[kUsbBitCount];
extern const SupplementaryRange kSupplementaryRanges[];
extern const unsigned kSupplementaryRangeCount;

}  // namespace usb_data
}  // namespace qro_common
