// Eight threads ask one manager everything at once, over more faces than
// stay loaded, while another thread keeps clearing the loaded data (run
// under ThreadSanitizer and AddressSanitizer in CI). Every answer must be
// the one a single thread gets from a manager of its own.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <random>
#include <thread>

#include "common/font_info/CharMetrics.h"
#include "common/font_info/FontInfo.h"
#include "common/manager/Path.h"
#include "common/registry/FontTable.h"
#include "tests/common/manager/ManagerScenario.h"
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

struct RecordingPath : qro_graphics::Path {
  Answer* out;
  explicit RecordingPath(Answer* answer) : out(answer) {}
  void reset() override { out->push_back('R'); }
  void moveTo(float x, float y) override { out->insert(out->end(), {'M', x, y}); }
  void lineTo(float x, float y) override { out->insert(out->end(), {'L', x, y}); }
  void quadTo(float a, float b, float x, float y) override {
    out->insert(out->end(), {'Q', a, b, x, y});
  }
  void cubicTo(float a, float b, float c, float d, float x, float y) override {
    out->insert(out->end(), {'C', a, b, c, d, x, y});
  }
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
      Answer out;
      RecordingPath path(&out);
      float x = 10.5f, y = 20.0f;
      const qro_common::FontInfo* info = manager.ResolveSystemFontInfo(q.font, q.bold, q.italic);
      out.push_back(static_cast<float>(manager.OutlineToPath(info, q.code, x, y, &path)));
      out.push_back(x);
      return out;
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

  std::atomic<int> wrong{0};
  std::atomic<int> loadedKerning{0};
  std::atomic<bool> done{false};
  std::mutex firstMutex;
  std::string first;
  auto worker = [&](unsigned seed) {
    std::vector<std::size_t> order(queries.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::shuffle(order.begin(), order.end(), std::mt19937(seed));
    for (std::size_t i : order) {
      Answer got = ask(*rig.manager, queries[i]);
      bool ok = got == expected[i];
      if (queries[i].kind == Kind::kKerning && !ok) {
        ok = got == Answer{0.0f};  // dropped again between loading and asking
      } else if (queries[i].kind == Kind::kKerning && got[0] != 0) {
        ++loadedKerning;
      }
      if (!ok && wrong++ == 0) {
        std::lock_guard<std::mutex> lock(firstMutex);
        first = "query " + std::to_string(i) + " kind " +
                std::to_string(static_cast<int>(queries[i].kind)) + " font " +
                std::to_string(queries[i].font) + " code " + std::to_string(queries[i].code);
      }
    }
  };
  std::thread clearer([&] {
    while (!done.load()) {
      rig->ClearCacheInfo();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  });
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < 8; ++t) threads.emplace_back(worker, t + 1);
  for (std::thread& thread : threads) thread.join();
  done = true;
  clearer.join();

  EXPECT_EQ(wrong.load(), 0) << first;
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
