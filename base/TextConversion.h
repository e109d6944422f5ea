#pragma once
// Numbers to text and back on 8-bit and UTF-16 text, without the C
// library's locale machinery; UTF-8 helpers; case conversion of UTF-16
// strings. Exported for the host application; the library itself does not
// call them.
//
// Every function accepts any input: a null text reads as empty (0), a null
// buffer gets nothing written and the null pointer back.

#include <string>

#include "base/U16CharTraits.h"

namespace qro_base {

// A string of UTF-16 code units.
using u16string = std::basic_string<unsigned short, U16CharTraits>;

// Length of the UTF-8 sequence that `lead` starts: 1 for 0x00..0x7E, 2 for
// 110xxxxx, 3 for 1110xxxx, 4 for 11110xxx, 5 for 111110xx, 6 for 1111110x
// and 7 for anything else. 0x7F (DEL) is deliberately not a one-byte lead
// and gives 7, like the continuation bytes 0x80..0xBF and 0xFE, 0xFF.
int getUtf8CharByteCount(unsigned char lead);

// Writes `value` in decimal at the end of buffer[0..size): a terminating
// zero at buffer[size - 1] and the digits in front of it. Returns the first
// digit. When buffer is null or size is too small for the digits and the
// zero (11 bytes always suffice), writes nothing and returns nullptr.
char* uint32ToString(unsigned int value, char* buffer, int size);

// Decimal integer at the start of `text`: leading spaces and tabs, one
// optional '+' or '-', then digits up to the first non-digit. Overflow wraps
// around modulo 2^32. No digits give 0. The _2 form reads at most `length`
// units counted from `text` itself (blanks and sign included) and stops
// earlier at a zero unit.
int atoi_utf16(const unsigned short* text);
int atoi_utf16_2(const unsigned short* text, unsigned int length);

// Decimal number with optional fraction, blanks and sign as atoi_utf16:
// "3.25", "-0.5", ".5", "7.". There is no exponent notation: "1e3" gives 1.
double atof_utf16(const unsigned short* text);
double atof_utf16_2(const unsigned short* text, unsigned int length);

// Decimal text of `value` with a terminating zero unit; returns `buffer`.
// Buffers of 12 units (32-bit) and 21 units (64-bit) hold every value,
// including the most negative ones, which are written in full:
// "-2147483648" and "-9223372036854775808".
char* IntegerToArray(int value, char* buffer);
unsigned short* IntegerToArray16(int value, unsigned short* buffer);
char* Int64ToArray(long long value, char* buffer);
unsigned short* Int64ToArray16(long long value, unsigned short* buffer);

// Decimal text of `value` with up to `fractionDigits` fraction digits;
// returns `buffer`.
//  - The integer part is written in full ("-" first for a negative value);
//    the fraction digits follow a '.', produced by repeated multiplication
//    of the remaining fraction by 10. They stop after `fractionDigits`
//    digits, when 17 significant digits (integer digits included, leading
//    zeros not) are written, or when the remaining fraction is 0.
//  - When a limit stops them, the last digit is rounded half away from zero
//    on the remaining fraction (2.675 is 2.67499999... in binary and gives
//    "2.67"; 0.125 gives "0.13"; 9.996 with 2 digits gives "10" or "10.00").
//    With fractionDigits 0 the integer part itself is rounded.
//  - `fixed` false: trailing zeros of the fraction are dropped, and the '.'
//    when no digit remains ("2.5", "3"). `fixed` true: the fraction is
//    padded with zeros to `fractionDigits` digits, as far as the 17
//    significant digits allow ("2.500", "3.00").
//  - A negative value keeps its "-" even when all its digits are zero
//    ("-0.001" with 2 digits gives "-0"; -0.0 is not negative and gives
//    "0"). NaN gives "nan", infinities "inf" and "-inf".
// The buffer must hold 4 + fractionDigits units plus one per integer digit
// of |value|: 20 + fractionDigits units below 1e16, 313 + fractionDigits for
// any double.
char* FloatToArray(double value, unsigned int fractionDigits, char* buffer, bool fixed);
unsigned short* FloatToArray(double value, unsigned int fractionDigits, unsigned short* buffer,
                             bool fixed);

// Case conversion unit by unit (surrogates are not combined): a unit whose
// CharacterType::charTypes entry has the lowercase flag (bit 7) is replaced
// by CharacterType::ToUpperCase(unit); every other unit is copied. `out` is
// replaced; it may be the same string as `in`.
void toUpperCase(const u16string& in, u16string& out);
// The same with the uppercase flag (bit 6) and CharacterType::ToLowerCase.
void toLowerCase(const u16string& in, u16string& out);

// UTF-16 to UTF-8 into `out` (replaced). A surrogate pair becomes one code
// point; a surrogate without its partner becomes U+FFFD.
void utf16ToUtf8(const u16string& in, std::string& out);

// Converts the text to UTF-8 for diagnostics; the result is discarded and
// nothing is printed.
void printStr16(const u16string& text);

}  // namespace qro_base
