// Memory of loaded advance tables: a phone keeps dozens of faces loaded, and
// a CJK face maps tens of thousands of characters.

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

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

// Hangul syllables alone, and a CJK-sized face: at most three heap bytes per
// mapped character once loaded; the advances themselves are two bytes.
TEST(CharMetricsMemory, LoadedFacesTakeAtMostThreeBytesPerCharacter) {
  EXPECT_EQ(sizeof(qro_common::CharMetrics), 2u);
  if (kHeapIsInstrumented) GTEST_SKIP() << "the sanitizer's heap is not measured";
  // Blocks as (first, last, step); advances vary inside every block. The
  // third face maps one ideograph in four, as CJK fonts of one language do.
  struct Block {
    unsigned first;
    unsigned last;
    unsigned step;
  };
  const std::vector<Block> faces[] = {
      {{0xAC00, 0xD7A3, 1}},
      {{0x20, 0x7E, 1}, {0x3000, 0x303F, 1}, {0x3041, 0x3096, 1}, {0x30A1, 0x30FA, 1},
       {0x4E00, 0x9FA5, 1}, {0xAC00, 0xD7A3, 1}, {0xFF01, 0xFF5E, 1}},
      {{0x20, 0x7E, 1}, {0x4E00, 0x9FA5, 4}, {0xAC00, 0xD7A3, 1}},
  };
  for (const auto& blocks : faces) {
    auto* metrics = new CharMetricsInfo();
    int mapped = 0;
    for (const Block& block : blocks) {
      for (unsigned code = block.first; code <= block.last; code += block.step) {
        auto advance = static_cast<unsigned short>(code % 7 + 900);
        mapped += font_info_test::addAdvance(*metrics, code, advance);
      }
    }
    double perChar = bytesPerMappedChar(metrics, mapped);
    std::printf("%d characters: %.3f bytes per mapped character\n", mapped, perChar);
    EXPECT_LE(perChar, 3.0) << mapped;
  }
}

}  // namespace
