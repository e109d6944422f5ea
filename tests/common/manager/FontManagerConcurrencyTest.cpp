// Eight threads ask one manager everything at once, over more faces than
// stay loaded, while another thread keeps clearing the loaded data (run
// under ThreadSanitizer and AddressSanitizer in CI). Every answer must be
// the one a single thread gets from a manager of its own.

#include <gtest/gtest.h>

#include <atomic>

#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/Concurrently.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

using Answer = std::vector<float>;

enum class Kind {
  kAdvance,
  kMetrics,
  kVisible,
  kConfirm,
  kGlyphAdvance,
  kSystemFont,
  kScriptFont,
  kKerning,
  kOutline
};

struct Query {
  Kind kind;
  int font;
  unsigned code;  // character, glyph index or script
  unsigned second;
  bool bold;
  bool italic;
};

float infoIndex(const qro_common::FontInfo* info) {
  return info == nullptr ? -1.0f : static_cast<float>(info->GetInfoIndex());
}

Answer ask(qro_common::FontManager& manager, const Query& q) {
  switch (q.kind) {
    case Kind::kAdvance:
      return {manager.GetCharAdvanceRatio(q.font, q.code, q.bold, q.italic)};
    case Kind::kMetrics: {
      // The metrics stay valid while the caller is in a read section.
      qro_base::DeferredDeleter::ReadSection section(manager.GetFontTable()->GetDeferredDeleter());
      const qro_common::CharMetrics* m = manager.GetCharMetrics(q.font, q.code, q.bold, q.italic);
      return {m == nullptr ? -1.0f : static_cast<float>(m->GetAdvance())};
    }
    case Kind::kVisible:
      return {manager.IsVisibleChar(q.font, q.code) ? 1.0f : 0.0f};
    case Kind::kConfirm: {
      int font = q.font;
      unsigned ch = q.code;
      bool substituted = manager.ConfirmVisibleChar(font, ch, q.bold, q.italic);
      return {static_cast<float>(font), static_cast<float>(ch), substituted ? 1.0f : 0.0f};
    }
    case Kind::kGlyphAdvance:
      return {manager.GetGlyphAdvanceRatio(q.font, static_cast<int>(q.second), q.code, q.bold,
                                           q.italic)};
    case Kind::kSystemFont:
      return {infoIndex(manager.ResolveSystemFontInfo(q.font, q.bold, q.italic))};
    case Kind::kScriptFont:
      return {infoIndex(
          manager.ResolveSystemFontInfo(q.font, static_cast<int>(q.code), q.bold, q.italic))};
    case Kind::kKerning:
      // Loads the face itself when it is not loaded.
      return {
          static_cast<float>(manager.GetKerningWidth(q.font, q.bold, q.italic, q.code, q.second))};
    case Kind::kOutline: {
      RecordingPath path;
      float x = 10.5f, y = 20.0f;
      const qro_common::FontInfo* info = manager.ResolveSystemFontInfo(q.font, q.bold, q.italic);
      path.out.push_back(static_cast<float>(manager.OutlineToPath(info, q.code, x, y, &path)));
      path.out.push_back(x);
      return path.out;
    }
  }
  return {};
}

std::vector<Query> allQueries(const qro_common::FontManager& manager, const ExpectedFace& basic) {
  std::vector<unsigned> chars = {0x20, 0xAC00, 0xE000, 0x0E01, 0x1F600, 0xB6};
  for (const auto& entry : basic.chars) {
    if (chars.size() < 20) chars.push_back(entry.first);
  }
  std::vector<Query> queries;
  const int fontCount = manager.GetFontTable()->GetFontCount();
  for (int font = -1; font < fontCount; ++font) {
    for (int style = 0; style < 4; ++style) {
      const bool bold = style & 2, italic = style & 1;
      for (unsigned ch : chars) {
        for (Kind kind : {Kind::kAdvance, Kind::kMetrics, Kind::kConfirm}) {
          queries.push_back({kind, font, ch, 0, bold, italic});
        }
      }
      queries.push_back({Kind::kSystemFont, font, 0, 0, bold, italic});
      for (unsigned script : {0u, 56u, 60u, 255u}) {
        queries.push_back({Kind::kScriptFont, font, script, 0, bold, italic});
      }
      for (unsigned glyph : {1u, 3u, 36u}) {
        queries.push_back({Kind::kGlyphAdvance, font, glyph, 0, bold, italic});
      }
      queries.push_back({Kind::kOutline, font, 'A', 0, bold, italic});
    }
    for (unsigned ch : chars) queries.push_back({Kind::kVisible, font, ch, 0, false, false});
    for (const auto& pair : basic.kerning) {
      queries.push_back({Kind::kKerning, font, pair.first.first, pair.first.second, false, false});
    }
  }
  return queries;
}

TEST(FontManagerConcurrencyTest, EightThreadsAnswerAsOneWhileFacesAreDroppedAndReloaded) {
  ExpectedFace basic;
  ASSERT_TRUE(loadExpectedFace("basic.ttf", 0, &basic));
  const Scenario& scenario = Scenario::get();

  TempDir referenceStorage;
  ManagerRig reference = start(referenceStorage.path() + "/", {scenario.dirA, scenario.dirB});
  const std::vector<Query> queries = allQueries(*reference.manager, basic);
  std::vector<Answer> expected;
  for (const Query& q : queries) expected.push_back(ask(*reference.manager, q));

  TempDir storage;
  ManagerRig rig = start(storage.path() + "/", {scenario.dirA, scenario.dirB});
  ASSERT_EQ(rig->GetFontTable()->GetFontCount(), reference->GetFontTable()->GetFontCount());
  ASSERT_GT(rig->GetFontTable()->GetFontInfoCount(),
            int(qro_common::FontManager::kMaxLoadedBeforeEviction) + 10);

  std::atomic<int> loadedKerning{0};
  auto same = [&](std::size_t i) {
    Answer got = ask(*rig.manager, queries[i]);
    if (queries[i].kind != Kind::kKerning) return got == expected[i];
    if (got == Answer{0.0f}) return true;  // dropped again between loading and asking
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
