#include "base/TextConversion.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "base/CharacterType.h"

namespace qro_base {

namespace {

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

// A finite double has at most 309 integer digits.
constexpr int kMaxIntegralDigits = 310;

bool isBlank(unsigned short unit) { return unit == 0x20 || unit == 0x09; }
bool isDigit(unsigned short unit) { return unit >= '0' && unit <= '9'; }

// The parsers read text[0..limit) and also stop at a zero unit, which is
// never a blank, sign, digit or point.

// Reads blanks and a sign from text[0..limit); returns the index after them.
std::size_t skipBlanksAndSign(const unsigned short* text, std::size_t limit, bool& negative) {
  std::size_t i = 0;
  while (i < limit && isBlank(text[i])) ++i;
  negative = false;
  if (i < limit && (text[i] == '-' || text[i] == '+')) {
    negative = text[i] == '-';
    ++i;
  }
  return i;
}

int parseInt(const unsigned short* text, std::size_t limit) {
  if (text == nullptr) return 0;
  bool negative;
  std::size_t i = skipBlanksAndSign(text, limit, negative);
  std::uint32_t value = 0;  // wraps around modulo 2^32
  for (; i < limit && isDigit(text[i]); ++i) value = value * 10u + (text[i] - '0');
  if (negative) value = 0u - value;
  return static_cast<int>(value);
}

double parseDouble(const unsigned short* text, std::size_t limit) {
  if (text == nullptr) return 0.0;
  bool negative;
  std::size_t i = skipBlanksAndSign(text, limit, negative);
  double value = 0.0;
  for (; i < limit && isDigit(text[i]); ++i) value = value * 10.0 + (text[i] - '0');
  if (i < limit && text[i] == '.') {
    double scale = 1.0;
    for (++i; i < limit && isDigit(text[i]); ++i) {
      scale /= 10.0;
      value += (text[i] - '0') * scale;
    }
  }
  return negative ? -value : value;
}

// Decimal digits of `value`, most significant first, into `out`; returns
// their number (at least 1).
int unsignedDigits(std::uint64_t value, char* out) {
  char reversed[20];
  int count = 0;
  do {
    reversed[count++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  for (int i = 0; i < count; ++i) out[i] = reversed[count - 1 - i];
  return count;
}

// Exact decimal digits of a non-negative integral finite double.
int integralDigits(double value, char* out) {
  if (value < 18446744073709551616.0) return unsignedDigits(static_cast<std::uint64_t>(value), out);
  // value = mantissa * 2^shift with a 53-bit mantissa: multiply out in
  // base-10^9 limbs, least significant first.
  int exponent;
  double fraction = std::frexp(value, &exponent);
  std::uint64_t mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
  int shift = exponent - 53;
  constexpr std::uint32_t kBase = 1000000000u;
  std::uint32_t limbs[kMaxIntegralDigits / 9 + 2];
  int count = 0;
  while (mantissa != 0) {
    limbs[count++] = static_cast<std::uint32_t>(mantissa % kBase);
    mantissa /= kBase;
  }
  while (shift > 0) {
    int step = shift < 29 ? shift : 29;
    std::uint64_t carry = 0;
    for (int i = 0; i < count; ++i) {
      std::uint64_t current = (static_cast<std::uint64_t>(limbs[i]) << step) + carry;
      limbs[i] = static_cast<std::uint32_t>(current % kBase);
      carry = current / kBase;
    }
    while (carry != 0) {
      limbs[count++] = static_cast<std::uint32_t>(carry % kBase);
      carry /= kBase;
    }
    shift -= step;
  }
  int length = unsignedDigits(limbs[count - 1], out);
  for (int i = count - 2; i >= 0; --i) {
    std::uint32_t limb = limbs[i];
    for (int d = 8; d >= 0; --d) {
      out[length + d] = static_cast<char>('0' + limb % 10);
      limb /= 10;
    }
    length += 9;
  }
  return length;
}

// The fraction part of a double, held exactly as limbs / 2^bits, so that
// multiplying it by 10 loses nothing.
class ExactFraction {
 public:
  // 0 <= fraction < 1.
  explicit ExactFraction(double fraction) {
    for (std::uint32_t& limb : limbs_) limb = 0;
    if (fraction == 0) return;
    int exponent;
    double mantissa = std::frexp(fraction, &exponent);  // exponent <= 0
    std::uint64_t bits53 = static_cast<std::uint64_t>(std::ldexp(mantissa, 53));
    bits_ = 53 - exponent;  // at most 1126 for the smallest subnormal
    limbs_[0] = static_cast<std::uint32_t>(bits53);
    limbs_[1] = static_cast<std::uint32_t>(bits53 >> 32);
    count_ = bits_ / 32 + 2;
  }

  bool isZero() const {
    for (int i = 0; i < count_; ++i) {
      if (limbs_[i] != 0) return false;
    }
    return true;
  }

  // True when the fraction is 1/2 or more.
  bool atLeastHalf() const {
    if (count_ == 0) return false;
    int bit = bits_ - 1;
    return (limbs_[bit / 32] >> (bit % 32)) & 1u;
  }

  // Multiplies by 10 and returns the integer part taken off the product.
  int nextDigit() {
    std::uint64_t carry = 0;
    for (int i = 0; i < count_; ++i) {
      std::uint64_t product = static_cast<std::uint64_t>(limbs_[i]) * 10u + carry;
      limbs_[i] = static_cast<std::uint32_t>(product);
      carry = product >> 32;
    }
    // The digit sits at bit `bits_` and above, below 16.
    int limb = bits_ / 32;
    int shift = bits_ % 32;
    std::uint64_t high = (static_cast<std::uint64_t>(limbs_[limb + 1]) << 32) | limbs_[limb];
    int digit = static_cast<int>((high >> shift) & 0xF);
    high &= (std::uint64_t{1} << shift) - 1;
    limbs_[limb] = static_cast<std::uint32_t>(high);
    limbs_[limb + 1] = 0;
    return digit;
  }

 private:
  std::uint32_t limbs_[40];  // least significant first
  int bits_ = 0;
  int count_ = 0;
};

template <typename Unit>
Unit* writeAscii(const char* text, Unit* buffer) {
  std::size_t i = 0;
  for (; text[i] != 0; ++i) buffer[i] = static_cast<Unit>(text[i]);
  buffer[i] = 0;
  return buffer;
}

template <typename Unit>
Unit* writeInteger(bool negative, std::uint64_t magnitude, Unit* buffer) {
  if (buffer == nullptr) return nullptr;
  char digits[20];
  int count = unsignedDigits(magnitude, digits);
  std::size_t pos = 0;
  if (negative) buffer[pos++] = '-';
  for (int i = 0; i < count; ++i) buffer[pos++] = static_cast<Unit>(digits[i]);
  buffer[pos] = 0;
  return buffer;
}

template <typename Unit>
Unit* writeFloat(double value, unsigned int fractionDigits, Unit* buffer, bool fixed) {
  if (buffer == nullptr) return nullptr;
  if (std::isnan(value)) return writeAscii("nan", buffer);
  if (std::isinf(value)) return writeAscii(value < 0 ? "-inf" : "inf", buffer);

  constexpr int kMaxSignificant = 17;
  const bool negative = value < 0;
  const double magnitude = std::fabs(value);
  const double integral = std::trunc(magnitude);
  ExactFraction fraction(magnitude - integral);  // the subtraction is exact

  char digits[kMaxIntegralDigits];
  const int integralCount = integralDigits(integral, digits);

  // Layout: [sign] integer digits '.' fraction digits; positions as indexes.
  std::size_t pos = 0;
  if (negative) buffer[pos++] = '-';
  const std::size_t intStart = pos;
  for (int i = 0; i < integralCount; ++i) buffer[pos++] = static_cast<Unit>(digits[i]);
  std::size_t point = pos++;
  buffer[point] = '.';

  int significant = integral > 0 ? integralCount : 0;
  unsigned int written = 0;
  while (written < fractionDigits && significant < kMaxSignificant && !fraction.isZero()) {
    int digit = fraction.nextDigit();
    buffer[pos++] = static_cast<Unit>('0' + digit);
    ++written;
    if (significant > 0 || digit != 0) ++significant;
  }

  // A limit stopped the digits: round the last one on what remains.
  if (fraction.atLeastHalf()) {
    std::size_t i = pos;
    bool carry = true;
    while (carry && i > intStart) {
      --i;
      if (i == point) continue;
      if (buffer[i] == '9') {
        buffer[i] = '0';
      } else {
        buffer[i] = static_cast<Unit>(buffer[i] + 1);
        carry = false;
      }
    }
    if (carry) {  // 9.99 -> 10.0: one more integer digit
      for (std::size_t j = pos; j > intStart; --j) buffer[j] = buffer[j - 1];
      buffer[intStart] = '1';
      ++pos;
      ++point;
    }
    significant = 0;
    for (std::size_t j = intStart; j < pos; ++j) {
      if (j == point) continue;
      if (significant > 0 || buffer[j] != '0') ++significant;
    }
  }

  if (fixed) {
    while (written < fractionDigits && significant < kMaxSignificant) {
      buffer[pos++] = '0';
      ++written;
      if (significant > 0) ++significant;
    }
  } else {
    while (written > 0 && buffer[pos - 1] == '0') {
      --pos;
      --written;
    }
  }
  if (written == 0) pos = point;
  buffer[pos] = 0;  // a negative value keeps its "-" even when every digit is 0
  return buffer;
}

template <bool kToUpper>
void convertCase(const u16string& in, u16string& out) {
  const unsigned char flag = kToUpper ? CharacterType::kLowercase : CharacterType::kUppercase;
  u16string result;
  result.reserve(in.size());
  for (unsigned short unit : in) {
    if (CharacterType::charTypes[unit] & flag) {
      unit = kToUpper ? CharacterType::ToUpperCase(unit) : CharacterType::ToLowerCase(unit);
    }
    result.push_back(unit);
  }
  out.swap(result);
}

}  // namespace

int getUtf8CharByteCount(unsigned char lead) {
  if (lead <= 126) return 1;
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  if ((lead & 0xFC) == 0xF8) return 5;
  if ((lead & 0xFE) == 0xFC) return 6;
  return 7;
}

char* uint32ToString(unsigned int value, char* buffer, int size) {
  if (buffer == nullptr) return nullptr;
  char digits[10];
  int count = unsignedDigits(value, digits);
  if (size < count + 1) return nullptr;
  char* first = buffer + (size - 1 - count);
  for (int i = 0; i < count; ++i) first[i] = digits[i];
  first[count] = 0;
  return first;
}

int atoi_utf16(const unsigned short* text) { return parseInt(text, kUnlimited); }

int atoi_utf16_2(const unsigned short* text, unsigned int length) {
  return parseInt(text, length);
}

double atof_utf16(const unsigned short* text) { return parseDouble(text, kUnlimited); }

double atof_utf16_2(const unsigned short* text, unsigned int length) {
  return parseDouble(text, length);
}

char* IntegerToArray(int value, char* buffer) {
  std::uint32_t magnitude = value < 0 ? 0u - static_cast<std::uint32_t>(value)
                                      : static_cast<std::uint32_t>(value);
  return writeInteger(value < 0, magnitude, buffer);
}

unsigned short* IntegerToArray16(int value, unsigned short* buffer) {
  std::uint32_t magnitude = value < 0 ? 0u - static_cast<std::uint32_t>(value)
                                      : static_cast<std::uint32_t>(value);
  return writeInteger(value < 0, magnitude, buffer);
}

char* Int64ToArray(long long value, char* buffer) {
  std::uint64_t magnitude = value < 0 ? 0u - static_cast<std::uint64_t>(value)
                                      : static_cast<std::uint64_t>(value);
  return writeInteger(value < 0, magnitude, buffer);
}

unsigned short* Int64ToArray16(long long value, unsigned short* buffer) {
  std::uint64_t magnitude = value < 0 ? 0u - static_cast<std::uint64_t>(value)
                                      : static_cast<std::uint64_t>(value);
  return writeInteger(value < 0, magnitude, buffer);
}

char* FloatToArray(double value, unsigned int fractionDigits, char* buffer, bool fixed) {
  return writeFloat(value, fractionDigits, buffer, fixed);
}

unsigned short* FloatToArray(double value, unsigned int fractionDigits, unsigned short* buffer,
                             bool fixed) {
  return writeFloat(value, fractionDigits, buffer, fixed);
}

void toUpperCase(const u16string& in, u16string& out) { convertCase<true>(in, out); }

void toLowerCase(const u16string& in, u16string& out) { convertCase<false>(in, out); }

void utf16ToUtf8(const u16string& in, std::string& out) {
  std::string result;
  result.reserve(in.size());
  for (std::size_t i = 0; i < in.size(); ++i) {
    std::uint32_t cp = in[i];
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 &&
        in[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = 0xFFFD;
    }
    if (cp < 0x80) {
      result.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      result.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      result.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      result.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      result.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      result.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      result.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      result.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      result.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      result.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  out.swap(result);
}

void printStr16(const u16string& text) {
  std::string utf8;
  utf16ToUtf8(text, utf8);
}

}  // namespace qro_base
