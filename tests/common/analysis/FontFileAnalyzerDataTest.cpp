// Advances, kerning and default-font coverage from the analyzer, checked
// against the fonts' own tables as fontTools (the generator) read them. Real
// fonts: FontFileAnalyzerRealFontsTest.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/FontUSBType.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::expectedFace;
using kelfont_test::testFontPath;
using qro_common::CharMetrics;
using qro_common::CharMetricsInfo;
using qro_common::DefaultFontInfo;
using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using qro_common::FontUSBType;
using qro_common::KerningInfo;

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

// Every character of the expected map has the font's advance, those
// without a stored bit among the extra characters; every other BMP code
// point is absent.
void expectAdvances(const FontInfo& info, const ExpectedFace& want, const std::string& what) {
  const CharMetricsInfo* table = info.GetCharMetricsInfo();
  ASSERT_NE(table, nullptr) << what;
  int bmp = 0;
  for (const auto& entry : want.chars) {
    const unsigned code = entry.first;
    const CharMetrics* metrics = table->GetCharMetrics(code);
    const bool extra = table->GetExtraCharMetrics() != nullptr &&
                       table->GetExtraCharMetrics()->Find(code) != nullptr;
    EXPECT_EQ(extra, !isStoredBit(FontUSBType::GetUSBType(code))) << what << " U+" << std::hex << code;
    bmp += code <= 0xFFFF;
    ASSERT_NE(metrics, nullptr) << what << " U+" << std::hex << code;
    EXPECT_EQ(metrics->GetAdvance(), entry.second.advance) << what << " U+" << std::hex << code;
  }
  int visible = 0;
  for (unsigned code = 0; code <= 0xFFFF; ++code) visible += table->IsVisibleChar(code);
  EXPECT_EQ(visible, bmp) << what;
}

// Pairs of printable ASCII only, and only when the face maps all of them.
void expectKerning(const FontInfo& info, const ExpectedFace& want, const std::string& what) {
  std::map<std::pair<std::uint32_t, std::uint32_t>, int> pairs;
  bool all = true;
  for (std::uint32_t code = 0x20; code <= 0x7E; ++code) all = all && want.chars.count(code);
  for (const auto& pair : want.kerning) {
    const auto& [left, right] = pair.first;
    if (all && pair.second != 0 && left >= 0x20 && left <= 0x7E && right >= 0x20 && right <= 0x7E)
      pairs.insert(pair);
  }
  const KerningInfo* kerning = info.GetKerningInfo();
  ASSERT_EQ(kerning != nullptr, !pairs.empty()) << what;
  if (kerning == nullptr) return;
  EXPECT_EQ(kerning->GetCount(), static_cast<int>(pairs.size())) << what;
  for (const auto& [codes, value] : pairs)
    EXPECT_EQ(kerning->GetDelta(codes.first, codes.second), value) << what << " " << codes.first;
}

// Includes symbol.ttf, measured through its (3,0) map (U+F020..F0B6), and
// supplementary.ttf with U+1F600, U+20000 and U+1D400 from its format 12 map.
TEST_F(FontFileAnalyzerDataTest, AdvancesOfEveryGeneratedFace) {
  int checked = 0;
  for (const std::string& file : kelfont_test::testFontFiles()) {
    if (file == "noos2.ttf" || file == "nohead.ttf") continue;
    for (int face = 0; face < kelfont_test::expectedFaceCount(file); ++face) {
      ExpectedFace want = expectedFace(file, face);
      std::unique_ptr<FontInfo> info = analyzeAll(testFontPath(file), face);
      ASSERT_NE(info, nullptr) << file;
      expectAdvances(*info, want, file + " face " + std::to_string(face));
      expectKerning(*info, want, file + " face " + std::to_string(face));
      ++checked;
    }
  }
  EXPECT_GE(checked, 30);
  EXPECT_EQ(expectedFace("symbol.ttf").chars.count(0xF041), 1u);
  EXPECT_EQ(expectedFace("supplementary.ttf").chars.count(0x1F600), 1u);
}

TEST_F(FontFileAnalyzerDataTest, BitmapOnlyFaceGetsTheAdvancesFreeTypeReports) {
  // For the Apple bitmap font nohead.ttf FreeType reads no `hmtx` (the
  // table is in the file, with 717, 724, 731) and loads every glyph as an
  // empty outline of advance 0; the analyzer stores what FreeType reports.
  ExpectedFace want = expectedFace("nohead.ttf");
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

// "~" has no glyph in kern_tilde_missing.ttf (A-V -120 is not kept);
// kern_outside_ascii.ttf pairs only U+00C4 and U+00D6: neither gives a
// table, and a table already in the record stays.
TEST_F(FontFileAnalyzerDataTest, KerningIsCancelledOrEmpty) {
  EXPECT_EQ(expectedFace("kern_tilde_missing.ttf").kerning.at({'A', 'V'}), -120);
  EXPECT_EQ(expectedFace("kern_outside_ascii.ttf").kerning.size(), 2u);
  EXPECT_EQ(expectedFace("basic.ttf").kerning.size(), 5u);
  for (const char* file : {"kern_tilde_missing.ttf", "kern_outside_ascii.ttf"}) {
    ASSERT_TRUE(analyzer_.Open(testFontPath(file).c_str(), 0));
    FontInfo record;
    auto* previous = new KerningInfo();
    record.SetKerningInfo(previous);
    analyzer_.AnalyzeKerningInfo(record);
    analyzer_.Close();
    EXPECT_EQ(record.GetKerningInfo(), previous) << file;
  }
}

TEST_F(FontFileAnalyzerDataTest, AnalyzeDataAndGlyphAdvancesNeedAnOpenFace) {
  FontInfo record;
  auto* oldMetrics = new CharMetricsInfo();
  record.SetCharMetricsInfo(oldMetrics);
  analyzer_.AnalyzeData(record);  // closed: nothing happens
  EXPECT_EQ(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(analyzer_.GetGlyphAdvance(1), 0.0f);

  ExpectedFace want = expectedFace("basic.ttf");
  ASSERT_TRUE(analyzer_.Open(testFontPath("basic.ttf").c_str(), 0));
  analyzer_.AnalyzeData(record);
  ASSERT_NE(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(record.GetCharMetricsInfo()->GetCharMetrics('A')->GetAdvance(), want.chars.at('A').advance);
  EXPECT_EQ(record.GetKerningInfo()->GetDelta('T', 'o'), -80);
  for (int glyph = 0; glyph < want.numGlyphs; ++glyph) {
    EXPECT_EQ(analyzer_.GetGlyphAdvance(static_cast<unsigned short>(glyph)),
              static_cast<float>(want.glyphAdvances[glyph]))
        << glyph;
  }
  EXPECT_EQ(analyzer_.GetGlyphAdvance(static_cast<unsigned short>(want.numGlyphs)), 0.0f);
}

TEST_F(FontFileAnalyzerDataTest, DefaultFontInfoRecordsEveryMappedCodePoint) {
  DefaultFontInfo defaults;
  const std::pair<const char*, int> fonts[] = {
      {"basic.ttf", -1}, {"basic.ttf", 3}, {"cjk_flag.ttf", 7}, {"symbol.ttf", 300},
      {"supplementary.ttf", 9}};
  for (const auto& font : fonts) {
    ASSERT_TRUE(analyzer_.Open(testFontPath(font.first).c_str(), 0));
    analyzer_.ApplyDefaultFontInfo(font.second, defaults);  // nothing for -1
    analyzer_.Close();
  }
  // The font applied last to a code point wins.
  std::map<unsigned, int> want;
  for (const auto& font : fonts) {
    if (font.second < 0) continue;
    for (const auto& entry : expectedFace(font.first).chars) {
      if (isStoredBit(FontUSBType::GetUSBType(entry.first))) want[entry.first] = font.second;
    }
  }
  for (const auto& entry : want) {
    EXPECT_EQ(defaults.GetFontIndex(entry.first), entry.second) << std::hex << entry.first;
  }
  EXPECT_EQ(want.at(0xAC00), 7);
  EXPECT_EQ(want.at(0xF041), 300);
  EXPECT_EQ(want.at(0x20000), 9);
  EXPECT_EQ(defaults.GetFontIndex(0x1F601), -1);
  EXPECT_EQ(defaults.GetFontIndex(0x0100), -1);
}

}  // namespace
