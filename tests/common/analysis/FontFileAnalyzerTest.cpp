// Opening faces and the font-level information of Analyze(), checked
// against what the font generator read back from its fonts with fontTools.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "base/Environment.h"
#include "base/Locale.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/FontInfo.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::ExpectedFace;
using kelfont_test::expectedFace;
using kelfont_test::testFontPath;
using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;

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

// Every generated face against fontTools' reading of it: PANOSE, the six
// range words (a word that is 0 becomes 1), the em square and hhea's line
// metrics, and no advances or kerning yet (AnalyzeData's business). A face
// without `head` (an Apple bitmap font) gets 1024 units and zero metrics,
// PANOSE and ranges: FreeType reads neither its hhea nor its OS/2, whose
// typographic values 1500/-380/50 are in the file.
TEST_F(FontFileAnalyzerTest, FontLevelInformationOfEveryFace) {
  for (const std::string& file : kelfont_test::testFontFiles()) {
    if (file == "noos2.ttf") continue;
    for (int face = 0; face < kelfont_test::expectedFaceCount(file); ++face) {
      SCOPED_TRACE(file + " face " + std::to_string(face));
      ExpectedFace want = expectedFace(file, face);
      if (!want.hasHead) want = kelfont_test::ExpectedFace{};
      std::unique_ptr<FontInfo> info = analyze(file, face);
      ASSERT_NE(info, nullptr);
      EXPECT_EQ(info->GetFileSize(),
                static_cast<int>(kelfont_test::readFile(testFontPath(file)).size()));
      ASSERT_TRUE(info->IsValid());
      for (int i = 0; i < 10; ++i) EXPECT_EQ(info->GetPanose()->Get(i), want.panose[i]) << i;
      for (int r = 0; r < 4; ++r) {
        EXPECT_EQ(info->GetSig()->GetUnicodeRange(r + 1), std::max(want.unicodeRange[r], 1u));
      }
      EXPECT_EQ(info->GetSig()->GetCodePageRange(1), std::max(want.codePageRange[0], 1u));
      EXPECT_EQ(info->GetSig()->GetCodePageRange(2), std::max(want.codePageRange[1], 1u));
      const qro_common::FontMetrics* m = info->GetFontMetrics();
      ASSERT_NE(m, nullptr);
      EXPECT_EQ(m->GetUnitsPerEm(), want.hasHead ? want.unitsPerEm : 1024);
      EXPECT_EQ(m->GetAscender(), want.ascender);
      EXPECT_EQ(m->GetDescender(), want.descender);
      EXPECT_EQ(m->GetLineGap(), want.lineGap);
      EXPECT_EQ(info->GetCharMetricsInfo(), nullptr);
      EXPECT_EQ(info->GetKerningInfo(), nullptr);
    }
  }
  EXPECT_EQ(expectedFace("ranges_zero.ttf").unicodeRange[0], 0u);
  EXPECT_EQ(expectedFace("cprange2_zero.ttf").codePageRange[1], 0u);
  EXPECT_FALSE(expectedFace("nohead.ttf").hasHead);
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

}  // namespace
