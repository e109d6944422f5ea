// The analyzer on the test fonts, against what the font generator read back
// from them with fontTools: opening faces, the font-level values of
// Analyze(), advances, kerning and default-font coverage of the data step,
// and unusable files. Real fonts: FontFileAnalyzerRealFontsTest.cpp;
// damaged fonts that still open: the analyzer fuzz target.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "base/Environment.h"
#include "base/Locale.h"
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
using kelfont_test::expectedFace;
using kelfont_test::testFontPath;
using namespace qro_common;

// Whether the advance tables keep a code point of this Unicode-range bit.
bool isStoredBit(int bit) { return bit == 127 || (bit < 123 && bit != 57); }

class FontFileAnalyzerTest : public ::testing::Test {
 protected:
  // Opens face `faceIndex` of a generated font and analyses it.
  std::unique_ptr<FontInfo> analyze(const std::string& file, int faceIndex = 0) {
    if (!analyzer_.Open(testFontPath(file).c_str(), faceIndex)) {
      ADD_FAILURE() << "cannot open " << file << " face " << faceIndex;
      return nullptr;
    }
    std::unique_ptr<FontInfo> info(analyzer_.Analyze());
    analyzer_.Close();
    return info;
  }

  static std::string fontName(const FontInfo& info) {
    return info.GetFontName() != nullptr ? *info.GetFontName() : "<none>";
  }

  // Runs every operation on the face when it opens; whether it opened.
  bool exercise(const std::string& path, int faceIndex = 0) {
    if (!analyzer_.Open(path.c_str(), faceIndex)) {
      EXPECT_FALSE(analyzer_.IsOpen());
      EXPECT_EQ(analyzer_.Analyze(), nullptr);
      return false;
    }
    std::unique_ptr<FontInfo> info(analyzer_.Analyze());
    EXPECT_NE(info, nullptr);
    if (info != nullptr) analyzer_.AnalyzeData(*info);
    DefaultFontInfo defaults;
    analyzer_.ApplyDefaultFontInfo(0, defaults);
    analyzer_.GetGlyphAdvance(1);
    analyzer_.Close();
    return true;
  }

  // Writes `bytes` as a font file in the temporary directory.
  std::string write(const std::string& name, const std::string& bytes) {
    const std::string path = dir_.file(name);
    EXPECT_TRUE(kelfont_test::writeFile(path, bytes));
    return path;
  }

  kelfont_test::TempDir dir_;
  FontFileAnalyzer analyzer_;
};

TEST_F(FontFileAnalyzerTest, OpenCloseFaceCountAndRefusedFaces) {
  EXPECT_EQ(analyzer_.Analyze(), nullptr);
  ASSERT_TRUE(analyzer_.Open(testFontPath("basic.ttf").c_str(), 0));
  // A second Open replaces the face.
  ASSERT_TRUE(analyzer_.Open(testFontPath("collection.ttc").c_str(), 2));
  EXPECT_EQ(analyzer_.GetFaceCount(), 3);
  std::unique_ptr<FontInfo> info(analyzer_.Analyze());
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(fontName(*info), "KelTest Coll C");
  analyzer_.Close();
  EXPECT_FALSE(analyzer_.IsOpen());
  EXPECT_EQ(analyzer_.Analyze(), nullptr);
  EXPECT_EQ(analyzer_.MakePanose(nullptr), nullptr);
  // No face 3 or -1, and a face without OS/2 is refused.
  EXPECT_FALSE(analyzer_.Open(testFontPath("collection.ttc").c_str(), 3));
  EXPECT_FALSE(analyzer_.Open(testFontPath("collection.ttc").c_str(), -1));
  EXPECT_FALSE(expectedFace("noos2.ttf").hasOs2);
  EXPECT_FALSE(analyzer_.Open(testFontPath("noos2.ttf").c_str(), 0));
  EXPECT_FALSE(analyzer_.IsOpen());
}

// Every generated face against fontTools' reading of it: PANOSE, the six
// range words (a word that is 0 becomes 1), the em square and hhea's line
// metrics, and no advances or kerning yet (AnalyzeData's business). A face
// without `head` (an Apple bitmap font) gets 1024 units and zero metrics,
// PANOSE and ranges: FreeType reads neither its hhea nor its OS/2, whose
// typographic values 1500/-380/50 are in the file.
// Analyze(): PANOSE, the six range words (a word that is 0 becomes 1), the
// em square and hhea's line metrics, no advances or kerning yet. A face
// without `head` (an Apple bitmap font) gets 1024 units and zero metrics,
// PANOSE and ranges: FreeType reads neither its hhea nor its OS/2, whose
// typographic values 1500/-380/50 are in the file.
void expectFontLevel(const FontInfo& info, const ExpectedFace& want, int fileSize) {
  EXPECT_EQ(info.GetFileSize(), fileSize);
  ASSERT_TRUE(info.IsValid());
  for (int i = 0; i < 10; ++i) EXPECT_EQ(info.GetPanose()->Get(i), want.panose[i]) << i;
  for (int r = 0; r < 4; ++r) {
    EXPECT_EQ(info.GetSig()->GetUnicodeRange(r + 1), std::max(want.unicodeRange[r], 1u));
  }
  EXPECT_EQ(info.GetSig()->GetCodePageRange(1), std::max(want.codePageRange[0], 1u));
  EXPECT_EQ(info.GetSig()->GetCodePageRange(2), std::max(want.codePageRange[1], 1u));
  const FontMetrics* m = info.GetFontMetrics();
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->GetUnitsPerEm(), want.hasHead ? want.unitsPerEm : 1024);
  EXPECT_EQ(m->GetAscender(), want.ascender);
  EXPECT_EQ(m->GetDescender(), want.descender);
  EXPECT_EQ(m->GetLineGap(), want.lineGap);
  EXPECT_EQ(info.GetCharMetricsInfo(), nullptr);
  EXPECT_EQ(info.GetKerningInfo(), nullptr);
}

// AnalyzeData(): every character of the expected map has the font's
// advance, those without a stored bit among the extra characters; every
// other BMP code point is absent. The bitmap-only face (no `head`): FreeType
// reads no `hmtx` and loads every glyph as an empty outline of advance 0.
// Kerning: pairs of printable ASCII only, when the face maps all of them.
void expectData(const FontInfo& info, const ExpectedFace& want) {
  const CharMetricsInfo* table = info.GetCharMetricsInfo();
  ASSERT_NE(table, nullptr);
  int bmp = 0;
  for (const auto& [code, expected] : want.chars) {
    SCOPED_TRACE(code);
    const CharMetrics* metrics = table->GetCharMetrics(code);
    const bool extra = table->GetExtraCharMetrics() != nullptr &&
                       table->GetExtraCharMetrics()->Find(code) != nullptr;
    EXPECT_EQ(extra, !isStoredBit(FontUSBType::GetUSBType(code)));
    bmp += code <= 0xFFFF;
    ASSERT_NE(metrics, nullptr);
    EXPECT_EQ(metrics->GetAdvance(), want.hasHead ? expected.advance : 0);
  }
  int visible = 0;
  for (unsigned code = 0; code <= 0xFFFF; ++code) visible += table->IsVisibleChar(code);
  EXPECT_EQ(visible, bmp);
  std::map<std::pair<std::uint32_t, std::uint32_t>, int> pairs;
  bool all = true;
  for (std::uint32_t code = 0x20; code <= 0x7E; ++code) all = all && want.chars.count(code);
  for (const auto& pair : want.kerning) {
    const auto& [left, right] = pair.first;
    if (all && pair.second != 0 && left >= 0x20 && left <= 0x7E && right >= 0x20 && right <= 0x7E)
      pairs.insert(pair);
  }
  const KerningInfo* kerning = info.GetKerningInfo();
  ASSERT_EQ(kerning != nullptr, !pairs.empty());
  if (kerning == nullptr) return;
  EXPECT_EQ(kerning->GetCount(), static_cast<int>(pairs.size()));
  for (const auto& [codes, value] : pairs)
    EXPECT_EQ(kerning->GetDelta(codes.first, codes.second), value) << codes.first;
}

// Includes symbol.ttf, measured through its (3,0) map (U+F020..F0B6),
// supplementary.ttf with U+1F600, U+20000 and U+1D400 from its format 12
// map, and the zero range words of ranges_zero.ttf and cprange2_zero.ttf.
TEST_F(FontFileAnalyzerTest, EveryGeneratedFace) {
  int checked = 0;
  for (const std::string& file : kelfont_test::testFontFiles()) {
    if (file == "noos2.ttf") continue;
    const int size = static_cast<int>(kelfont_test::readFile(testFontPath(file)).size());
    for (int face = 0; face < kelfont_test::expectedFaceCount(file); ++face, ++checked) {
      SCOPED_TRACE(file + " face " + std::to_string(face));
      ExpectedFace want = expectedFace(file, face);
      ExpectedFace os2 = want.hasHead ? want : ExpectedFace{};
      ASSERT_TRUE(analyzer_.Open(testFontPath(file).c_str(), face));
      std::unique_ptr<FontInfo> info(analyzer_.Analyze());
      ASSERT_NE(info, nullptr);
      expectFontLevel(*info, os2, size);
      analyzer_.AnalyzeData(*info);
      analyzer_.Close();
      expectData(*info, want);
    }
  }
  EXPECT_GE(checked, 30);
  EXPECT_EQ(expectedFace("symbol.ttf").chars.count(0xF041), 1u);
  EXPECT_EQ(expectedFace("supplementary.ttf").chars.count(0x1F600), 1u);
  EXPECT_EQ(expectedFace("ranges_zero.ttf").unicodeRange[0], 0u);
  EXPECT_EQ(expectedFace("cprange2_zero.ttf").codePageRange[1], 0u);
  EXPECT_EQ(expectedFace("nohead.ttf").chars.at('A').advance, 724);
  EXPECT_EQ(expectedFace("basic.ttf").kerning.size(), 5u);
}

// "~" has no glyph in kern_tilde_missing.ttf (A-V -120 is not kept);
// kern_outside_ascii.ttf pairs only U+00C4 and U+00D6: neither gives a
// table, and a table already in the record stays.
TEST_F(FontFileAnalyzerTest, KerningIsCancelledOrEmpty) {
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

TEST_F(FontFileAnalyzerTest, AnalyzeDataAndGlyphAdvancesNeedAnOpenFace) {
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

TEST_F(FontFileAnalyzerTest, DefaultFontInfoRecordsEveryMappedCodePoint) {
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

// Names, pitch and flags of each font: tests/data/common_functions.tsv.
TEST_F(FontFileAnalyzerTest, PreferredLanguageIsByDefaultTheInterfaceLanguage) {
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale saved = environment.GetUILocale();
  environment.SetUILocale(qro_base::Locale("ko", "KR"));
  FontFileAnalyzer korean;
  environment.SetUILocale(saved);
  EXPECT_EQ(korean.GetPreferredLanguage(), 0x0412);
}

TEST_F(FontFileAnalyzerTest, LongFamilyNameIsCutAtAUnitBoundary) {
  // 1500 Hangul syllables, UTF-16BE in the file and three UTF-8 bytes each.
  const std::string utf16 = expectedFace("longname.ttf").familyNames().at(0).bytes;
  std::string utf8;
  for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
    unsigned unit =
        static_cast<unsigned char>(utf16[i]) << 8 | static_cast<unsigned char>(utf16[i + 1]);
    utf8 += {char(0xE0 | unit >> 12), char(0x80 | (unit >> 6 & 0x3F)), char(0x80 | (unit & 0x3F))};
  }
  ASSERT_EQ(utf8.size(), 4500u);
  std::unique_ptr<FontInfo> info = analyze("longname.ttf");
  ASSERT_NE(info, nullptr);
  // 1023 units fit the UTF-16 buffer; of their UTF-8 form 682 syllables
  // (2046 bytes) fit the 2048-byte buffer with its terminator.
  EXPECT_EQ(info->GetLocalizedNames().at(0x0409), utf8.substr(0, 2046));
  EXPECT_EQ(fontName(*info), utf8.substr(0, 2046));
}

TEST_F(FontFileAnalyzerTest, MissingEmptyDirectoryAndGarbageAreRefused) {
  EXPECT_FALSE(exercise(dir_.file("missing.ttf")));
  EXPECT_EQ(analyzer_.GetFileSize(), 0);
  EXPECT_FALSE(analyzer_.Open(nullptr, 0));
  ASSERT_EQ(mkdir(dir_.file("x.ttf").c_str(), 0700), 0);
  EXPECT_FALSE(exercise(dir_.file("x.ttf")));
  // Sfnt heads without tables behind them; mutated fonts: the fuzz target.
  const std::string heads[] = {"", std::string("\0\1\0\0", 4) + std::string(96, '\x55'),
                               "OTTO", std::string("ttcf\0\1\0\0\0\0\0\1", 12)};
  for (const std::string& head : heads) EXPECT_FALSE(exercise(write("garbage.ttf", head))) << head;
  const std::string basic = kelfont_test::readFile(testFontPath("basic.ttf"));
  EXPECT_FALSE(exercise(write("short.ttf", basic.substr(0, 11))));
}

TEST_F(FontFileAnalyzerTest, CollectionClaimingMoreFacesThanItHas) {
  std::string bytes = kelfont_test::readFile(testFontPath("collection.ttc"));
  ASSERT_EQ(bytes.substr(0, 4), "ttcf");
  ASSERT_EQ(bytes.substr(8, 4), std::string("\0\0\0\3", 4));
  bytes[11] = 5;
  const std::string five = write("five.ttc", bytes);
  ASSERT_TRUE(analyzer_.Open(five.c_str(), 0));
  EXPECT_EQ(analyzer_.GetFaceCount(), 5);
  analyzer_.Close();
  EXPECT_TRUE(exercise(five, 2));
  EXPECT_FALSE(exercise(five, 3));
  EXPECT_FALSE(exercise(five, 4));
  EXPECT_FALSE(exercise(five, 5));

  bytes[8] = '\x7F';
  bytes[11] = '\xFF';
  const std::string many = write("many.ttc", bytes);
  for (int face : {0, 3, 1000}) EXPECT_FALSE(exercise(many, face)) << face;
}

}  // namespace
