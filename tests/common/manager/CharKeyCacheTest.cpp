// The per-character answer cache: the first value of a key stays, whatever
// kind of key it is (dense basic-plane keys, negative or huge font indexes,
// supplementary code points) and whatever its value (also one with the bit
// pattern of an empty slot).

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "common/manager/CharKeyCache.h"

namespace {

using qro_common::CharKey;
using qro_common::CharKeyCache;

float floatOfBits(std::uint32_t bits) {
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

TEST(CharKeyCache, FirstValueOfEveryKindOfKeyStays) {
  const int hugeFont = CharKeyCache<float>::kMaxDenseFont;
  const CharKey keys[] = {
      {0x41, 0, false, false},  {0x41, 0, false, true},         {0x41, 0, true, false},
      {0x41, 0, true, true},    {0x41, 1, false, false},        {0xAC00, 3, false, false},
      {0xFFFF, 7, true, false}, {0x10000, 0, false, false},     {0x1F600, 2, true, true},
      {0x41, -1, false, false}, {0x41, hugeFont, false, false}, {0xFFFFFFFFu, -5, true, true},
  };
  // The slot pattern of an empty entry, as a float and as an int.
  const float emptyPattern = floatOfBits(0x7FBADBADu);
  CharKeyCache<float> ratios;
  CharKeyCache<int> advances;
  int n = 0;
  for (const CharKey& key : keys) {
    ++n;
    const float first = n % 4 == 0 ? emptyPattern : 0.25f * n;
    const int firstInt = n % 4 == 0 ? 0x7FBADBAD : -n;
    float ratio = 0;
    EXPECT_FALSE(ratios.Find(key, ratio)) << n;
    EXPECT_TRUE(ratios.Insert(key, first)) << n;
    EXPECT_FALSE(ratios.Insert(key, 99.0f)) << n;
    EXPECT_TRUE(advances.Insert(key, firstInt)) << n;
    EXPECT_FALSE(advances.Insert(key, 99)) << n;
    // A second value with the other representation is refused as well.
    EXPECT_FALSE(ratios.Insert(key, n % 4 == 0 ? 1.0f : emptyPattern)) << n;
    EXPECT_FALSE(advances.Insert(key, n % 4 == 0 ? 1 : 0x7FBADBAD)) << n;
    ASSERT_EQ(ratios.Size(), static_cast<std::size_t>(n));
    ASSERT_EQ(advances.Size(), static_cast<std::size_t>(n));
  }
  n = 0;
  for (const CharKey& key : keys) {
    ++n;
    float ratio = 0;
    int advance = 0;
    ASSERT_TRUE(ratios.Find(key, ratio)) << n;
    ASSERT_TRUE(advances.Find(key, advance)) << n;
    if (n % 4 == 0) {
      EXPECT_TRUE(std::isnan(ratio)) << n;
      EXPECT_EQ(advance, 0x7FBADBAD) << n;
    } else {
      EXPECT_EQ(ratio, 0.25f * n) << n;
      EXPECT_EQ(advance, -n) << n;
    }
  }
  // Neighbours of cached keys are not cached.
  float ratio = 0;
  for (const CharKey& other : {CharKey{0x42, 0, false, false}, CharKey{0x41, 2, false, false},
                               CharKey{0xAC01, 3, false, false}, CharKey{0x41, -2, false, false},
                               CharKey{0x10001, 0, false, false}}) {
    EXPECT_FALSE(ratios.Find(other, ratio)) << other.code << " " << other.fontIndex;
  }
  ratios.Clear();
  EXPECT_EQ(ratios.Size(), 0u);
  EXPECT_FALSE(ratios.Find(keys[0], ratio));
}

}  // namespace
