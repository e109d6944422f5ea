#pragma once
// Constant tables for reading the name records of a font.

namespace qro_common {

class FontUtils {
 public:
  // Byte of the Macintosh Roman character set -> UTF-16 code unit. 0..127
  // are ASCII (entry 0 is 0); 128..255 follow Apple's Mac OS Roman mapping
  // in the revision where 0xDB is the euro sign (U+20AC) and 0xF0 the Apple
  // logo (U+F8FF, private use).
  static const unsigned short MacRomanEnc[256];

  // Macintosh language code (the index) -> Windows language identifier;
  // 0xFFFF where there is no equivalent.
  static constexpr unsigned kWinLangFromMacCount = 152;
  static const unsigned short WinLangFromMac[kWinLangFromMacCount];

  // WinLangFromMac[macLanguage], and 0xFFFF for codes beyond the table.
  static unsigned short GetWinLangFromMac(unsigned macLanguage) {
    return macLanguage < kWinLangFromMacCount ? WinLangFromMac[macLanguage] : 0xFFFF;
  }
};

}  // namespace qro_common
