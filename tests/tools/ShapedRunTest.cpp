// Runs measured as shaped (FontManager::MeasureRun) with the Android fonts
// and lists, against HarfBuzz shaping the same sub-runs in the same font
// files; the cases are the lines of tests/data/shaped_runs.tsv.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "api/kelfont.h"
#include "bench/LocaleWords.h"
#include "common/font_info/FontInfo.h"
#include "common/manager/RunMeasurer.h"
#include "common/registry/FontTable.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/Cases.h"
#include "tests/support/Concurrently.h"
#include "tests/support/TempDir.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/kelfont/ToolFontManager.h"

#if KELFONT_HARFBUZZ
#include <hb.h>
#endif

namespace {

using kelfont_bench::localeWords;
using qro_common::RunMeasure;

kelfont_tool::ToolFontManager* manager_ = nullptr;

const char kNoCorpus[] =
    "needs the Android font corpus: KELFONT_ANDROID_FONTS=DIR after scripts/android-fonts.sh DIR";

// A manager on the Android fonts and lists, packed once; null without the corpus.
kelfont_tool::ToolFontManager* androidManager() {
  static kelfont_tool::ToolFontManager* manager = []() -> kelfont_tool::ToolFontManager* {
    const char* corpus = std::getenv("KELFONT_ANDROID_FONTS");
    if (corpus == nullptr || *corpus == '\0') return nullptr;
    static kelfont_test::TempDir dir;
    std::string err;
    if (kelfont_test::runTool(
            {"pack", "--quiet", "--lists", std::string(KELFONT_DATA_DIR) + "/android", "-o",
             dir.file("qrfont.zip"), "--fonts", corpus},
            nullptr, &err) != 0) {
      ADD_FAILURE() << err;
      return nullptr;
    }
    const std::string storage = dir.file("storage/");
    static qro_ni::DefaultFontInfoFileExtracter extracter(storage, dir.path() + "/");
    auto* m = new kelfont_tool::ToolFontManager(&extracter, storage, {corpus});
    m->Initialize();
    return m;
  }();
  return manager;
}

RunMeasure measure(int font, const std::u16string& text) {
  RunMeasure m;
  EXPECT_TRUE(manager_->MeasureRun(font, false, false, text.data(), text.size(), m));
  return m;
}

// HarfBuzz's shaping of the run's sub-runs (consecutive units of one font) in the font files,
// each glyph's advance given to the measured cluster of its HarfBuzz cluster; checks that the
// measured clusters begin where HarfBuzz's do.
void expectShapedLikeHarfBuzz(const std::u16string& text, const RunMeasure& m,
                              const std::string& what) {
#if KELFONT_HARFBUZZ
  std::vector<double> expected(text.size(), 0.0);
  double total = 0;
  for (std::size_t begin = 0, end; begin < text.size(); begin = end) {
    for (end = begin + 1; end < text.size() && m.fonts[end] == m.fonts[begin];) ++end;
    const qro_common::FontInfo* info =
        manager_->GetFontTable()->ResolveFontInfo(m.fonts[begin], false, false, true);
    ASSERT_TRUE(info != nullptr && info->GetFilePath() != nullptr) << what;
    hb_blob_t* blob = hb_blob_create_from_file(info->GetFilePath()->c_str());
    hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(info->GetFreeTypeFaceIndex()));
    hb_font_t* font = hb_font_create(face);
    hb_buffer_t* buffer = hb_buffer_create();
    const int upem = static_cast<int>(hb_face_get_upem(face));
    hb_font_set_scale(font, upem, upem);
    hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(text.data()),
                        static_cast<int>(text.size()), static_cast<unsigned>(begin),
                        static_cast<int>(end - begin));
    if (const char* language = qro_common::RunMeasurer::LanguageOf(manager_->GetUILangCode())) {
      hb_buffer_set_language(buffer, hb_language_from_string(language, -1));
    }
    hb_buffer_guess_segment_properties(buffer);
    hb_shape(font, buffer, nullptr, 0);
    unsigned count = 0;
    hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer, &count);
    hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, nullptr);
    std::vector<bool> hbStart(text.size(), false);
    for (unsigned g = 0; g < count; ++g) {
      std::size_t owner = glyphs[g].cluster;
      hbStart[owner] = true;
      while (owner > begin && !m.clusterStarts[owner]) --owner;
      expected[owner] += static_cast<double>(positions[g].x_advance) / upem;
      total += static_cast<double>(positions[g].x_advance) / upem;
    }
    for (std::size_t u = begin + 1; u < end; ++u) {
      EXPECT_EQ(m.clusterStarts[u] != 0, hbStart[u]) << what << ": unit " << u;
    }
    hb_buffer_destroy(buffer);
    hb_font_destroy(font);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
  }
  EXPECT_NEAR(m.totalEm, total, 1e-4) << what;
  for (std::size_t u = 0; u < text.size(); ++u) {
    EXPECT_NEAR(m.advances[u], expected[u], 1e-4) << what << ": unit " << u;
  }
#else
  (void)text, (void)m, (void)what;
#endif
}

// The per-character path: advance ratios plus the kerning of the font that shows each pair.
double perCharacter(int font, const std::u16string& text) {
  double total = 0;
  int previousFont = -1;
  unsigned previous = 0;
  for (char16_t unit : text) {
    int shownFont = font;
    unsigned code = unit;
    manager_->ConfirmVisibleChar(shownFont, code, false, false);
    total += manager_->GetCharAdvanceRatio(font, unit, false, false);
    if (shownFont == previousFont) {
      const auto* metrics = manager_->GetFontTable()
                                ->ResolveFontInfo(shownFont, false, false, true)
                                ->GetFontMetrics();
      total +=
          static_cast<double>(manager_->GetKerningWidth(shownFont, false, false, previous, unit)) /
          metrics->GetUnitsPerEm();
    }
    previousFont = shownFont;
    previous = unit;
  }
  return total;
}

TEST(ShapedRun, DataLinesMatchHarfBuzzAndThePerCharacterPath) {
  if ((manager_ = androidManager()) == nullptr) GTEST_SKIP() << kNoCorpus;
  for (const kelfont_test::Case& c : kelfont_test::cases("shaped_runs.tsv")) {
    const std::string& line = c.line;
    const int font = manager_->GetFontIndex(c[1]);
    ASSERT_GE(font, 0) << line;
    std::vector<std::u16string> runs;
    if (c[3] == "locale") {
      runs = localeWords(c[4]);
      EXPECT_GE(runs.size(), 12u) << line;
    } else {
      std::u32string codes;
      std::istringstream parts(kelfont_test::expand(c[4]));
      for (std::string code; parts >> code;) codes += char32_t(std::stoul(code, nullptr, 16));
      runs.push_back(kelfont_bench::utf16(codes));
    }
    for (const std::u16string& run : runs) {
      const RunMeasure m = measure(font, run);
      const std::string what = line + " #" + std::to_string(&run - runs.data());
      if (c[0] == "plain") {
        EXPECT_NEAR(m.totalEm, perCharacter(font, run), 1e-4) << what;
        continue;
      }
      if (c[0] == "sum") {
        const double sum = std::accumulate(m.advances.begin(), m.advances.end(), 0.0);
        EXPECT_NEAR(m.totalEm, sum, 1e-3 * sum) << what;
        EXPECT_GT(sum, 0.0) << what;
        continue;
      }
      expectShapedLikeHarfBuzz(run, m, what);
      if (c[0] == "single") {
        std::vector<std::uint8_t> one(run.size(), 0);
        one[0] = 1;
        EXPECT_EQ(m.clusterStarts, one) << what;
        EXPECT_EQ(manager_->GetFontName(m.fonts[0]), c[2]) << what;
      }
    }
  }
}

// Eight threads measure the locale words with cold caches, as one thread
// did; then the entry point gives the same answers and refuses bad calls.
TEST(ShapedRun, ThreadsAndTheEntryPointAnswerAsOne) {
  if ((manager_ = androidManager()) == nullptr) GTEST_SKIP() << kNoCorpus;
  const int font = manager_->GetFontIndex("Roboto");
  std::vector<std::u16string> words;
  for (const char* locale : {"ar_SA", "hi_IN", "th_TH", "my_MM", "ko_KR"}) {
    for (const std::u16string& word : localeWords(locale)) words.push_back(word);
  }
  std::vector<RunMeasure> expected;
  for (const std::u16string& word : words) expected.push_back(measure(font, word));
  manager_->GetRunMeasurer().Clear();
  auto same = [&](std::size_t k) {
    RunMeasure m;
    manager_->MeasureRun(font, false, false, words[k].data(), words[k].size(), m);
    return m.advances == expected[k].advances && m.fonts == expected[k].fonts &&
           m.clusterStarts == expected[k].clusterStarts;
  };
  EXPECT_EQ(kelfont_test::askedAtOnce(words.size(), 1, same, [] {}), 0);

  qro_common::FontManager* previous = qro_common::FontManager::instance;
  qro_common::FontManager::instance = manager_;
  const std::u16string& word = words.front();
  const auto* units = reinterpret_cast<const unsigned short*>(word.data());
  const int length = static_cast<int>(word.size());
  float total = 0;
  std::vector<float> advances(word.size());
  std::vector<int> fonts(word.size());
  std::vector<unsigned char> starts(word.size());
  EXPECT_EQ(MeasureTextRun(font, false, false, units, length, total, advances.data(), fonts.data(),
                           starts.data()),
            0);
  EXPECT_EQ(total, expected.front().totalEm);
  EXPECT_EQ(advances, expected.front().advances);
  EXPECT_EQ(fonts, expected.front().fonts);
  EXPECT_EQ(MeasureTextRun(font, false, false, units, 0, total, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(total, 0.0f);
  EXPECT_EQ(MeasureTextRun(font, false, false, units, -1, total, nullptr, nullptr, nullptr), -1);
  EXPECT_EQ(MeasureTextRun(font, false, false, nullptr, 1, total, nullptr, nullptr, nullptr), -1);
  EXPECT_EQ(MeasureTextRun(100000, false, false, units, length, total, nullptr, nullptr, nullptr),
            -1);
  qro_common::FontManager::instance = nullptr;
  EXPECT_EQ(MeasureTextRun(font, false, false, units, length, total, nullptr, nullptr, nullptr),
            -1);
  qro_common::FontManager::instance = previous;
}

}  // namespace
