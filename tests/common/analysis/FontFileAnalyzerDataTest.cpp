// Advances, kerning and default-font coverage from the analyzer, checked
// against the fonts' own tables as read by an independent reader: fontTools
// (the generator's expected values) for the generated fonts, FreeType's
// FT_Get_Advance and FT_Get_Kerning without scaling for the real fonts.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <set>
#include <string>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::testFontPath;
using qro_common::CharMetrics;
using qro_common::CharMetricsInfo;
using qro_common::DefaultFontInfo;
using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using qro_common::FontUSBType;
using qro_common::KerningInfo;

ExpectedFace expected(const std::string& file, int faceIndex = 0) {
  ExpectedFace face;
  std::string error;
  EXPECT_TRUE(kelfont_test::loadExpectedFace(file, faceIndex, &face, &error)) << error;
  return face;
}

// Whether the advance tables keep a code point of this Unicode-range bit.
bool isStoredBit(int bit) { return bit == 127 || (bit < 123 && bit != 57); }

class FontFileAnalyzerDataTest : public ::testing::Test {
 protected:
  // Open, Analyze, AnalyzeData, Close.
  std::unique_ptr<FontInfo> analyzeAll(const std::string& path, int faceIndex = 0) {
    if (!analyzer_.Open(path.c_str(), faceIndex)) {
      ADD_FAILURE() << "cannot open " << path << " face " << faceIndex;
      return nullptr;
    }
    std::unique_ptr<FontInfo> info(analyzer_.Analyze());
    if (info != nullptr) analyzer_.AnalyzeData(*info);
    analyzer_.Close();
    return info;
  }

  FontFileAnalyzer analyzer_;
};

// Every character of the expected map with a stored bit has the font's
// advance; every other BMP code point is absent.
void expectAdvances(const FontInfo& info, const ExpectedFace& want, const std::string& what) {
  const CharMetricsInfo* table = info.GetCharMetricsInfo();
  ASSERT_NE(table, nullptr) << what;
  int storedBmp = 0;
  for (const auto& entry : want.chars) {
    const unsigned code = entry.first;
    const CharMetrics* metrics = table->GetCharMetrics(code);
    if (!isStoredBit(FontUSBType::GetUSBType(code))) {
      EXPECT_EQ(metrics, nullptr) << what << " U+" << std::hex << code;
      continue;
    }
    storedBmp += code <= 0xFFFF;
    ASSERT_NE(metrics, nullptr) << what << " U+" << std::hex << code;
    EXPECT_EQ(metrics->GetAdvance(), entry.second.advance) << what << " U+" << std::hex << code;
  }
  int visible = 0;
  for (unsigned code = 0; code <= 0xFFFF; ++code) visible += table->IsVisibleChar(code);
  EXPECT_EQ(visible, storedBmp) << what;
}

// Includes symbol.ttf, measured through its (3,0) map (U+F020..F0B6), and
// supplementary.ttf with U+1F600, U+20000 and U+1D400 from its format 12 map.
TEST_F(FontFileAnalyzerDataTest, AdvancesOfEveryGeneratedFace) {
  int checked = 0;
  for (const std::string& file : kelfont_test::testFontFiles()) {
    if (file == "noos2.ttf" || file == "nohead.ttf") continue;
    for (int face = 0; face < kelfont_test::expectedFaceCount(file); ++face) {
      ExpectedFace want = expected(file, face);
      std::unique_ptr<FontInfo> info = analyzeAll(testFontPath(file), face);
      ASSERT_NE(info, nullptr) << file;
      expectAdvances(*info, want, file + " face " + std::to_string(face));
      ++checked;
    }
  }
  EXPECT_GE(checked, 30);
  EXPECT_EQ(expected("symbol.ttf").chars.count(0xF041), 1u);
  EXPECT_EQ(expected("supplementary.ttf").chars.count(0x1F600), 1u);
}

TEST_F(FontFileAnalyzerDataTest, BitmapOnlyFaceGetsTheAdvancesFreeTypeReports) {
  // For the Apple bitmap font nohead.ttf FreeType reads no `hmtx` (the
  // table is in the file, with 717, 724, 731) and loads every glyph as an
  // empty outline of advance 0; the analyzer stores what FreeType reports.
  ExpectedFace want = expected("nohead.ttf");
  ASSERT_EQ(want.chars.size(), 3u);
  EXPECT_EQ(want.chars.at('A').advance, 724);
  std::unique_ptr<FontInfo> info = analyzeAll(testFontPath("nohead.ttf"));
  ASSERT_NE(info, nullptr);
  const CharMetricsInfo* table = info->GetCharMetricsInfo();
  ASSERT_NE(table, nullptr);
  for (const auto& entry : want.chars) {
    ASSERT_NE(table->GetCharMetrics(entry.first), nullptr) << entry.first;
    EXPECT_EQ(table->GetCharMetrics(entry.first)->GetAdvance(), 0) << entry.first;
  }
  EXPECT_FALSE(table->IsVisibleChar('C'));
  EXPECT_EQ(info->GetKerningInfo(), nullptr);
}

TEST_F(FontFileAnalyzerDataTest, KerningPairsOfPrintableAscii) {
  for (const char* file :
       {"basic.ttf", "bold.ttf", "italic.ttf", "bolditalic.ttf", "vertical.ttf"}) {
    ExpectedFace want = expected(file);
    ASSERT_EQ(want.kerning.size(), 5u) << file;
    std::unique_ptr<FontInfo> info = analyzeAll(testFontPath(file));
    ASSERT_NE(info, nullptr);
    const KerningInfo* kerning = info->GetKerningInfo();
    ASSERT_NE(kerning, nullptr) << file;
    EXPECT_EQ(kerning->GetCount(), 5) << file;
    for (const auto& pair : want.kerning) {
      EXPECT_EQ(kerning->GetDelta(pair.first.first, pair.first.second), pair.second)
          << file << " " << pair.first.first << " " << pair.first.second;
    }
    EXPECT_EQ(kerning->GetDelta('A', 'V'), -150);
    EXPECT_EQ(kerning->GetDelta('~', 'A'), -30);
    EXPECT_EQ(kerning->GetDelta('V', 'V'), 0);
  }
}

TEST_F(FontFileAnalyzerDataTest, KerningIsCancelledOrEmpty) {
  // "~" has no glyph: no kerning at all, even for A-V.
  ExpectedFace want = expected("kern_tilde_missing.ttf");
  EXPECT_EQ(want.kerning.at({'A', 'V'}), -120);
  std::unique_ptr<FontInfo> info = analyzeAll(testFontPath("kern_tilde_missing.ttf"));
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetKerningInfo(), nullptr);

  // Pairs only between U+00C4 and U+00D6: nothing to keep.
  EXPECT_EQ(expected("kern_outside_ascii.ttf").kerning.size(), 2u);
  info = analyzeAll(testFontPath("kern_outside_ascii.ttf"));
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetKerningInfo(), nullptr);

  // A kerning table already in the record stays as it was.
  for (const char* file : {"kern_tilde_missing.ttf", "kern_outside_ascii.ttf", "winnames.ttf"}) {
    ASSERT_TRUE(analyzer_.Open(testFontPath(file).c_str(), 0));
    FontInfo record;
    auto* previous = new KerningInfo();
    previous->Register('A', 'V', -7);
    record.SetKerningInfo(previous);
    analyzer_.AnalyzeKerningInfo(record);
    analyzer_.Close();
    EXPECT_EQ(record.GetKerningInfo(), previous) << file;
    EXPECT_EQ(record.GetKerningInfo()->GetDelta('A', 'V'), -7) << file;
  }
}

TEST_F(FontFileAnalyzerDataTest, AnalyzeDataReplacesTheTablesAndNeedsAnOpenFace) {
  FontInfo record;
  auto* oldMetrics = new CharMetricsInfo();
  record.SetCharMetricsInfo(oldMetrics);
  analyzer_.AnalyzeData(record);  // closed: nothing happens
  EXPECT_EQ(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(record.GetKerningInfo(), nullptr);

  ASSERT_TRUE(analyzer_.Open(testFontPath("basic.ttf").c_str(), 0));
  analyzer_.AnalyzeData(record);
  ASSERT_NE(record.GetCharMetricsInfo(), nullptr);
  EXPECT_NE(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(record.GetCharMetricsInfo()->GetCharMetrics('A')->GetAdvance(),
            expected("basic.ttf").chars.at('A').advance);
  ASSERT_NE(record.GetKerningInfo(), nullptr);
  EXPECT_EQ(record.GetKerningInfo()->GetDelta('T', 'o'), -80);
}

TEST_F(FontFileAnalyzerDataTest, GlyphAdvances) {
  ExpectedFace want = expected("basic.ttf");
  EXPECT_EQ(analyzer_.GetGlyphAdvance(1), 0.0f);  // not open
  ASSERT_TRUE(analyzer_.Open(testFontPath("basic.ttf").c_str(), 0));
  for (int glyph = 0; glyph < want.numGlyphs; ++glyph) {
    EXPECT_EQ(analyzer_.GetGlyphAdvance(static_cast<unsigned short>(glyph)),
              static_cast<float>(want.glyphs[glyph].advance))
        << glyph;
  }
  EXPECT_EQ(analyzer_.GetGlyphAdvance(static_cast<unsigned short>(want.numGlyphs)), 0.0f);
  EXPECT_EQ(analyzer_.GetGlyphAdvance(0xFFFF), 0.0f);
}

TEST_F(FontFileAnalyzerDataTest, DefaultFontInfoRecordsEveryMappedCodePoint) {
  DefaultFontInfo defaults;
  ASSERT_TRUE(analyzer_.Open(testFontPath("basic.ttf").c_str(), 0));
  analyzer_.ApplyDefaultFontInfo(-1, defaults);
  EXPECT_EQ(defaults.GetFontIndex('A'), -1);
  analyzer_.ApplyDefaultFontInfo(3, defaults);
  analyzer_.Close();
  ExpectedFace basic = expected("basic.ttf");
  for (const auto& entry : basic.chars) {
    EXPECT_EQ(defaults.GetFontIndex(entry.first), 3) << std::hex << entry.first;
  }
  EXPECT_EQ(defaults.GetFontIndex(0x0100), -1);
  EXPECT_EQ(defaults.GetFontIndex(0xAC02), -1);

  // A later font takes the code points it maps; the others keep font 3.
  ASSERT_TRUE(analyzer_.Open(testFontPath("cjk_flag.ttf").c_str(), 0));
  analyzer_.ApplyDefaultFontInfo(7, defaults);
  analyzer_.Close();
  for (unsigned code : {0x20u, 0x41u, 0xAC00u, 0xAC01u, 0xB098u, 0xD7A3u}) {
    EXPECT_EQ(defaults.GetFontIndex(code), 7) << std::hex << code;
  }
  EXPECT_EQ(defaults.GetFontIndex('B'), 3);
  EXPECT_EQ(defaults.GetFontIndex(0xE000), 3);

  // Symbol map and supplementary code points.
  ASSERT_TRUE(analyzer_.Open(testFontPath("symbol.ttf").c_str(), 0));
  analyzer_.ApplyDefaultFontInfo(300, defaults);
  analyzer_.Close();
  EXPECT_EQ(defaults.GetFontIndex(0xF041), 300);
  EXPECT_EQ(defaults.GetFontIndex('A'), 7);
  ASSERT_TRUE(analyzer_.Open(testFontPath("supplementary.ttf").c_str(), 0));
  analyzer_.ApplyDefaultFontInfo(9, defaults);
  analyzer_.Close();
  EXPECT_EQ(defaults.GetFontIndex(0x1F600), 9);
  EXPECT_EQ(defaults.GetFontIndex(0x20000), 9);
  EXPECT_EQ(defaults.GetFontIndex(0x1D400), 9);
  EXPECT_EQ(defaults.GetFontIndex(0x1F601), -1);
}

// ---------------------------------------------------------------------------
// Real fonts.

class RealFontTest : public FontFileAnalyzerDataTest,
                     public ::testing::WithParamInterface<const char*> {};

TEST_P(RealFontTest, AdvancesAndKerningMatchTheFontsOwnTables) {
  const std::string path = GetParam();
  ASSERT_TRUE(std::ifstream(path).good()) << path << " is missing (scripts/install-deps.sh)";
  std::unique_ptr<FontInfo> info = analyzeAll(path);
  ASSERT_NE(info, nullptr);
  const CharMetricsInfo* table = info->GetCharMetricsInfo();
  ASSERT_NE(table, nullptr);

  FT_Library library = nullptr;
  ASSERT_EQ(FT_Init_FreeType(&library), 0);
  FT_Face face = nullptr;
  ASSERT_EQ(FT_New_Face(library, path.c_str(), 0, &face), 0);
  ASSERT_EQ(FT_Select_Charmap(face, FT_ENCODING_UNICODE), 0);
  std::set<FT_ULong> mapped;
  int stored = 0;
  FT_UInt glyph = 0;
  for (FT_ULong code = FT_Get_First_Char(face, &glyph); glyph != 0;
       code = FT_Get_Next_Char(face, code, &glyph)) {
    mapped.insert(code);
    const CharMetrics* metrics = table->GetCharMetrics(static_cast<unsigned>(code));
    if (!isStoredBit(FontUSBType::GetUSBType(static_cast<unsigned>(code)))) {
      EXPECT_EQ(metrics, nullptr) << std::hex << code;
      continue;
    }
    FT_Fixed advance = 0;
    ASSERT_EQ(FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance), 0);
    ASSERT_NE(metrics, nullptr) << "U+" << std::hex << code;
    EXPECT_EQ(metrics->GetAdvance(), advance) << "U+" << std::hex << code;
    ++stored;
  }
  EXPECT_GT(stored, 200);
  for (unsigned code = 0; code <= 0xFFFF; ++code) {
    if (mapped.count(code) == 0) {
      EXPECT_FALSE(table->IsVisibleChar(code)) << std::hex << code;
    }
  }

  ASSERT_TRUE(FT_HAS_KERNING(face));
  const KerningInfo* kerning = info->GetKerningInfo();
  ASSERT_NE(kerning, nullptr);
  int pairs = 0;
  for (FT_ULong left = 32; left <= 126; ++left) {
    for (FT_ULong right = 32; right <= 126; ++right) {
      FT_Vector delta;
      ASSERT_EQ(FT_Get_Kerning(face, FT_Get_Char_Index(face, left), FT_Get_Char_Index(face, right),
                               FT_KERNING_UNSCALED, &delta),
                0);
      EXPECT_EQ(kerning->GetDelta(static_cast<int>(left), static_cast<int>(right)), delta.x)
          << left << " " << right;
      pairs += delta.x != 0;
    }
  }
  EXPECT_GT(pairs, 0);
  EXPECT_EQ(kerning->GetCount(), pairs);
  FT_Done_Face(face);
  FT_Done_FreeType(library);
}

INSTANTIATE_TEST_SUITE_P(
    Installed, RealFontTest,
    ::testing::Values("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                      "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf",
                      "/usr/share/fonts/truetype/nanum/NanumGothic.ttf"));

}  // namespace
