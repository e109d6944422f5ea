// Opening faces and the font-level information of Analyze(), checked
// against what the font generator read back from its fonts with fontTools.

#include "common/analysis/FontFileAnalyzer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "base/Environment.h"
#include "base/Locale.h"
#include "common/font_info/FontInfo.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::testFontPath;
using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using Names = std::map<int, std::string>;

ExpectedFace expected(const std::string& file, int faceIndex = 0) {
  ExpectedFace face;
  std::string error;
  EXPECT_TRUE(kelfont_test::loadExpectedFace(file, faceIndex, &face, &error)) << error;
  return face;
}

// UTF-8 of big-endian UTF-16 text without surrogates.
std::string bmpUtf16beToUtf8(const std::string& bytes) {
  std::string out;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    unsigned u =
        static_cast<unsigned char>(bytes[i]) << 8 | static_cast<unsigned char>(bytes[i + 1]);
    if (u < 0x80) {
      out += static_cast<char>(u);
    } else if (u < 0x800) {
      out += static_cast<char>(0xC0 | u >> 6);
      out += static_cast<char>(0x80 | (u & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | u >> 12);
      out += static_cast<char>(0x80 | (u >> 6 & 0x3F));
      out += static_cast<char>(0x80 | (u & 0x3F));
    }
  }
  return out;
}

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

TEST_F(FontFileAnalyzerTest, OpenAndCloseTrackTheFace) {
  EXPECT_FALSE(analyzer_.IsOpen());
  EXPECT_EQ(analyzer_.Analyze(), nullptr);
  ASSERT_TRUE(analyzer_.Open(testFontPath("basic.ttf").c_str(), 0));
  EXPECT_TRUE(analyzer_.IsOpen());
  EXPECT_EQ(analyzer_.GetFaceCount(), 1);
  EXPECT_EQ(analyzer_.GetFileSize(),
            static_cast<int>(kelfont_test::readFile(testFontPath("basic.ttf")).size()));
  // A second Open replaces the face.
  ASSERT_TRUE(analyzer_.Open(testFontPath("bold.ttf").c_str(), 0));
  std::unique_ptr<FontInfo> info(analyzer_.Analyze());
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(*info->GetStyleName(), "Bold");
  analyzer_.Close();
  EXPECT_FALSE(analyzer_.IsOpen());
  analyzer_.Close();
  EXPECT_EQ(analyzer_.Analyze(), nullptr);
  EXPECT_EQ(analyzer_.MakeCharMetricsInfo(), nullptr);
  EXPECT_EQ(analyzer_.MakePanose(nullptr), nullptr);
  EXPECT_EQ(analyzer_.MakeSig(nullptr), nullptr);
}

TEST_F(FontFileAnalyzerTest, FaceWithoutOs2IsRefused) {
  EXPECT_FALSE(expected("noos2.ttf").hasOs2);
  EXPECT_FALSE(analyzer_.Open(testFontPath("noos2.ttf").c_str(), 0));
  EXPECT_FALSE(analyzer_.IsOpen());
  EXPECT_EQ(analyzer_.Analyze(), nullptr);
}

TEST_F(FontFileAnalyzerTest, CollectionFaces) {
  const char* families[] = {"KelTest Coll A", "KelTest Coll B", "KelTest Coll C"};
  for (int face = 0; face < 3; ++face) {
    std::unique_ptr<FontInfo> info = analyze("collection.ttc", face);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(analyzer_.GetFaceCount(), 3);
    EXPECT_EQ(*info->GetFamilyName(), families[face]);
    EXPECT_EQ(fontName(*info), families[face]);
  }
  EXPECT_FALSE(analyzer_.Open(testFontPath("collection.ttc").c_str(), 3));
  EXPECT_FALSE(analyzer_.Open(testFontPath("collection.ttc").c_str(), -1));
}

TEST_F(FontFileAnalyzerTest, BasicFontLevelInformation) {
  ExpectedFace want = expected("basic.ttf");
  std::unique_ptr<FontInfo> info = analyze("basic.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetFileSize(),
            static_cast<int>(kelfont_test::readFile(testFontPath("basic.ttf")).size()));
  EXPECT_EQ(*info->GetStyleName(), "Regular");
  EXPECT_EQ(*info->GetFamilyName(), "KelTest Basic");
  EXPECT_EQ(fontName(*info), "KelTest Basic");
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, "KelTest Basic"}}));
  EXPECT_FALSE(info->HasVerticalMetrics());
  EXPECT_EQ(info->GetPitch(), 2);
  EXPECT_FALSE(info->IsCJK());
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
  ExpectedFace want = expected("nohead.ttf");
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

TEST_F(FontFileAnalyzerTest, VerticalFlagFollowsTheVerticalHeader) {
  std::unique_ptr<FontInfo> info = analyze("vertical.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_TRUE(expected("vertical.ttf").vertical);
  EXPECT_TRUE(info->HasVerticalMetrics());
}

TEST_F(FontFileAnalyzerTest, PitchFromPostThenPclt) {
  struct Case {
    const char* file;
    int pitch;
  };
  // nopost_pclt.ttf: its PCLT pitch is the width of the space, which makes
  // it fixed pitch by the PCLT rule; nopost.ttf has neither table.
  const Case cases[] = {
      {"fixedpitch.ttf", 1}, {"basic.ttf", 2}, {"nopost_pclt.ttf", 1}, {"nopost.ttf", 0}};
  for (const Case& c : cases) {
    std::unique_ptr<FontInfo> info = analyze(c.file);
    ASSERT_NE(info, nullptr) << c.file;
    EXPECT_EQ(info->GetPitch(), c.pitch) << c.file;
  }
  EXPECT_GT(expected("nopost_pclt.ttf").pcltPitch, 0);
}

TEST_F(FontFileAnalyzerTest, ZeroRangeWordsBecomeOne) {
  ExpectedFace want = expected("cprange2_zero.ttf");
  ASSERT_EQ(want.codePageRange[1], 0u);
  std::unique_ptr<FontInfo> info = analyze("cprange2_zero.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetSig()->GetUnicodeRange(1), want.unicodeRange[0]);
  EXPECT_EQ(info->GetSig()->GetUnicodeRange(2), 1u);
  EXPECT_EQ(info->GetSig()->GetUnicodeRange(4), 1u);
  EXPECT_EQ(info->GetSig()->GetCodePageRange(1), want.codePageRange[0]);
  EXPECT_EQ(info->GetSig()->GetCodePageRange(2), 1u);

  info = analyze("ranges_zero.ttf");
  ASSERT_NE(info, nullptr);
  for (int r = 1; r <= 4; ++r) EXPECT_EQ(info->GetSig()->GetUnicodeRange(r), 1u) << r;
  EXPECT_EQ(info->GetSig()->GetCodePageRange(1), 1u);
  EXPECT_EQ(info->GetSig()->GetCodePageRange(2), 1u);
  EXPECT_TRUE(info->GetSig()->IsUnicodeRangeBitSet(0));
  EXPECT_TRUE(info->GetSig()->IsUnicodeRangeBitSet(32));
  EXPECT_FALSE(info->IsCJK());
}

TEST_F(FontFileAnalyzerTest, EastAsianFlag) {
  const std::pair<const char*, bool> cases[] = {
      {"cjk_flag.ttf", true},      {"cjk_range_only.ttf", true}, {"cjk_codepage_only.ttf", true},
      {"cjk_jamo_only.ttf", true}, {"basic.ttf", false},         {"symbol.ttf", false},
  };
  for (const auto& c : cases) {
    std::unique_ptr<FontInfo> info = analyze(c.first);
    ASSERT_NE(info, nullptr) << c.first;
    EXPECT_EQ(info->IsCJK(), c.second) << c.first;
  }
}

TEST_F(FontFileAnalyzerTest, MacRomanFamilyNameBecomesEnglish) {
  std::unique_ptr<FontInfo> info = analyze("macroman.ttf");
  ASSERT_NE(info, nullptr);
  // Bytes "KelTest Caf" 8E 20 DB: e-acute and the euro sign.
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, "KelTest Caf\xC3\xA9 \xE2\x82\xAC"}}));
  EXPECT_EQ(fontName(*info), "KelTest Caf\xC3\xA9 \xE2\x82\xAC");
}

TEST_F(FontFileAnalyzerTest, MacintoshEncodingsOneAndThree) {
  // Encoding 1 (Japanese): the Shift-JIS bytes as they are, under 0x0411.
  std::unique_ptr<FontInfo> info = analyze("macenc1.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0411, "\x83\x65\x83\x58\x83\x67"}}));
  EXPECT_EQ(fontName(*info), "\x83\x65\x83\x58\x83\x67");

  // Encoding 3 (Korean) contributes nothing; the Windows record fills 0x0412.
  info = analyze("macenc3.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0412, "케이테스트 윈도"}}));
  EXPECT_EQ(fontName(*info), "케이테스트 윈도");
}

TEST_F(FontFileAnalyzerTest, MacLanguagesWithoutWindowsEquivalentAndIsoRecords) {
  std::unique_ptr<FontInfo> info = analyze("macother.ttf");
  ASSERT_NE(info, nullptr);
  // Mac languages 60 and 200 both give 0xFFFF, and the first record keeps
  // it; the ISO record keeps its language 0, the smallest key.
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0, "KelTest ISO"}, {0xFFFF, "KelTest Mac60"}}));
  EXPECT_EQ(fontName(*info), "KelTest ISO");
}

TEST_F(FontFileAnalyzerTest, FontNamePrefersEnglishThenTheInterfaceLanguageThenTheSmallest) {
  for (unsigned short preferred : {0x0409, 0x0411, 0x0412, 0x0000}) {
    analyzer_.SetPreferredLanguage(preferred);
    std::unique_ptr<FontInfo> info = analyze("winnames.ttf");
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, "KelTest Win"}, {0x0412, "케이테스트"}}));
    EXPECT_EQ(fontName(*info), "KelTest Win") << preferred;

    info = analyze("winnames_ko.ttf");
    ASSERT_NE(info, nullptr);
    const char* name = preferred == 0x0412 ? "케이테스트 한국어" : "ケイテスト";
    EXPECT_EQ(fontName(*info), name) << preferred;

    info = analyze("winnames_other.ttf");
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->GetLocalizedNames(),
              (Names{{0x0407, "KelTest Deutsch"}, {0x040C, "KelTest Français"}}));
    EXPECT_EQ(fontName(*info), "KelTest Deutsch") << preferred;
  }
}

TEST_F(FontFileAnalyzerTest, PreferredLanguageIsTheInterfaceLanguage) {
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale saved = environment.GetUILocale();
  environment.SetUILocale(qro_base::Locale("ko", "KR"));
  FontFileAnalyzer korean;
  environment.SetUILocale(saved);
  EXPECT_EQ(korean.GetPreferredLanguage(), 0x0412);
  ASSERT_TRUE(korean.Open(testFontPath("winnames_ko.ttf").c_str(), 0));
  std::unique_ptr<FontInfo> info(korean.Analyze());
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(*info->GetFontName(), "케이테스트 한국어");
}

TEST_F(FontFileAnalyzerTest, UnicodePlatformRecordTakesTheEnglishKey) {
  std::unique_ptr<FontInfo> info = analyze("unicode03.ttf");
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, "KelTest Uni"}}));
  EXPECT_EQ(fontName(*info), "KelTest Uni");
}

TEST_F(FontFileAnalyzerTest, SurrogatePairInAFamilyName) {
  std::unique_ptr<FontInfo> info = analyze("emoji_name.ttf");
  ASSERT_NE(info, nullptr);
  // U+1F600 as F0 9F 98 80, then its low surrogate DE00 again as ED B8 80.
  const std::string name = "Kel\xF0\x9F\x98\x80\xED\xB8\x80";
  EXPECT_EQ(info->GetLocalizedNames(), (Names{{0x0409, name}}));
  EXPECT_EQ(fontName(*info), name);
}

TEST_F(FontFileAnalyzerTest, LongFamilyNameIsCutAtAUnitBoundary) {
  ExpectedFace want = expected("longname.ttf");
  ASSERT_EQ(want.familyNames().size(), 1u);
  const std::string full = bmpUtf16beToUtf8(want.familyNames()[0].bytes);
  ASSERT_EQ(full.size(), 4500u);
  std::unique_ptr<FontInfo> info = analyze("longname.ttf");
  ASSERT_NE(info, nullptr);
  // 1023 units fit the UTF-16 buffer; of their UTF-8 form, three bytes per
  // syllable, 682 syllables (2046 bytes) fit the 2048-byte buffer with its
  // terminator.
  const std::string& name = info->GetLocalizedNames().at(0x0409);
  EXPECT_EQ(name.size(), 2046u);
  EXPECT_EQ(name, full.substr(0, 2046));
  EXPECT_EQ(fontName(*info), name);
}

TEST(ConvertU2ToUtf8, EncodesUnitByUnit) {
  struct Case {
    std::u16string in;
    std::string out;
  };
  const Case cases[] = {
      {u"", ""},
      {u"Az", "Az"},
      {u"\u00E9\u07FF", "\xC3\xA9\xDF\xBF"},
      {u"\u0800\uAC00\uFFFF", "\xE0\xA0\x80\xEA\xB0\x80\xEF\xBF\xBF"},
      // A pair: its code point, then the low surrogate on its own.
      {u"\U0001F600", "\xF0\x9F\x98\x80\xED\xB8\x80"},
      {u"\U0010FFFFx", "\xF4\x8F\xBF\xBF\xED\xBF\xBFx"},
      // Lone surrogates take three bytes each.
      {std::u16string{0xD83D, u'a'},
       "\xED\xA0\xBD"
       "a"},
      {std::u16string{0xDE00, 0xD83D}, "\xED\xB8\x80\xED\xA0\xBD"},
  };
  for (const Case& c : cases) {
    std::basic_string<unsigned short> units(c.in.begin(), c.in.end());
    char out[64];
    std::memset(out, 'X', sizeof out);
    EXPECT_EQ(FontFileAnalyzer::ConvertU2ToUtf8(out, units.c_str()), out);
    EXPECT_EQ(std::string(out), c.out);
  }
}

TEST(ConvertU2ToUtf8, BoundedFormStopsBeforeAUnitThatDoesNotFit) {
  const unsigned short in[] = {'a', 0xAC00, 0xD83D, 0xDE00, 'b', 0};
  // Whole: 61 EA B0 80 F0 9F 98 80 ED B8 80 62 (12 bytes).
  const std::pair<std::size_t, std::string> cases[] = {
      {1, ""},
      {2, "a"},
      {4, "a"},
      {5, "a\xEA\xB0\x80"},
      {9, "a\xEA\xB0\x80\xF0\x9F\x98\x80"},
      {11, "a\xEA\xB0\x80\xF0\x9F\x98\x80"},
      {12, "a\xEA\xB0\x80\xF0\x9F\x98\x80\xED\xB8\x80"},
      {13,
       "a\xEA\xB0\x80\xF0\x9F\x98\x80\xED\xB8\x80"
       "b"},
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
