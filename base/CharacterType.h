#pragma once
// Classes of UTF-16 code units and their simple case mapping.
//
// charTypes holds one byte of flags per BMP code unit:
//
//   bit 7 (kLowercase)  lowercase letter that has an uppercase partner
//   bit 6 (kUppercase)  uppercase letter that has a lowercase partner
//   bit 5 (kLetter)     alphabetic (letters, letter numbers, circled letters)
//   bit 4 (kSpace)      white space
//   bit 3 (kDigit)      decimal digit, any script
//   bits 0-2            script class (kScriptMask), the default-font class
//                       of the unit's Unicode range:
//     0 kScriptBasicLatin  U+0000..007F (range 0)
//     1 kScriptHangul      Hangul compatibility jamo and syllables
//                          (ranges 52, 56)
//     4 kScriptOther       every other range, and code units in no range
//     5 kScriptComplex     Hebrew, Arabic, Devanagari, Bengali, Thai, Lao
//                          (ranges 11, 13, 15, 16, 24, 25)
//     6 kScriptKana        Hiragana and Katakana (ranges 49, 50)
//     7 kScriptCjk         CJK ideographs, symbols and forms, enclosed CJK,
//                          CJK compatibility, halfwidth and fullwidth forms
//                          (ranges 48, 54, 55, 59, 61, 65, 68)
//   The font manager picks a default font by this class, and the choice
//   agrees with the one it makes by Unicode range (FontUSBType).
//
// The flags in bits 3 to 7 describe the Unicode 5.0 repertoire; code units
// assigned later carry only their script class. The case tables follow the
// Unicode 4.0 simple mappings for the Latin, Greek, Cyrillic, Armenian,
// Georgian, letterlike and fullwidth ranges; letters of those ranges without
// a partner (e.g. U+00DF, U+0250, U+10A0) map to themselves.
// scripts/gen_character_types.py builds both from the Unicode Character
// Database.

#include <array>

#include "base/NonCopyable.h"

namespace qro_base {

class CharacterType : public NonCopyable {
 public:
  enum : unsigned char {
    kScriptMask = 0x07,
    kDigit = 0x08,
    kSpace = 0x10,
    kLetter = 0x20,
    kUppercase = 0x40,
    kLowercase = 0x80,
  };
  enum : unsigned char {
    kScriptBasicLatin = 0,
    kScriptHangul = 1,
    kScriptOther = 4,
    kScriptComplex = 5,
    kScriptKana = 6,
    kScriptCjk = 7,
  };

  // One flag byte per BMP code unit. Constant data, initialised before any
  // code runs.
  static const std::array<unsigned char, 0x10000> charTypes;

  CharacterType() = default;
  virtual ~CharacterType() = default;

  // The uppercase partner of `unit` from the uppercase table, or `unit`
  // when the table has no entry. Callers that follow the flags map only
  // units with kLowercase set.
  static unsigned short ToUpperCase(unsigned short unit);
  // The lowercase partner from the lowercase table, or `unit`.
  static unsigned short ToLowerCase(unsigned short unit);
};

}  // namespace qro_base
