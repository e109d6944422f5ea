// The per-character answer cache: the first value of a key stays, whatever
// kind of key it is (dense basic-plane keys, negative or huge font indexes,
// supplementary code points) and whatever its value (also one with the bit
// pattern of an empty slot).

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

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

// Pointers (64-bit values) per font and style (code 0) and per script: the
// other two shapes of the cache.
TEST(CharKeyCache, WideValuesAndNarrowCodes) {
  int a = 0, b = 0;
  CharKeyCache<int*, 0> perFont;
  CharKeyCache<int*, 8> perScript;
  EXPECT_TRUE(perFont.Insert({0, 5, true, false}, &a));
  EXPECT_TRUE(perFont.Insert({0, 5, false, false}, nullptr));
  EXPECT_TRUE(perFont.Insert({1, 5, false, false}, &b));  // beyond the dense codes
  EXPECT_TRUE(perScript.Insert({255, 5, false, true}, &b));
  int* found = &b;
  EXPECT_TRUE(perFont.Find({0, 5, true, false}, found));
  EXPECT_EQ(found, &a);
  EXPECT_TRUE(perFont.Find({0, 5, false, false}, found));
  EXPECT_EQ(found, nullptr);
  EXPECT_TRUE(perFont.Find({1, 5, false, false}, found));
  EXPECT_EQ(found, &b);
  EXPECT_FALSE(perScript.Find({254, 5, false, true}, found));
  EXPECT_TRUE(perScript.Find({255, 5, false, true}, found));
  EXPECT_EQ(found, &b);
}

// Readers look keys up while writers add them, over font indexes that make
// the table of font styles grow several times (run under ThreadSanitizer):
// a reader finds either nothing or the value of the key.
TEST(CharKeyCacheConcurrency, ReadersSeeNothingOrTheValueWhileTheTableGrows) {
  CharKeyCache<int> cache;
  auto valueOf = [](const CharKey& key) {
    return static_cast<int>(key.code * 7 + key.fontIndex * 3 + key.bold);
  };
  auto keyOf = [](int i) {
    const unsigned codes[] = {0x41, 0xAC00, 0x1F600};
    return CharKey{codes[(i / 1500) % 3], i % 1500, i / 1500 == 3, false};
  };
  constexpr int kKeys = 6000;
  std::atomic<int> wrong{0}, found{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kKeys; ++i) {
        const CharKey key = keyOf((i + t * 997) % kKeys);
        int value = -1;
        if (cache.Find(key, value)) {
          ++found;
          if (value != valueOf(key)) ++wrong;
        } else if (t % 2 == 0) {
          cache.Insert(key, valueOf(key));
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_GT(found.load(), 0);
  EXPECT_EQ(cache.Size(), static_cast<std::size_t>(kKeys));
  for (int i = 0; i < kKeys; ++i) {
    int value = -1;
    ASSERT_TRUE(cache.Find(keyOf(i), value)) << i;
    EXPECT_EQ(value, valueOf(keyOf(i)));
  }
}

}  // namespace
