// Opening faces and the font-level information of Analyze(), checked
// against what the font generator read back from its fonts with fontTools.

#include "common/analysis/FontFileAnalyzer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "base/Environment.h"
#include "base/Locale.h"
#include "base/TextConversion.h"
#include "common/font_info/FontInfo.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::expectedFace;
using kelfont_test::testFontPath;
using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using Names = std::map<int, std::string>;

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

TEST_F(FontFileAnalyzerTest, BasicFontLevelInformation) {
  ExpectedFace want = expectedFace("basic.ttf");
  std::unique_ptr<FontInfo> info = analyze("basic.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetFileSize(),
            static_cast<int>(kelfont_test::readFile(testFontPath("basic.ttf")).size()));
  EXPECT_EQ(*info->GetStyleName(), "Regular");
  EXPECT_EQ(*info->GetFamilyName(), "KelTest Basic");
  EXPECT_EQ(fontName(*info), "KelTest Basic");
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, "KelTest Basic"}}));
  EXPECT_TRUE(info->IsValid());
  for (int i = 0; i < 10; ++i) EXPECT_EQ(info->GetPanose()->Get(i), want.panose[i]) << i;
  for (int r = 0; r < 4; ++r) {
    EXPECT_EQ(info->GetSig()->GetUnicodeRange(r + 1), want.unicodeRange[r]);
  }
  EXPECT_EQ(info->GetSig()->GetCodePageRange(1), want.codePageRange[0]);
  EXPECT_EQ(info->GetSig()->GetCodePageRange(2), want.codePageRange[1]);
  ASSERT_NE(info->GetFontMetrics(), nullptr);
  EXPECT_EQ(info->GetFontMetrics()->GetUnitsPerEm(), want.unitsPerEm);
  EXPECT_EQ(info->GetFontMetrics()->GetAscender(), want.ascender);
  EXPECT_EQ(info->GetFontMetrics()->GetDescender(), want.descender);
  EXPECT_EQ(info->GetFontMetrics()->GetLineGap(), want.lineGap);
  // Advances and kerning are AnalyzeData's business.
  EXPECT_EQ(info->GetCharMetricsInfo(), nullptr);
  EXPECT_EQ(info->GetKerningInfo(), nullptr);
}

TEST_F(FontFileAnalyzerTest, FaceWithoutHeadGets1024UnitsAndTheOs2TypoMetrics) {
  ExpectedFace want = expectedFace("nohead.ttf");
  ASSERT_FALSE(want.hasHead);
  std::unique_ptr<FontInfo> info = analyze("nohead.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetFontMetrics()->GetUnitsPerEm(), 1024);
  // For a face without `head` (an Apple bitmap font) FreeType does not read
  // the OS/2 table and reports a zero-filled one: its typographic values
  // are all 0, not the 1500/-380/50 stored in the file.
  EXPECT_EQ(info->GetFontMetrics()->GetAscender(), 0);
  EXPECT_EQ(info->GetFontMetrics()->GetDescender(), 0);
  EXPECT_EQ(info->GetFontMetrics()->GetLineGap(), 0);
  EXPECT_EQ(fontName(*info), "KelTest NoHead");
}

TEST_F(FontFileAnalyzerTest, PitchVerticalAndEastAsianFlags) {
  const struct {
    const char* file;
    int pitch;
    bool vertical;
    bool cjk;
  } cases[] = {
      {"fixedpitch.ttf", 1, false, false}, {"basic.ttf", 2, false, false},
      // Pitch from PCLT without post: the width of the space makes it fixed.
      {"nopost_pclt.ttf", 1, false, false}, {"nopost.ttf", 0, false, false},
      {"vertical.ttf", 2, true, false},    {"symbol.ttf", 2, false, false},
      // Unicode-range bits 56 or 28, or code page 949, make a face East Asian.
      {"cjk_flag.ttf", 2, false, true},     {"cjk_range_only.ttf", 2, false, true},
      {"cjk_codepage_only.ttf", 2, false, true}, {"cjk_jamo_only.ttf", 2, false, true},
  };
  for (const auto& c : cases) {
    std::unique_ptr<FontInfo> info = analyze(c.file);
    ASSERT_NE(info, nullptr) << c.file;
    EXPECT_EQ(info->GetPitch(), c.pitch) << c.file;
    EXPECT_EQ(info->HasVerticalMetrics(), c.vertical) << c.file;
    EXPECT_EQ(info->IsCJK(), c.cjk) << c.file;
  }
  EXPECT_GT(expectedFace("nopost_pclt.ttf").pcltPitch, 0);
  EXPECT_TRUE(expectedFace("vertical.ttf").vertical);
}

// Each of the six range words that is 0 becomes 1; the others are kept.
TEST_F(FontFileAnalyzerTest, ZeroRangeWordsBecomeOne) {
  for (const char* file : {"cprange2_zero.ttf", "ranges_zero.ttf"}) {
    ExpectedFace want = expectedFace(file);
    ASSERT_EQ(want.codePageRange[1], 0u);
    std::unique_ptr<FontInfo> info = analyze(file);
    ASSERT_NE(info, nullptr);
    for (int r = 0; r < 4; ++r) {
      EXPECT_EQ(info->GetSig()->GetUnicodeRange(r + 1), std::max(want.unicodeRange[r], 1u)) << file;
    }
    EXPECT_EQ(info->GetSig()->GetCodePageRange(1), std::max(want.codePageRange[0], 1u)) << file;
    EXPECT_EQ(info->GetSig()->GetCodePageRange(2), 1u) << file;
  }
}

// Localized family names by platform, encoding and language, and the font
// name chosen from them, with English as the preferred language.
TEST_F(FontFileAnalyzerTest, LocalizedNamesAndFontName) {
  const struct {
    const char* file;
    Names names;
    const char* fontName;
  } cases[] = {
      // Mac Roman bytes "KelTest Caf" 8E 20 DB: e-acute and the euro sign.
      {"macroman.ttf", {{0x0409, "KelTest Caf\xC3\xA9 \xE2\x82\xAC"}}, "KelTest Caf\xC3\xA9 \xE2\x82\xAC"},
      // Mac encoding 1 (Japanese): the Shift-JIS bytes as they are.
      {"macenc1.ttf", {{0x0411, "\x83\x65\x83\x58\x83\x67"}}, "\x83\x65\x83\x58\x83\x67"},
      // Mac encoding 3 (Korean) contributes nothing; the Windows record does.
      {"macenc3.ttf", {{0x0412, "케이테스트 윈도"}}, "케이테스트 윈도"},
      // Mac languages 60 and 200 both give 0xFFFF and the first record
      // keeps it; the ISO record keeps language 0, the smallest key.
      {"macother.ttf", {{0, "KelTest ISO"}, {0xFFFF, "KelTest Mac60"}}, "KelTest ISO"},
      {"unicode03.ttf", {{0x0409, "KelTest Uni"}}, "KelTest Uni"},
      {"winnames_other.ttf", {{0x0407, "KelTest Deutsch"}, {0x040C, "KelTest Français"}},
       "KelTest Deutsch"},
      // U+1F600 as F0 9F 98 80, then its low surrogate DE00 again as ED B8 80.
      {"emoji_name.ttf", {{0x0409, "Kel\xF0\x9F\x98\x80\xED\xB8\x80"}},
       "Kel\xF0\x9F\x98\x80\xED\xB8\x80"},
  };
  for (const auto& c : cases) {
    std::unique_ptr<FontInfo> info = analyze(c.file);
    ASSERT_NE(info, nullptr) << c.file;
    EXPECT_EQ(info->GetLocalizedNames(), c.names) << c.file;
    EXPECT_EQ(fontName(*info), c.fontName) << c.file;
  }
}

TEST_F(FontFileAnalyzerTest, FontNamePrefersEnglishThenTheInterfaceLanguageThenTheSmallest) {
  for (unsigned short preferred : {0x0411, 0x0412}) {
    analyzer_.SetPreferredLanguage(preferred);
    std::unique_ptr<FontInfo> info = analyze("winnames.ttf");
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, "KelTest Win"}, {0x0412, "케이테스트"}}));
    EXPECT_EQ(fontName(*info), "KelTest Win") << preferred;
    info = analyze("winnames_ko.ttf");  // 0x0411 and 0x0412
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(fontName(*info), preferred == 0x0412 ? "케이테스트 한국어" : "ケイテスト") << preferred;
  }
  // The preferred language is by default the interface language.
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
    unsigned unit = static_cast<unsigned char>(utf16[i]) << 8 | static_cast<unsigned char>(utf16[i + 1]);
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

TEST(ConvertU2ToUtf8, EncodesUnitByUnit) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"A\u00E9\u07FF\u0800\uFFFF", "A\xC3\xA9\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
      // A pair: its code point, then the low surrogate on its own.
      {u"\U0010FFFFx", "\xF4\x8F\xBF\xBF\xED\xBF\xBFx"},
      // Lone surrogates take three bytes each.
      {std::u16string{0xDE00, 0xD83D}, "\xED\xB8\x80\xED\xA0\xBD"},
  };
  for (const auto& c : cases) {
    qro_base::u16string units(c.first.begin(), c.first.end());
    char out[64];
    EXPECT_EQ(FontFileAnalyzer::ConvertU2ToUtf8(out, units.c_str()), out);
    EXPECT_EQ(std::string(out), c.second);
  }
}

TEST(ConvertU2ToUtf8, BoundedFormStopsBeforeAUnitThatDoesNotFit) {
  const unsigned short in[] = {'a', 0xAC00, 0xD83D, 0xDE00, 'b', 0};
  // Whole: 61 EA B0 80 F0 9F 98 80 ED B8 80 62 (12 bytes).
  const std::pair<std::size_t, std::string> cases[] = {
      {1, ""},
      {4, "a"},
      {5, "a\xEA\xB0\x80"},
      {11, "a\xEA\xB0\x80\xF0\x9F\x98\x80"},
      {13, "a\xEA\xB0\x80\xF0\x9F\x98\x80\xED\xB8\x80" "b"},
  };
  for (const auto& c : cases) {
    char out[16];
    std::memset(out, 'X', sizeof out);
    EXPECT_EQ(FontFileAnalyzer::ConvertU2ToUtf8(out, c.first, in), c.second.size()) << c.first;
    EXPECT_EQ(std::string(out), c.second) << c.first;
    EXPECT_EQ(out[c.first], 'X') << "wrote past " << c.first;
  }
  char untouched = 'X';
  EXPECT_EQ(FontFileAnalyzer::ConvertU2ToUtf8(&untouched, 0, in), 0u);
  EXPECT_EQ(untouched, 'X');
}

}  // namespace
