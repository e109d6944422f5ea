#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "base/TextConversion.h"

namespace {

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

TEST(FloatToArray, TheDocumentedBufferIsEnough) {
  std::vector<char> exact(4 + 1 + 2);  // 4 + fraction digits + integer digits
  EXPECT_STREQ(qro_base::FloatToArray(-9.996, 2, exact.data(), true), "-10.00");
}

}  // namespace
