#pragma once
// Limits shared by the per-character tables (advances and default fonts),
// which keep one slot per OS/2 Unicode-range bit and one entry per code of
// the bit's block.

namespace qro_common {

// Number of Unicode-range slots of a per-character table.
constexpr int kUnicodeRangeSlotCount = 128;
// The last Unicode code point.
constexpr int kMaxCodePoint = 0x10FFFF;
// The most codes one range can cover: the binary forms address and count
// entries in 16 bits. (The largest block, U+100000..U+10FFFD, has 65534.)
constexpr int kMaxRangeSize = 0xFFFF;
// The most blocks of a range made of several blocks; the binary forms
// count them in one byte.
constexpr int kMaxBlockCount = 255;

// Whether first..last is a range a table can hold: inside the code space,
// not reversed, and at most kMaxRangeSize codes.
inline bool isValidCodeRange(int first, int last) {
  return first >= 0 && first <= last && last <= kMaxCodePoint && last - first < kMaxRangeSize;
}

// Whether characters of Unicode-range bit `usb` are kept in the tables:
// bits 0..122 except 57 (surrogates), and 127. Bits 123..126 are reserved
// and 255 means no bit.
inline bool isTableUSBType(int usb) { return usb >= 0 && usb != 57 && (usb <= 122 || usb == 127); }

}  // namespace qro_common
