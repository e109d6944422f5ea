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

// Face `face` of a generated font analysed (Analyze() only, or AnalyzeData()
// too); null when it does not open.
std::unique_ptr<FontInfo> analyze(const std::string& file, int face = 0, bool data = false) {
  FontFileAnalyzer analyzer;
  if (!analyzer.Open(testFontPath(file).c_str(), face)) return nullptr;
  std::unique_ptr<FontInfo> info(analyzer.Analyze());
  if (info != nullptr && data) analyzer.AnalyzeData(*info);
  return info;
}

// Runs every operation on the face when it opens; whether it opened.
bool exercise(const std::string& path, int face = 0) {
  FontFileAnalyzer analyzer;
  if (!analyzer.Open(path.c_str(), face)) {
    EXPECT_FALSE(analyzer.IsOpen());
    EXPECT_EQ(analyzer.Analyze(), nullptr);
    return false;
  }
  std::unique_ptr<FontInfo> info(analyzer.Analyze());
  EXPECT_NE(info, nullptr);
  if (info != nullptr) analyzer.AnalyzeData(*info);
  DefaultFontInfo defaults;
  analyzer.ApplyDefaultFontInfo(0, defaults);
  analyzer.GetGlyphAdvance(1);
  return true;
}

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
// A face without OS/2 is refused.
TEST(FontFileAnalyzer, EveryGeneratedFace) {
  int checked = 0;
  for (const std::string& file : kelfont_test::testFontFiles()) {
    const int size = static_cast<int>(kelfont_test::readFile(testFontPath(file)).size());
    for (int face = 0, n = kelfont_test::expectedFaceCount(file); face < n; ++face, ++checked) {
      SCOPED_TRACE(file + " face " + std::to_string(face));
      ExpectedFace want = expectedFace(file, face);
      std::unique_ptr<FontInfo> info = analyze(file, face), data = analyze(file, face, true);
      ASSERT_EQ(info != nullptr, want.hasOs2);
      if (info == nullptr) continue;
      expectFontLevel(*info, want.hasHead ? want : ExpectedFace{}, size);
      expectData(*data, want);
    }
  }
  EXPECT_GE(checked, 30);
  EXPECT_EQ(expectedFace("symbol.ttf").chars.count(0xF041), 1u);
  EXPECT_EQ(expectedFace("supplementary.ttf").chars.count(0x1F600), 1u);
  EXPECT_EQ(expectedFace("ranges_zero.ttf").unicodeRange[0], 0u);
  EXPECT_EQ(expectedFace("cprange2_zero.ttf").codePageRange[1], 0u);
  EXPECT_EQ(expectedFace("nohead.ttf").chars.at('A').advance, 724);
  EXPECT_EQ(expectedFace("basic.ttf").kerning.size(), 5u);
  EXPECT_FALSE(expectedFace("noos2.ttf").hasOs2);
}

// "~" has no glyph in kern_tilde_missing.ttf (A-V -120 is not kept);
// kern_outside_ascii.ttf pairs only U+00C4 and U+00D6: neither gives a
// table, and a table already in the record stays.
TEST(FontFileAnalyzer, KerningIsCancelledOrEmpty) {
  EXPECT_EQ(expectedFace("kern_tilde_missing.ttf").kerning.at({'A', 'V'}), -120);
  EXPECT_EQ(expectedFace("kern_outside_ascii.ttf").kerning.size(), 2u);
  for (const char* file : {"kern_tilde_missing.ttf", "kern_outside_ascii.ttf"}) {
    FontFileAnalyzer analyzer;
    ASSERT_TRUE(analyzer.Open(testFontPath(file).c_str(), 0));
    FontInfo record;
    auto* previous = new KerningInfo();
    record.SetKerningInfo(previous);
    analyzer.AnalyzeKerningInfo(record);
    EXPECT_EQ(record.GetKerningInfo(), previous) << file;
  }
}

// A second Open replaces the face; a closed analyzer analyses nothing and
// measures no glyph; faces past the count are refused.
TEST(FontFileAnalyzer, OpenCloseAndGlyphAdvances) {
  FontFileAnalyzer analyzer;
  FontInfo record;
  auto* oldMetrics = new CharMetricsInfo();
  record.SetCharMetricsInfo(oldMetrics);
  analyzer.AnalyzeData(record);
  EXPECT_EQ(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(analyzer.GetGlyphAdvance(1), 0.0f);
  EXPECT_EQ(analyzer.Analyze(), nullptr);
  ASSERT_TRUE(analyzer.Open(testFontPath("collection.ttc").c_str(), 2));
  EXPECT_EQ(analyzer.GetFaceCount(), 3);
  ASSERT_TRUE(analyzer.Open(testFontPath("basic.ttf").c_str(), 0));
  ExpectedFace want = expectedFace("basic.ttf");
  analyzer.AnalyzeData(record);
  ASSERT_NE(record.GetCharMetricsInfo(), oldMetrics);
  EXPECT_EQ(record.GetCharMetricsInfo()->GetCharMetrics('A')->GetAdvance(),
            want.chars.at('A').advance);
  for (int glyph = 0; glyph < want.numGlyphs; ++glyph) {
    EXPECT_EQ(analyzer.GetGlyphAdvance(static_cast<unsigned short>(glyph)),
              static_cast<float>(want.glyphAdvances[glyph]))
        << glyph;
  }
  EXPECT_EQ(analyzer.GetGlyphAdvance(static_cast<unsigned short>(want.numGlyphs)), 0.0f);
  analyzer.Close();
  EXPECT_FALSE(analyzer.IsOpen());
  EXPECT_EQ(analyzer.Analyze(), nullptr);
  EXPECT_EQ(analyzer.MakePanose(nullptr), nullptr);
  EXPECT_EQ(*analyze("collection.ttc", 2)->GetFontName(), "KelTest Coll C");
  EXPECT_EQ(analyze("collection.ttc", 3), nullptr);
  EXPECT_EQ(analyze("collection.ttc", -1), nullptr);
  EXPECT_FALSE(analyzer.Open(testFontPath("noos2.ttf").c_str(), 0));
}

TEST(FontFileAnalyzer, DefaultFontInfoRecordsEveryMappedCodePoint) {
  DefaultFontInfo defaults;
  const std::pair<const char*, int> fonts[] = {{"basic.ttf", -1},
                                               {"basic.ttf", 3},
                                               {"cjk_flag.ttf", 7},
                                               {"symbol.ttf", 300},
                                               {"supplementary.ttf", 9}};
  std::map<unsigned, int> want;  // the font applied last to a code point wins
  for (const auto& [file, font] : fonts) {
    FontFileAnalyzer analyzer;
    ASSERT_TRUE(analyzer.Open(testFontPath(file).c_str(), 0));
    analyzer.ApplyDefaultFontInfo(font, defaults);  // nothing for -1
    for (const auto& entry : expectedFace(file).chars) {
      if (font >= 0 && isStoredBit(FontUSBType::GetUSBType(entry.first))) want[entry.first] = font;
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
TEST(FontFileAnalyzer, PreferredLanguageIsByDefaultTheInterfaceLanguage) {
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale saved = environment.GetUILocale();
  environment.SetUILocale(qro_base::Locale("ko", "KR"));
  FontFileAnalyzer korean;
  environment.SetUILocale(saved);
  EXPECT_EQ(korean.GetPreferredLanguage(), 0x0412);
}

TEST(FontFileAnalyzer, LongFamilyNameIsCutAtAUnitBoundary) {
  // 1500 Hangul syllables, UTF-16BE in the file and three UTF-8 bytes each.
  const kelfont_test::ExpectedName family = expectedFace("longname.ttf").names.at(0);
  ASSERT_EQ(family.nameId, 1);
  const std::string& utf16 = family.bytes;
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
  EXPECT_EQ(*info->GetFontName(), utf8.substr(0, 2046));
}

// Missing files, a folder, sfnt heads without tables behind them, a cut
// font, and collections claiming more faces than they have (mutated fonts:
// the fuzz target).
TEST(FontFileAnalyzer, UnusableFilesAreRefused) {
  kelfont_test::TempDir dir;
  auto write = [&dir](const std::string& bytes) {
    EXPECT_TRUE(kelfont_test::writeFile(dir.file("font"), bytes));
    return dir.file("font");
  };
  FontFileAnalyzer analyzer;
  EXPECT_FALSE(analyzer.Open(dir.file("missing.ttf").c_str(), 0));
  EXPECT_EQ(analyzer.GetFileSize(), 0);
  EXPECT_FALSE(analyzer.Open(nullptr, 0));
  EXPECT_FALSE(exercise(dir.file("missing.ttf")));
  ASSERT_EQ(mkdir(dir.file("x.ttf").c_str(), 0700), 0);
  EXPECT_FALSE(exercise(dir.file("x.ttf")));
  const std::string basic = kelfont_test::readFile(testFontPath("basic.ttf"));
  const std::string heads[] = {"", std::string("\0\1\0\0", 4) + std::string(96, '\x55'), "OTTO",
                               std::string("ttcf\0\1\0\0\0\0\0\1", 12), basic.substr(0, 11)};
  for (const std::string& head : heads) EXPECT_FALSE(exercise(write(head))) << head;

  std::string bytes = kelfont_test::readFile(testFontPath("collection.ttc"));
  ASSERT_EQ(bytes.substr(0, 12), std::string("ttcf\0\1\0\0\0\0\0\3", 12));
  bytes[11] = 5;
  const std::string five = write(bytes);
  ASSERT_TRUE(analyzer.Open(five.c_str(), 0));
  EXPECT_EQ(analyzer.GetFaceCount(), 5);
  analyzer.Close();
  EXPECT_TRUE(exercise(five, 2));
  for (int face : {3, 4, 5}) EXPECT_FALSE(exercise(five, face)) << face;
  bytes[8] = '\x7F';
  bytes[11] = '\xFF';
  const std::string many = write(bytes);
  for (int face : {0, 3, 1000}) EXPECT_FALSE(exercise(many, face)) << face;
}

}  // namespace
