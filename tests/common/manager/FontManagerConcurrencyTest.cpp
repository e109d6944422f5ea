// Concurrent first-use loading of per-character data (run under
// ThreadSanitizer in CI).

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "common/font_info/CharMetrics.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

TEST(FontManagerConcurrencyTest, EightThreadsLoadThirtyFontsOnFirstUse) {
  ExpectedFace basic;
  ASSERT_TRUE(loadExpectedFace("basic.ttf", 0, &basic));
  TempDir storage;
  ManagerRig rig = start(storage.path() + "/", {});  // package fonts, nothing to scan
  constexpr int kFonts = 30;
  std::vector<int> fonts;
  for (int n = 0; n < kFonts; ++n) fonts.push_back(rig->GetFontIndex(packageFontName(n)));
  ASSERT_EQ(std::count(fonts.begin(), fonts.end(), -1), 0);

  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kFonts; ++i) {
        int font = fonts[(i + t * 7) % kFonts];  // each thread in another order
        for (const auto& entry : basic.chars) {
          const qro_common::CharMetrics* metrics =
              rig->GetCharMetrics(font, entry.first, false, false);
          bool visible = rig->IsVisibleChar(font, entry.first);
          if (metrics == nullptr || metrics->GetAdvance() != entry.second.advance || !visible) {
            ++wrong;
          }
        }
        if (rig->IsVisibleChar(font, 0x0E01)) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(rig->GetLoadedFontInfos().size(), size_t(kFonts));  // each loaded once
}

}  // namespace
}  // namespace kelfont_test
