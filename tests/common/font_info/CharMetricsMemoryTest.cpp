// Memory of loaded advance tables: a phone keeps dozens of faces loaded, and
// a CJK face maps tens of thousands of characters.

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdio>
#include <sstream>
#include <string>

#include "base/MemoryInputStream.h"
#include "base/StringOutputStream.h"
#include "common/font_info/CharMetricsInfo.h"
#include "tests/common/font_info/TableBuilders.h"

namespace {

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

// Hangul syllables alone, and a CJK-sized face: at most three heap bytes per
// mapped character once written and read back, as a face is loaded on first
// use; the advances themselves are two bytes.
TEST(CharMetricsMemory, LoadedFacesTakeAtMostThreeBytesPerCharacter) {
  EXPECT_EQ(sizeof(qro_common::CharMetrics), 2u);
  if (kHeapIsInstrumented) GTEST_SKIP() << "the sanitizer's heap is not measured";
  // Blocks as FIRST-LAST[/STEP]; advances vary inside every block. The third
  // face maps one ideograph in four, as CJK fonts of one language do.
  for (const char* face :
       {"AC00-D7A3", "20-7E 3000-303F 3041-3096 30A1-30FA 4E00-9FA5 AC00-D7A3 FF01-FF5E",
        "20-7E 4E00-9FA5/4 AC00-D7A3"}) {
    std::string bytes;
    int mapped = 0;
    {
      qro_common::CharMetricsInfo written;
      std::istringstream blocks(face);
      for (std::string block; blocks >> block;) {
        unsigned first = 0, last = 0, step = 1;
        std::sscanf(block.c_str(), "%x-%x/%u", &first, &last, &step);
        for (unsigned code = first; code <= last; code += step) {
          auto advance = static_cast<unsigned short>(code % 7 + 900);
          mapped += font_info_test::addAdvance(written, code, advance);
        }
      }
      qro_base::StringOutputStream out(bytes);
      ASSERT_TRUE(written.Write(out));
    }
    qro_base::MemoryInputStream in(bytes.data(), static_cast<unsigned>(bytes.size()));
    qro_common::CharMetricsInfo loaded;
    const size_t before = mallinfo2().uordblks;
    ASSERT_TRUE(loaded.Read(in));
    const double perChar = static_cast<double>(mallinfo2().uordblks - before) / mapped;
    std::printf("%d characters: %.3f bytes per mapped character\n", mapped, perChar);
    EXPECT_LE(perChar, 3.0) << mapped;
  }
}

}  // namespace
