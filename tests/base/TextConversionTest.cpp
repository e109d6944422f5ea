#include "base/TextConversion.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using qro_base::u16string;

u16string u16(const char* ascii) {
  u16string result;
  for (const char* p = ascii; *p; ++p) result.push_back(static_cast<unsigned char>(*p));
  return result;
}

std::string narrow(const unsigned short* text) {
  std::string result;
  for (; *text; ++text) result.push_back(static_cast<char>(*text));
  return result;
}

// ---------------------------------------------------------------------------

TEST(Utf8ByteCount, Examples) {
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0x41), 1);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0xC3), 2);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0xE4), 3);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0xF0), 4);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0x7F), 7);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0x80), 7);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0x00), 1);
  EXPECT_EQ(qro_base::getUtf8CharByteCount(0x7E), 1);
}

TEST(Utf8ByteCount, EveryByteByItsLeadingOnes) {
  for (int b = 0; b < 256; ++b) {
    int ones = 0;
    while (ones < 8 && (b & (0x80 >> ones))) ++ones;
    int expected;
    if (b <= 0x7E) {
      expected = 1;
    } else if (ones >= 2 && ones <= 6) {
      expected = ones;
    } else {
      expected = 7;  // 0x7F, continuation bytes, 0xFE and 0xFF
    }
    EXPECT_EQ(qro_base::getUtf8CharByteCount(static_cast<unsigned char>(b)), expected) << b;
  }
}

// ---------------------------------------------------------------------------

TEST(Uint32ToString, DigitsEndAtTheLastByte) {
  char buffer[16];
  std::memset(buffer, 'x', sizeof buffer);
  char* first = qro_base::uint32ToString(305, buffer, 16);
  EXPECT_EQ(first, buffer + 12);
  EXPECT_STREQ(first, "305");
  EXPECT_EQ(buffer[11], 'x');

  EXPECT_STREQ(qro_base::uint32ToString(0, buffer, 16), "0");
  EXPECT_EQ(qro_base::uint32ToString(0, buffer, 16), buffer + 14);
}

TEST(Uint32ToString, LargestValueFitsElevenBytesExactly) {
  std::vector<char> buffer(11, 'x');
  char* first = qro_base::uint32ToString(4294967295u, buffer.data(), 11);
  EXPECT_EQ(first, buffer.data());
  EXPECT_STREQ(first, "4294967295");
}

TEST(Uint32ToString, TooSmallOrNullBufferIsLeftAlone) {
  char buffer[4] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(qro_base::uint32ToString(1234, buffer, 4), nullptr);
  EXPECT_EQ(std::string(buffer, 4), "abcd");
  EXPECT_EQ(qro_base::uint32ToString(1, buffer, 0), nullptr);
  EXPECT_EQ(qro_base::uint32ToString(1, buffer, -5), nullptr);
  EXPECT_EQ(qro_base::uint32ToString(1, nullptr, 10), nullptr);
  EXPECT_STREQ(qro_base::uint32ToString(7, buffer, 2), "7");
}

// ---------------------------------------------------------------------------

TEST(AtoiUtf16, Examples) {
  EXPECT_EQ(qro_base::atoi_utf16(u16("  -42abc").c_str()), -42);
  EXPECT_EQ(qro_base::atoi_utf16(u16("+7").c_str()), 7);
  EXPECT_EQ(qro_base::atoi_utf16(u16("abc").c_str()), 0);
  EXPECT_EQ(qro_base::atoi_utf16(u16("\t\t 19 5").c_str()), 19);
  EXPECT_EQ(qro_base::atoi_utf16(u16("").c_str()), 0);
  EXPECT_EQ(qro_base::atoi_utf16(u16("-").c_str()), 0);
  EXPECT_EQ(qro_base::atoi_utf16(u16("+-3").c_str()), 0);
  EXPECT_EQ(qro_base::atoi_utf16(u16("\n5").c_str()), 0);  // only spaces and tabs are blanks
  const unsigned short fullwidth[] = {'1', 0xFF12, '3', 0};  // only ASCII digits count
  EXPECT_EQ(qro_base::atoi_utf16(fullwidth), 1);
  EXPECT_EQ(qro_base::atoi_utf16(nullptr), 0);
  EXPECT_EQ(qro_base::atoi_utf16_2(nullptr, 10), 0);
}

TEST(AtoiUtf16, WrapsAroundAtThirtyTwoBits) {
  EXPECT_EQ(qro_base::atoi_utf16(u16("2147483647").c_str()), INT_MAX);
  EXPECT_EQ(qro_base::atoi_utf16(u16("-2147483648").c_str()), INT_MIN);
  EXPECT_EQ(qro_base::atoi_utf16(u16("2147483648").c_str()), INT_MIN);
  EXPECT_EQ(qro_base::atoi_utf16(u16("4294967295").c_str()), -1);
  EXPECT_EQ(qro_base::atoi_utf16(u16("4294967296").c_str()), 0);
  EXPECT_EQ(qro_base::atoi_utf16(u16("99999999999999999999").c_str()), 1661992959);
}

TEST(AtoiUtf16, LengthCountsFromTheStartOfTheText) {
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("  123").c_str(), 4), 12);
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("-45").c_str(), 1), 0);
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("-45").c_str(), 2), -4);
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("123").c_str(), 0), 0);
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("123").c_str(), 0xFFFFFFFFu), 123);
}

TEST(AtoiUtf16, StopsAtTheZeroUnitWithinTheLength) {
  const unsigned short text[] = {'1', '2', 0, '3', '4'};
  EXPECT_EQ(qro_base::atoi_utf16_2(text, 5), 12);
}

TEST(AtoiUtf16, ReadsNoUnitBeyondTheLength) {
  // An exactly sized heap array: reading past it would trip the sanitizer.
  std::vector<unsigned short> digits(4, '9');
  EXPECT_EQ(qro_base::atoi_utf16_2(digits.data(), 4), 9999);
  std::vector<unsigned short> blanks(3, ' ');
  EXPECT_EQ(qro_base::atoi_utf16_2(blanks.data(), 3), 0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(blanks.data(), 3), 0.0);
  std::vector<unsigned short> number = {'-', '1', '.', '5'};
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(number.data(), 4), -1.5);
}

// ---------------------------------------------------------------------------

TEST(AtofUtf16, Examples) {
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16("3.25").c_str()), 3.25);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16("-0.5").c_str()), -0.5);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16(".5").c_str()), 0.5);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16("1e3").c_str()), 1.0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16(" \t+12.125xyz").c_str()), 12.125);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16("7.").c_str()), 7.0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16("1.2.3").c_str()), 1.2);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16(".").c_str()), 0.0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16("abc").c_str()), 0.0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(nullptr), 0.0);
}

TEST(AtofUtf16, LengthLimit) {
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(u16("3.25").c_str(), 3), 3.2);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(u16("3.25").c_str(), 2), 3.0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(u16("  -8").c_str(), 3), 0.0);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(nullptr, 3), 0.0);
}

TEST(AtofUtf16, HugeDigitRunsOverflowToInfinity) {
  u16string text = u16("1");
  text.append(400, '0');
  EXPECT_TRUE(std::isinf(qro_base::atof_utf16(text.c_str())));
  u16string fraction = u16("0.");
  fraction.append(400, '0');
  fraction.push_back('1');
  EXPECT_EQ(qro_base::atof_utf16(fraction.c_str()), 0.0);
}

// ---------------------------------------------------------------------------

TEST(IntegerToArray, Examples) {
  char buffer[12];
  EXPECT_STREQ(qro_base::IntegerToArray(0, buffer), "0");
  EXPECT_STREQ(qro_base::IntegerToArray(-305, buffer), "-305");
  EXPECT_STREQ(qro_base::IntegerToArray(7, buffer), "7");
  EXPECT_EQ(qro_base::IntegerToArray(1, buffer), buffer);
  unsigned short wide[12];
  EXPECT_EQ(narrow(qro_base::IntegerToArray16(-305, wide)), "-305");
  EXPECT_EQ(narrow(qro_base::IntegerToArray16(0, wide)), "0");
}

TEST(IntegerToArray, ExtremesFitTheDocumentedBuffers) {
  std::vector<char> narrow12(12);
  EXPECT_STREQ(qro_base::IntegerToArray(INT_MIN, narrow12.data()), "-2147483648");
  EXPECT_STREQ(qro_base::IntegerToArray(INT_MAX, narrow12.data()), "2147483647");
  std::vector<unsigned short> wide12(12);
  EXPECT_EQ(narrow(qro_base::IntegerToArray16(INT_MIN, wide12.data())), "-2147483648");

  std::vector<char> narrow21(21);
  EXPECT_STREQ(qro_base::Int64ToArray(LLONG_MIN, narrow21.data()), "-9223372036854775808");
  EXPECT_STREQ(qro_base::Int64ToArray(LLONG_MAX, narrow21.data()), "9223372036854775807");
  EXPECT_STREQ(qro_base::Int64ToArray(0, narrow21.data()), "0");
  EXPECT_STREQ(qro_base::Int64ToArray(-1, narrow21.data()), "-1");
  std::vector<unsigned short> wide21(21);
  EXPECT_EQ(narrow(qro_base::Int64ToArray16(LLONG_MIN, wide21.data())), "-9223372036854775808");
  EXPECT_EQ(narrow(qro_base::Int64ToArray16(1234567890123LL, wide21.data())), "1234567890123");
}

TEST(IntegerToArray, AgreesWithTheCLibrary) {
  std::mt19937_64 random(12345);
  char ours[21];
  char theirs[32];
  for (int i = 0; i < 2000; ++i) {
    long long value = static_cast<long long>(random()) >> (random() % 63);
    std::snprintf(theirs, sizeof theirs, "%lld", value);
    EXPECT_STREQ(qro_base::Int64ToArray(value, ours), theirs);
    int small = static_cast<int>(value);
    std::snprintf(theirs, sizeof theirs, "%d", small);
    EXPECT_STREQ(qro_base::IntegerToArray(small, ours), theirs);
  }
}

TEST(IntegerToArray, NullBufferIsReturned) {
  EXPECT_EQ(qro_base::IntegerToArray(5, nullptr), nullptr);
  EXPECT_EQ(qro_base::IntegerToArray16(5, nullptr), nullptr);
  EXPECT_EQ(qro_base::Int64ToArray(5, nullptr), nullptr);
  EXPECT_EQ(qro_base::Int64ToArray16(5, nullptr), nullptr);
  EXPECT_EQ(qro_base::FloatToArray(5.0, 2, static_cast<char*>(nullptr), false), nullptr);
}

// ---------------------------------------------------------------------------

std::string floatText(double value, unsigned digits, bool fixed) {
  std::vector<char> buffer(330 + digits);
  qro_base::FloatToArray(value, digits, buffer.data(), fixed);
  return buffer.data();
}

TEST(FloatToArray, FractionStopsWhenNothingRemains) {
  EXPECT_EQ(floatText(3.25, 2, false), "3.25");
  EXPECT_EQ(floatText(3.25, 6, false), "3.25");
  EXPECT_EQ(floatText(-0.5, 1, false), "-0.5");
  EXPECT_EQ(floatText(123456.789, 10, false), "123456.789");
  EXPECT_EQ(floatText(42.0, 3, false), "42");
  EXPECT_EQ(floatText(0.0, 3, false), "0");
  EXPECT_EQ(floatText(-7.0, 0, false), "-7");
}

TEST(FloatToArray, FixedPadsWithZeros) {
  EXPECT_EQ(floatText(2.5, 3, true), "2.500");
  EXPECT_EQ(floatText(42.0, 2, true), "42.00");
  EXPECT_EQ(floatText(0.0, 3, true), "0.000");
  EXPECT_EQ(floatText(2.5, 0, true), "3");
  // Padding stops at 17 significant digits.
  EXPECT_EQ(floatText(1.5, 20, true), "1.5000000000000000");
}

TEST(FloatToArray, LastDigitIsRoundedHalfAwayFromZero) {
  EXPECT_EQ(floatText(0.125, 2, false), "0.13");
  EXPECT_EQ(floatText(-0.125, 2, false), "-0.13");
  EXPECT_EQ(floatText(2.675, 2, false), "2.67");  // 2.67499999... in binary
  EXPECT_EQ(floatText(2.5, 0, false), "3");
  EXPECT_EQ(floatText(-2.5, 0, false), "-3");
  EXPECT_EQ(floatText(2.4999, 0, false), "2");
  EXPECT_EQ(floatText(9.996, 2, false), "10");
  EXPECT_EQ(floatText(9.996, 2, true), "10.00");
  EXPECT_EQ(floatText(-99.95, 1, false), "-100");
  EXPECT_EQ(floatText(1.001, 2, false), "1");
  EXPECT_EQ(floatText(1.001, 2, true), "1.00");
}

TEST(FloatToArray, ZeroResultHasNoSign) {
  EXPECT_EQ(floatText(-0.001, 2, false), "0");
  EXPECT_EQ(floatText(-0.001, 2, true), "0.00");
  EXPECT_EQ(floatText(-0.0, 2, true), "0.00");
  EXPECT_EQ(floatText(-0.4, 0, false), "0");
  EXPECT_EQ(floatText(-0.005, 2, false), "-0.01");
}

TEST(FloatToArray, SeventeenSignificantDigits) {
  EXPECT_EQ(floatText(0.1 + 0.2, 20, false), "0.30000000000000004");
  EXPECT_EQ(floatText(1.0 / 3.0, 30, false), "0.33333333333333331");
  EXPECT_EQ(floatText(2.0 / 3.0, 30, false), "0.66666666666666663");
  EXPECT_EQ(floatText(0.1, 30, false), "0.10000000000000001");
  EXPECT_EQ(floatText(1e-5, 10, false), "0.00001");
  EXPECT_EQ(floatText(1e-20, 30, false), "0.00000000000000000001");
  EXPECT_EQ(floatText(1000000000000000.25, 5, false), "1000000000000000.3");
}

TEST(FloatToArray, LargeIntegerPartsAreExact) {
  char expected[400];
  for (double value : {1e20, 1e23, 18446744073709551616.0, std::ldexp(1.0, 100), -1e300, DBL_MAX}) {
    std::snprintf(expected, sizeof expected, "%.0f", value);
    EXPECT_EQ(floatText(value, 3, false), expected);
  }
}

TEST(FloatToArray, TiniestValuesFitTheDocumentedBuffer) {
  std::string text = floatText(-DBL_MIN, 400, false);
  EXPECT_EQ(text.substr(0, 3), "-0.");
  EXPECT_EQ(text.size(), 3u + 307u + 17u);  // 307 zeros, 17 digits
  EXPECT_EQ(text.substr(310), "22250738585072014");
  // 4 + fractionDigits + integer digits units are enough.
  std::vector<char> exact(4 + 1 + 2);
  EXPECT_STREQ(qro_base::FloatToArray(-9.996, 2, exact.data(), true), "-10.00");
}

TEST(FloatToArray, NonFiniteValues) {
  EXPECT_EQ(floatText(NAN, 2, false), "nan");
  EXPECT_EQ(floatText(INFINITY, 2, true), "inf");
  EXPECT_EQ(floatText(-INFINITY, 2, false), "-inf");
}

TEST(FloatToArray, AgreesWithTheCLibraryAwayFromTies) {
  std::mt19937_64 random(2024);
  std::uniform_real_distribution<double> magnitude(0.0, 7.0);
  char theirs[128];
  char tail[160];
  for (int i = 0; i < 3000; ++i) {
    double value = std::pow(10.0, magnitude(random)) * (random() % 2 ? 1 : -1);
    unsigned digits = static_cast<unsigned>(random() % 10);
    // Skip the rare values that lie on a rounding tie: the C library breaks
    // those to even.
    std::snprintf(tail, sizeof tail, "%.*f", digits + 12, value);
    std::string rest(tail + std::strlen(tail) - 12);
    if (rest == "500000000000") continue;
    std::snprintf(theirs, sizeof theirs, "%.*f", digits, value);
    EXPECT_EQ(floatText(value, digits, true), theirs) << value << " " << digits;
  }
}

TEST(FloatToArray, WideFormMatchesTheNarrowOne) {
  for (double value : {0.0, -0.5, 3.25, 2.675, 9.996, 1e23, -1e-7}) {
    for (unsigned digits : {0u, 2u, 9u}) {
      for (bool fixed : {false, true}) {
        std::vector<unsigned short> wide(340);
        qro_base::FloatToArray(value, digits, wide.data(), fixed);
        EXPECT_EQ(narrow(wide.data()), floatText(value, digits, fixed));
      }
    }
  }
}

// ---------------------------------------------------------------------------

TEST(CaseConversion, ToUpperCaseMapsFlaggedUnits) {
  u16string in = {'a', 'Z', '1', 0x00FF, 0x00B5, 0x00DF, 0x0561, 0x1F80, 0x4E00, 0xFF41};
  u16string out = u16("garbage");
  qro_base::toUpperCase(in, out);
  u16string expected = {'A', 'Z', '1', 0x0178, 0x039C, 0x00DF, 0x0531, 0x1F88, 0x4E00, 0xFF21};
  EXPECT_EQ(out, expected);
}

TEST(CaseConversion, ToLowerCaseMapsFlaggedUnits) {
  u16string in = {'A', 'z', 0x0130, 0x212A, 0x10A0, 0x0178, 0x1F88, 0xFF21};
  u16string out;
  qro_base::toLowerCase(in, out);
  // U+1F88 is titlecase: no flag, no change.
  u16string expected = {'a', 'z', 'i', 'k', 0x10A0, 0x00FF, 0x1F88, 0xFF41};
  EXPECT_EQ(out, expected);
}

TEST(CaseConversion, FlaggedUnitsOutsideTheTablesStay) {
  // Glagolitic has case partners but lies outside the tables' ranges.
  u16string in = {0x2C30, 0x2C00};
  u16string out;
  qro_base::toUpperCase(in, out);
  EXPECT_EQ(out, in);
  qro_base::toLowerCase(in, out);
  EXPECT_EQ(out, in);
}

TEST(CaseConversion, SurrogatesAreCopiedUnitByUnit) {
  // U+10428 DESERET SMALL LETTER LONG I: not combined, not mapped.
  u16string in = {0xD801, 0xDC28, 'b', 0xDC00, 0xD800};
  u16string out;
  qro_base::toUpperCase(in, out);
  EXPECT_EQ(out, (u16string{0xD801, 0xDC28, 'B', 0xDC00, 0xD800}));
}

TEST(CaseConversion, InPlaceAndEmpty) {
  u16string text = u16("Hello World");
  qro_base::toUpperCase(text, text);
  EXPECT_EQ(text, u16("HELLO WORLD"));
  qro_base::toLowerCase(text, text);
  EXPECT_EQ(text, u16("hello world"));
  u16string empty;
  u16string out = u16("x");
  qro_base::toLowerCase(empty, out);
  EXPECT_TRUE(out.empty());
}

// ---------------------------------------------------------------------------

TEST(Utf16ToUtf8, EncodesAndJoinsSurrogatePairs) {
  std::string out = "stale";
  qro_base::utf16ToUtf8(u16string{'A', 0x00E9, 0x4E00, 0xD83D, 0xDE00}, out);
  EXPECT_EQ(out, "A\xC3\xA9\xE4\xB8\x80\xF0\x9F\x98\x80");
  qro_base::utf16ToUtf8(u16string{0xDBFF, 0xDFFF}, out);
  EXPECT_EQ(out, "\xF4\x8F\xBF\xBF");
  qro_base::utf16ToUtf8(u16string{0x07FF, 0x0800, 0xFFFF}, out);
  EXPECT_EQ(out, "\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
}

TEST(Utf16ToUtf8, LoneSurrogatesBecomeReplacementCharacters) {
  std::string out;
  qro_base::utf16ToUtf8(u16string{0xDC00, 'x', 0xD800}, out);
  EXPECT_EQ(out, "\xEF\xBF\xBD" "x" "\xEF\xBF\xBD");
  qro_base::utf16ToUtf8(u16string{0xD800, 0xD800, 0xDC00}, out);
  EXPECT_EQ(out, "\xEF\xBF\xBD\xF0\x90\x80\x80");
}

TEST(PrintStr16, LeavesNoTrace) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  qro_base::printStr16(u16string{'o', 'k', 0xD800});
  qro_base::printStr16(u16string());
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
