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

std::string floatText(double value, unsigned digits, bool fixed) {
  std::vector<char> buffer(330 + digits);
  qro_base::FloatToArray(value, digits, buffer.data(), fixed);
  return buffer.data();
}

TEST(Utf8ByteCount, EveryByteByItsLeadingOnes) {
  for (int b = 0; b < 256; ++b) {
    int ones = 0;
    while (ones < 8 && (b & (0x80 >> ones))) ++ones;
    // 0x7F, continuation bytes, 0xFE and 0xFF give 7.
    int expected = b <= 0x7E ? 1 : (ones >= 2 && ones <= 6) ? ones : 7;
    EXPECT_EQ(qro_base::getUtf8CharByteCount(static_cast<unsigned char>(b)), expected) << b;
  }
}

TEST(Uint32ToString, DigitsEndAtTheLastByteAndSmallBuffersAreLeftAlone) {
  std::vector<char> exact(11, 'x');
  EXPECT_EQ(qro_base::uint32ToString(4294967295u, exact.data(), 11), exact.data());
  EXPECT_STREQ(exact.data(), "4294967295");
  char buffer[4] = {'a', 'b', 'c', 'd'};
  EXPECT_STREQ(qro_base::uint32ToString(7, buffer, 4), "7");
  EXPECT_EQ(buffer[1], 'b');
  EXPECT_EQ(qro_base::uint32ToString(1234, buffer, 4), nullptr);
  EXPECT_EQ(qro_base::uint32ToString(1, nullptr, 10), nullptr);
}

TEST(AtoiUtf16, Table) {
  const struct {
    const char* text;
    int value;
  } cases[] = {
      {"  -42abc", -42}, {"\t\t 19 5", 19}, {"+-3", 0}, {"-", 0},
      {"\n5", 0},  // only spaces and tabs are blanks
      // Wraps around at 32 bits.
      {"-2147483648", INT_MIN}, {"2147483648", INT_MIN}, {"4294967296", 0},
      {"99999999999999999999", 1661992959},
  };
  for (const auto& c : cases) EXPECT_EQ(qro_base::atoi_utf16(u16(c.text).c_str()), c.value) << c.text;
  const unsigned short fullwidth[] = {'1', 0xFF12, '3', 0};  // only ASCII digits count
  EXPECT_EQ(qro_base::atoi_utf16(fullwidth), 1);
  EXPECT_EQ(qro_base::atoi_utf16(nullptr), 0);
}

TEST(AtoiUtf16, LengthCountsFromTheStartAndNothingBeyondIsRead) {
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("  123").c_str(), 4), 12);
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("-45").c_str(), 2), -4);
  EXPECT_EQ(qro_base::atoi_utf16_2(u16("123").c_str(), 0xFFFFFFFFu), 123);
  const unsigned short zero[] = {'1', '2', 0, '3', '4'};
  EXPECT_EQ(qro_base::atoi_utf16_2(zero, 5), 12);
  // Exactly sized heap arrays: reading past them would trip the sanitizer.
  std::vector<unsigned short> digits(4, '9');
  EXPECT_EQ(qro_base::atoi_utf16_2(digits.data(), 4), 9999);
  std::vector<unsigned short> blanks(3, ' ');
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(blanks.data(), 3), 0.0);
  std::vector<unsigned short> number = {'-', '1', '.', '5'};
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(number.data(), 4), -1.5);
}

TEST(AtofUtf16, Table) {
  const struct {
    const char* text;
    double value;
  } cases[] = {
      {" \t+12.125xyz", 12.125}, {".5", 0.5}, {"7.", 7.0}, {"1.2.3", 1.2}, {".", 0.0},
      {"1e3", 1.0},  // no exponent notation
  };
  for (const auto& c : cases) {
    EXPECT_DOUBLE_EQ(qro_base::atof_utf16(u16(c.text).c_str()), c.value) << c.text;
  }
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16_2(u16("3.25").c_str(), 3), 3.2);
  EXPECT_DOUBLE_EQ(qro_base::atof_utf16(nullptr), 0.0);
  u16string huge = u16("1");
  huge.append(400, '0');
  EXPECT_TRUE(std::isinf(qro_base::atof_utf16(huge.c_str())));
}

TEST(IntegerToArray, AgreesWithTheCLibraryAndExtremesFitTheDocumentedBuffers) {
  std::vector<char> narrow12(12);
  EXPECT_STREQ(qro_base::IntegerToArray(INT_MIN, narrow12.data()), "-2147483648");
  std::vector<unsigned short> wide21(21);
  EXPECT_EQ(narrow(qro_base::Int64ToArray16(LLONG_MIN, wide21.data())), "-9223372036854775808");
  EXPECT_EQ(qro_base::IntegerToArray(5, nullptr), nullptr);
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

// The documented rules: trailing zeros dropped or padded, the last digit
// rounded half away from zero, a sign on every negative value, 17 significant digits.
TEST(FloatToArray, Table) {
  const struct {
    double value;
    unsigned digits;
    bool fixed;
    const char* text;
  } cases[] = {
      {3.25, 6, false, "3.25"},
      {42.0, 3, false, "42"},
      {2.5, 3, true, "2.500"},
      {2.5, 0, true, "3"},
      {1.5, 20, true, "1.5000000000000000"},
      {0.125, 2, false, "0.13"},
      {-0.125, 2, false, "-0.13"},
      {2.675, 2, false, "2.67"},  // 2.67499999... in binary
      {-2.5, 0, false, "-3"},
      {9.996, 2, false, "10"},
      {9.996, 2, true, "10.00"},
      {-99.95, 1, false, "-100"},
      {1.001, 2, true, "1.00"},
      {-0.001, 2, false, "-0"},  // a negative value keeps its sign
      {-0.25, 0, false, "-0"},
      {-0.0, 2, true, "0.00"},
      {-0.005, 2, false, "-0.01"},
      {0.1 + 0.2, 20, false, "0.30000000000000004"},
      {1.0 / 3.0, 30, false, "0.33333333333333331"},
      {1e-20, 30, false, "0.00000000000000000001"},
      {1000000000000000.25, 5, false, "1000000000000000.3"},
      {NAN, 2, false, "nan"},
      {-INFINITY, 2, false, "-inf"},
  };
  std::vector<unsigned short> wide(340);
  for (const auto& c : cases) {
    EXPECT_EQ(floatText(c.value, c.digits, c.fixed), c.text) << c.value << " " << c.digits;
    EXPECT_EQ(narrow(qro_base::FloatToArray(c.value, c.digits, wide.data(), c.fixed)), c.text);
  }
}

TEST(FloatToArray, ExtremeMagnitudes) {
  char expected[400];
  for (double value : {1e23, std::ldexp(1.0, 100), -1e300, DBL_MAX}) {
    std::snprintf(expected, sizeof expected, "%.0f", value);
    EXPECT_EQ(floatText(value, 3, false), expected);
  }
  std::string text = floatText(-DBL_MIN, 400, false);
  EXPECT_EQ(text.size(), 3u + 307u + 17u);  // "-0.", 307 zeros, 17 digits
  EXPECT_EQ(text.substr(310), "22250738585072014");
  // 4 + fractionDigits + integer digits units are enough.
  std::vector<char> exact(4 + 1 + 2);
  EXPECT_STREQ(qro_base::FloatToArray(-9.996, 2, exact.data(), true), "-10.00");
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

// Unit by unit, flagged units only: titlecase U+1F88 and Glagolitic (flagged
// but outside the tables) stay; surrogates are copied; in place works.
TEST(CaseConversion, MapsFlaggedUnitsOnly) {
  u16string out = u16("garbage");
  qro_base::toLowerCase(u16string{'A', 0x212A, 0x1F88, 0x2C00, 0xD801, 0xDC00}, out);
  EXPECT_EQ(out, (u16string{'a', 'k', 0x1F88, 0x2C00, 0xD801, 0xDC00}));
  u16string text = u16("Hello");
  qro_base::toUpperCase(text, text);
  EXPECT_EQ(text, u16("HELLO"));
}

TEST(Utf16ToUtf8, PairsJoinAndLoneSurrogatesBecomeReplacementCharacters) {
  std::string out = "stale";
  qro_base::utf16ToUtf8(u16string{'A', 0x07FF, 0x0800, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}, out);
  EXPECT_EQ(out, "A\xDF\xBF\xE0\xA0\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF");
  qro_base::utf16ToUtf8(u16string{0xDC00, 'x', 0xD800, 0xD800, 0xDC00}, out);
  EXPECT_EQ(out, "\xEF\xBF\xBD" "x" "\xEF\xBF\xBD\xF0\x90\x80\x80");

  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  qro_base::printStr16(u16string{'o', 'k', 0xD800});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
