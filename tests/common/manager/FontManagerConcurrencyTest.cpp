// Eight threads ask one manager everything at once, over more faces than
// stay loaded, while another thread keeps clearing the loaded data (run
// under ThreadSanitizer and AddressSanitizer in CI). Every answer must be
// the one a single thread gets from a manager of its own.

#include <gtest/gtest.h>

#include <atomic>

#include "common/registry/FontTable.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/Concurrently.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

// Every query of tests/data/manager_scripts.tsv's kinds on every font and
// style: characters, glyphs, scripts, kerning pairs of basic.ttf.
std::vector<std::string> allQueries(int fontCount, const ExpectedFace& basic) {
  std::vector<std::string> chars = {"32", "U+AC00", "U+E000", "U+E01", "U+1F600", "U+B6"};
  for (const auto& entry : basic.chars) {
    if (chars.size() < 20) chars.push_back(std::to_string(entry.first));
  }
  std::vector<std::string> queries;
  for (int font = -1; font < fontCount; ++font) {
    const std::string f = std::to_string(font);
    for (const char* style : {"", "i", "b", "bi"}) {
      for (const std::string& ch : chars) {
        for (const char* op : {"r,", "a,", "v,"})
          queries.push_back(op + f + "," + ch + "," + style);
      }
      for (const char* script : {"", "0", "56", "60", "255"}) {
        queries.push_back("s," + f + "," + style + "," + script);
      }
      for (const char* glyph : {"1", "3", "36"}) {
        queries.push_back("g," + f + "," + glyph + "," + style + ",0");
      }
      queries.push_back("O," + f + ",A," + style);
    }
    for (const std::string& ch : chars) queries.push_back("i," + f + "," + ch);
    for (const auto& pair : basic.kerning) {
      queries.push_back("k," + f + "," + std::to_string(pair.first.first) + "," +
                        std::to_string(pair.first.second));
    }
  }
  return queries;
}

TEST(FontManagerConcurrencyTest, EightThreadsAnswerAsOneWhileFacesAreDroppedAndReloaded) {
  const Scenario& scenario = Scenario::get();
  TempDir referenceStorage, storage;
  ManagerRig reference = start(referenceStorage.path() + "/", {scenario.dirA, scenario.dirB});
  const std::vector<std::string> queries =
      allQueries(reference->GetFontTable()->GetFontCount(), expectedFace("basic.ttf"));
  std::vector<std::string> expected;
  for (const std::string& q : queries) expected.push_back(ask(*reference.manager, q));

  ManagerRig rig = start(storage.path() + "/", {scenario.dirA, scenario.dirB});
  ASSERT_EQ(rig->GetFontTable()->GetFontCount(), reference->GetFontTable()->GetFontCount());
  ASSERT_GT(rig->GetFontTable()->GetFontInfoCount(),
            int(qro_common::FontManager::kMaxLoadedBeforeEviction) + 10);

  std::atomic<int> loadedKerning{0};
  auto same = [&](std::size_t i) {
    const std::string got = ask(*rig.manager, queries[i]);
    if (queries[i][0] != 'k') return got == expected[i];
    if (got == "0") return true;  // dropped again between loading and asking
    ++loadedKerning;
    return got == expected[i];
  };
  EXPECT_EQ(askedAtOnce(queries.size(), 1, same, [&] { rig->ClearCacheInfo(); }), 0);
  EXPECT_GT(loadedKerning.load(), 0);
  EXPECT_LE(rig->GetLoadedFontInfos().size(),
            qro_common::FontManager::kMaxLoadedBeforeEviction + 1);
  // With every reader gone, two collections free everything dropped.
  qro_base::DeferredDeleter& retired = rig->GetFontTable()->GetDeferredDeleter();
  retired.Collect();
  retired.Collect();
  EXPECT_EQ(retired.PendingCount(), 0u);
}

}  // namespace
}  // namespace kelfont_test
