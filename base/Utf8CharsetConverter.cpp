#include "base/Utf8CharsetConverter.h"

namespace qro_base {

namespace {

constexpr unsigned short kReplacement = 0xFFFD;

// The length of the sequence a lead byte starts and the range its second
// byte must fall in (which rules out overlong forms, surrogates and values
// above U+10FFFF); length 0 for bytes that cannot start a sequence.
struct Lead {
  unsigned length;
  unsigned char low;
  unsigned char high;
};

Lead leadOf(unsigned char byte) {
  if (byte < 0x80) return {1, 0, 0};
  if (byte < 0xC2) return {0, 0, 0};
  if (byte < 0xE0) return {2, 0x80, 0xBF};
  if (byte == 0xE0) return {3, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte < 0xF0) return {3, 0x80, 0xBF};
  if (byte == 0xF0) return {4, 0x90, 0xBF};
  if (byte < 0xF4) return {4, 0x80, 0xBF};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

}  // namespace

unsigned Utf8CharsetConverter::Convert(const char* source, unsigned sourceLength,
                                       unsigned short* target, unsigned targetLength, bool last,
                                       unsigned& produced) {
  produced = 0;
  if (source == nullptr || target == nullptr) return 0;
  const unsigned char* in = reinterpret_cast<const unsigned char*>(source);
  unsigned consumed = 0;

  while (consumed < sourceLength && produced < targetLength) {
    unsigned char byte = in[consumed];
    Lead lead = leadOf(byte);
    if (lead.length == 1) {
      target[produced++] = byte;
      ++consumed;
      continue;
    }
    if (lead.length == 0) {
      target[produced++] = kReplacement;
      ++consumed;
      continue;
    }

    // Take continuation bytes while they are valid; `taken` counts the
    // bytes of the sequence seen so far, lead included.
    unsigned long codePoint = byte & (0xFFu >> (lead.length + 1));
    unsigned taken = 1;
    bool broken = false;
    while (taken < lead.length) {
      if (consumed + taken == sourceLength) break;
      unsigned char next = in[consumed + taken];
      unsigned char low = taken == 1 ? lead.low : 0x80;
      unsigned char high = taken == 1 ? lead.high : 0xBF;
      if (next < low || next > high) {
        broken = true;
        break;
      }
      codePoint = (codePoint << 6) | (next & 0x3Fu);
      ++taken;
    }

    if (taken < lead.length && !broken) {
      // Cut off by the end of the input: wait for the rest unless none follows.
      if (!last) break;
      broken = true;
    }
    if (broken) {
      target[produced++] = kReplacement;
      consumed += taken;
      continue;
    }
    if (codePoint >= 0x10000) {
      if (targetLength - produced < 2) break;
      codePoint -= 0x10000;
      target[produced++] = static_cast<unsigned short>(0xD800 + (codePoint >> 10));
      target[produced++] = static_cast<unsigned short>(0xDC00 + (codePoint & 0x3FF));
    } else {
      target[produced++] = static_cast<unsigned short>(codePoint);
    }
    consumed += taken;
  }
  return consumed;
}

}  // namespace qro_base
