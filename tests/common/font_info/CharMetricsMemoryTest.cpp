// Memory of loaded advance tables: a phone keeps dozens of faces loaded, and
// a CJK face maps tens of thousands of characters.

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdio>
#include <memory>
#include <string>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/TempDir.h"

namespace {

using qro_common::CharMetricsInfo;
using qro_common::FontInfo;
using qro_common::FontInfoSerializer;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kHeapIsInstrumented = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kHeapIsInstrumented = true;
#else
constexpr bool kHeapIsInstrumented = false;
#endif
#else
constexpr bool kHeapIsInstrumented = false;
#endif

size_t heapInUse() { return mallinfo2().uordblks; }

// Heap bytes per mapped character of the metrics of `info` once written to
// its data file and read back, as a face is loaded on first use.
double bytesPerMappedChar(CharMetricsInfo* metrics, int mappedCount) {
  kelfont_test::TempDir dir;
  FontInfoSerializer serializer(dir.path() + "/");
  FontInfo written;
  written.SetInfoIndex(0);
  written.SetCharMetricsInfo(metrics);
  EXPECT_TRUE(serializer.WriteData(written));
  written.SetCharMetricsInfo(nullptr);

  FontInfo loaded;
  loaded.SetInfoIndex(0);
  size_t before = heapInUse();
  EXPECT_TRUE(serializer.ReadData(loaded));
  size_t after = heapInUse();
  EXPECT_NE(loaded.GetCharMetricsInfo(), nullptr);
  return static_cast<double>(after - before) / mappedCount;
}

TEST(CharMetricsMemory, AdvancesAreTwoBytesByValue) {
  EXPECT_EQ(sizeof(qro_common::CharMetrics), 2u);
}

TEST(CharMetricsMemory, HangulSyllablesTakeAtMostThreeBytesEach) {
  if (kHeapIsInstrumented) GTEST_SKIP() << "the sanitizer's heap is not measured";
  auto* metrics = new CharMetricsInfo();
  int mapped = 0;
  for (unsigned code = 0xAC00; code <= 0xD7A3; ++code) {
    auto advance = static_cast<unsigned short>(code % 7 + 900);
    mapped += font_info_test::addAdvance(*metrics, code, advance);
  }
  ASSERT_EQ(mapped, 11172);
  double perChar = bytesPerMappedChar(metrics, mapped);
  std::printf("Hangul syllables: %.3f bytes per mapped character\n", perChar);
  RecordProperty("bytes_per_char_hangul", std::to_string(perChar));
  EXPECT_LE(perChar, 3.0);
}

TEST(CharMetricsMemory, CjkSizedFaceTakesAtMostThreeBytesEach) {
  if (kHeapIsInstrumented) GTEST_SKIP() << "the sanitizer's heap is not measured";
  auto* metrics = new CharMetricsInfo();
  int mapped = 0;
  auto add = [&](unsigned first, unsigned last) {
    for (unsigned code = first; code <= last; ++code) {
      auto advance = static_cast<unsigned short>(code % 5 + 1000);
      mapped += font_info_test::addAdvance(*metrics, code, advance);
    }
  };
  add(0x20, 0x7E);      // ASCII
  add(0x3000, 0x303F);  // CJK punctuation
  add(0x3041, 0x3096);  // Hiragana
  add(0x30A1, 0x30FA);  // Katakana
  add(0x4E00, 0x9FA5);  // CJK unified ideographs
  add(0xAC00, 0xD7A3);  // Hangul syllables
  add(0xFF01, 0xFF5E);  // full-width forms
  double perChar = bytesPerMappedChar(metrics, mapped);
  std::printf("CJK face, %d characters: %.3f bytes per mapped character\n", mapped, perChar);
  RecordProperty("bytes_per_char_cjk", std::to_string(perChar));
  EXPECT_LE(perChar, 3.0);
}

}  // namespace
