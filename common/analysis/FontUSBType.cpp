#include "common/analysis/FontUSBType.h"

#include "common/analysis/UsbTypesData.h"

namespace qro_common {

namespace {

// Binary search of the sorted, disjoint supplementary blocks.
int supplementaryBit(unsigned int cp) {
  unsigned lo = 0;
  unsigned hi = usb_data::kSupplementaryRangeCount;
  while (lo < hi) {
    unsigned mid = lo + (hi - lo) / 2;
    const usb_data::SupplementaryRange& r = usb_data::kSupplementaryRanges[mid];
    if (cp < r.first) {
      hi = mid;
    } else if (cp > r.last) {
      lo = mid + 1;
    } else {
      return r.bit;
    }
  }
  return FontUSBType::kNoBit;
}

}  // namespace

int FontUSBType::GetUSBType(unsigned int cp) {
  if (cp < 0x10000) return USB_TYPES[cp];
  return supplementaryBit(cp);
}

int FontUSBType::GetCodePointUSBInfo(unsigned int cp, CodePointUSBInfo& info) {
  int bit = GetUSBType(cp);
  info.usbType = static_cast<unsigned char>(bit);
  if (bit == kNoBit) return bit;

  const usb_data::UsbBitRanges& ranges = usb_data::kUsbBits[bit];
  const usb_data::UsbRange* first = usb_data::kUsbRanges + ranges.offset;
  info.subRangeCount = ranges.subRangeCount;
  info.subRangeIndex = -1;
  info.rangeFirst = -1;
  info.rangeLast = -1;
  if (ranges.subRangeCount == 0) {
    if (ranges.rangeCount > 0) {
      info.rangeFirst = static_cast<int>(first->first);
      info.rangeLast = static_cast<int>(first->last);
    }
    return bit;
  }
  for (int i = 0; i < ranges.subRangeCount; ++i) {
    if (cp >= first[i].first && cp <= first[i].last) {
      info.subRangeIndex = static_cast<signed char>(i);
      info.rangeFirst = static_cast<int>(first[i].first);
      info.rangeLast = static_cast<int>(first[i].last);
      break;
    }
  }
  return bit;
}

}  // namespace qro_common
