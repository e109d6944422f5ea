// The facade through the public entry points only, on caches written with
// the serializer.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "api/kelfont.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using namespace facade_test;
using kelfont_test::expectedFace;
using Answer = std::pair<int, int>;  // status, value

Answer charInfo(int font, int ch, bool bold = false, bool italic = false) {
  int advance = -12345;
  int status = GetFontCharInfo(font, ch, bold, italic, advance);
  return {status, advance};
}
Answer emSquare(int font, bool bold = false, bool italic = false) {
  int value = -12345;
  int status = GetFontEmSquareFUnit(font, bold, italic, value);
  return {status, value};
}
Answer kerning(int font, int first, int second, bool bold = false) {
  int delta = -12345;
  int status = GetKerningInfo(font, bold, false, first, second, delta);
  return {status, delta};
}
// Starts the facade on `base`; it must say so on standard output.
void init(const std::string& base) {
  testing::internal::CaptureStdout();
  ASSERT_EQ(InitKelFont("", base.c_str(), ""), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
}
// Eviction face i with every advance raised by 1000: shows whether the
// facade still holds the old data or reads the file again.
Face rewritten(int i) {
  Face face = evictFace(i);
  for (auto& entry : face.advances) entry.second = static_cast<unsigned short>(entry.second + 1000);
  return face;
}

class KelFontFacade : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(writeCache(base_, standardFaces()));
    init(base_);
  }
  void TearDown() override { UnInitKelFont(); }
  void loadEvictFonts() {
    for (int i = 0; i <= 20; ++i) ASSERT_EQ(charInfo(kFirstEvict + i, 'A'), Answer(0, 100 + i));
  }
  bool rewrite(int i) { return writeDataFile(base_, kFirstEvictInfo + i, rewritten(i)); }

  kelfont_test::TempDir dir_;
  std::string base_ = dir_.path() + "/";
};

TEST_F(KelFontFacade, FindsFontsByNameAndLocalizedName) {
  EXPECT_EQ(IsKelFontInitialized(), 0);
  const std::pair<const char*, int> names[] = {
      {"KelTest Basic", kBasic}, {"켈테스트 기본", kBasic},          {"굴림", kGulim},
      {"돋움", kDotum},          {"Roboto", kRobotoLight},          {"keltest basic", -1},
      {"", -1},                  {"KelTest Evict 21", kFontCount - 1}};
  for (const auto& [name, index] : names) EXPECT_EQ(GetFontIndex(name), index) << name;
  EXPECT_EQ(GetFontIndex(nullptr), -1);
}

TEST_F(KelFontFacade, AdvancesAndEmSquareAreThoseOfTheFontFilesPerStyle) {
  // Bold italic takes the bold face.
  const std::pair<const char*, std::pair<bool, bool>> styles[] = {{"basic.ttf", {false, false}},
                                                                  {"bold.ttf", {true, false}},
                                                                  {"italic.ttf", {false, true}},
                                                                  {"bold.ttf", {true, true}}};
  for (const auto& [file, style] : styles) {
    kelfont_test::ExpectedFace face = expectedFace(file);
    ASSERT_GT(face.chars.size(), 90u);
    for (const auto& [code, glyph] : face.chars) {
      EXPECT_EQ(charInfo(kBasic, int(code), style.first, style.second), Answer(0, glyph.advance))
          << file << " U+" << std::hex << code;
    }
    EXPECT_EQ(emSquare(kBasic, style.first, style.second), Answer(0, face.unitsPerEm));
  }
  EXPECT_NE(expectedFace("basic.ttf").chars.at('A').advance,
            expectedFace("bold.ttf").chars.at('A').advance);
  EXPECT_EQ(emSquare(kGulim, true), Answer(0, 1024));
}

TEST_F(KelFontFacade, BoldAdvancesOfTheListedFontsAreCorrected) {
  for (size_t i = 0; i < boldBands().size(); ++i) {
    int ch = static_cast<int>(0x21 + i);
    const BoldBand& band = boldBands()[i];
    EXPECT_EQ(charInfo(kGulim, ch, true), Answer(0, band.bold)) << band.advance;
    EXPECT_EQ(charInfo(kGulim, ch, true, true), Answer(0, band.bold)) << band.advance;
    EXPECT_EQ(charInfo(kGulim, ch, false, true), Answer(0, band.advance));
  }
  // 돋움 has a bold face of its own, 1051 corrected to 1031.
  EXPECT_EQ(charInfo(kDotum, 'A'), Answer(0, 1024));
  EXPECT_EQ(charInfo(kDotum, 'A', true), Answer(0, 1031));
  // Fonts outside the list keep their bold advances: 100 would become 96.
  EXPECT_EQ(charInfo(kFirstEvict, 'A', true), Answer(0, 100));
}

TEST_F(KelFontFacade, MissingCharacterIsNotRemembered) {
  for (int ch : {int('z'), 0x1F600, -1}) EXPECT_EQ(charInfo(kGulim, ch), Answer(-6, 0)) << ch;
  Face gulim = standardFaces()[4];
  ASSERT_EQ(gulim.fontName, "Gulim");
  gulim.advances['z'] = 700;
  ASSERT_TRUE(writeDataFile(base_, 4, gulim));
  ClearKelFontCacheInfo();
  EXPECT_EQ(charInfo(kGulim, 'z'), Answer(0, 700));
  EXPECT_EQ(charInfo(kGulim, 'z', true), Answer(0, 687));
}

TEST_F(KelFontFacade, StatusCodesOfTheQueries) {
  // -1: not below the font count.
  EXPECT_EQ(charInfo(kFontCount, 'A').first, -1);
  EXPECT_EQ(emSquare(kFontCount).first, -1);
  EXPECT_EQ(kerning(kFontCount, 'A', 'V').first, -1);
  EXPECT_EQ(charInfo(kFontCount - 1, 'A'), Answer(0, 121));
  // -4: a negative index passes the count test but has no face; the only
  // face of Roboto is a Light one, which never becomes its regular face.
  for (int font : {-1, static_cast<int>(kRobotoLight)}) {
    EXPECT_EQ(charInfo(font, 'A').first, -4) << font;
    EXPECT_EQ(emSquare(font).first, -4) << font;
    EXPECT_EQ(kerning(font, 'A', 'V').first, -4) << font;
  }
  // -5: the data file is missing, cut short or damaged.
  for (int font : {kNoData, kTruncated, kDamaged}) {
    EXPECT_EQ(charInfo(font, 'A').first, -5) << font;
    EXPECT_EQ(kerning(font, 'A', 'V').first, -5) << font;
    EXPECT_EQ(emSquare(font), Answer(0, 1000)) << font;
  }
  // -6: a data file with kerning and no advances.
  EXPECT_EQ(charInfo(kKerningOnly, 'A'), Answer(-6, 0));
  EXPECT_EQ(kerning(kKerningOnly, 'A', 'V'), Answer(0, -77));
  // -7: no metrics record; the advances are there all the same.
  EXPECT_EQ(emSquare(kNoMetrics).first, -7);
  EXPECT_EQ(charInfo(kNoMetrics, 'A'), Answer(0, 500));
}

TEST_F(KelFontFacade, KerningComesFromTheFaceOfTheStyleAndIsTimed) {
  for (bool bold : {false, true}) {
    kelfont_test::ExpectedFace face = expectedFace(bold ? "bold.ttf" : "basic.ttf");
    ASSERT_EQ(face.kerning.count({'A', 'V'}), 1u);
    for (const auto& [pair, delta] : face.kerning) {
      EXPECT_EQ(kerning(kBasic, int(pair.first), int(pair.second), bold), Answer(0, delta));
    }
  }
  EXPECT_EQ(kerning(kBasic, 'A', 'A'), Answer(0, 0));
  EXPECT_EQ(kerning(kGulim, 'A', 'V'), Answer(0, 0));  // a face without kerning

  startTime = endTime = static_cast<std::clock_t>(-1);
  kerning(kBasic, 'A', 'V');
  EXPECT_NE(startTime, static_cast<std::clock_t>(-1));
  EXPECT_LE(startTime, endTime);
  UnInitKelFont();
  startTime = endTime = static_cast<std::clock_t>(-1);
  EXPECT_EQ(kerning(kBasic, 'A', 'V').first, -1);  // started, never ended
  EXPECT_NE(startTime, static_cast<std::clock_t>(-1));
  EXPECT_EQ(endTime, static_cast<std::clock_t>(-1));
}

TEST_F(KelFontFacade, TheTwentySecondLoadedFontDropsTheOldest) {
  loadEvictFonts();
  ASSERT_TRUE(rewrite(0));
  EXPECT_EQ(charInfo(kFirstEvict, 'B'), Answer(0, 200));  // 21 loaded: still in memory

  EXPECT_EQ(charInfo(kFirstEvict + 21, 'A'), Answer(0, 121));  // drops font 0
  EXPECT_EQ(charInfo(kFirstEvict, 'A'), Answer(0, 100));       // answered before
  EXPECT_EQ(charInfo(kFirstEvict, 'C'), Answer(0, 1300));      // read again; drops font 1

  ASSERT_TRUE(rewrite(2));
  EXPECT_EQ(charInfo(kFirstEvict + 2, 'C'), Answer(0, 302));
  ASSERT_TRUE(rewrite(1));
  EXPECT_EQ(charInfo(kFirstEvict + 1, 'C'), Answer(0, 1301));
}

TEST_F(KelFontFacade, AFailedLoadStillDropsTheOldest) {
  loadEvictFonts();
  EXPECT_EQ(charInfo(kNoData, 'A').first, -5);  // drops font 0, adds nothing
  ASSERT_TRUE(rewrite(0));
  ASSERT_TRUE(rewrite(1));
  EXPECT_EQ(charInfo(kFirstEvict, 'B'), Answer(0, 1200));  // read again: 20 were left
  EXPECT_EQ(charInfo(kFirstEvict + 1, 'B'), Answer(0, 201));
}

TEST_F(KelFontFacade, FacesLoadedForKerningAreNeverDropped) {
  ASSERT_EQ(kerning(kFirstEvict + 21, 'A', 'V'), Answer(0, 0));
  loadEvictFonts();
  for (int font : {kGulim, kDotum, kNoMetrics}) ASSERT_EQ(charInfo(font, 'A').first, 0);
  ASSERT_TRUE(rewrite(21));
  EXPECT_EQ(charInfo(kFirstEvict + 21, 'B'), Answer(0, 221));
}

TEST_F(KelFontFacade, ClearingDropsLoadedDataButKeepsAnswers) {
  EXPECT_EQ(charInfo(kFirstEvict, 'A'), Answer(0, 100));
  ASSERT_TRUE(rewrite(0));
  ClearKelFontCacheInfo();
  EXPECT_EQ(charInfo(kFirstEvict, 'A'), Answer(0, 100));
  EXPECT_EQ(charInfo(kFirstEvict, 'C'), Answer(0, 1300));
  EXPECT_EQ(charInfo(kFirstEvict, 'A', true), Answer(0, 1100));  // a new key
}

TEST_F(KelFontFacade, UnInitDestroysTheFacadeAndARestartReadsTheNewCache) {
  ASSERT_EQ(charInfo(kGulim, '"'), Answer(0, 280));
  UnInitKelFont();
  EXPECT_EQ(gKelFontWidth, nullptr);
  EXPECT_EQ(IsKelFontInitialized(), 0);
  EXPECT_EQ(charInfo(kGulim, 'A').first, -1);
  EXPECT_EQ(GetFontIndex("Gulim"), -1);
  ClearKelFontCacheInfo();
  UnInitKelFont();
  init(base_);
  EXPECT_EQ(charInfo(kGulim, '"', true), Answer(0, 276));

  // A second start-up on a running facade reads the new cache; answers
  // given before are kept, indexes beyond the new font count are refused.
  CKelFontWidth* facade = gKelFontWidth;
  kelfont_test::TempDir other;
  std::vector<Face> faces;
  for (int i = 0; i < 5; ++i) faces.push_back(evictFace(i));
  ASSERT_TRUE(writeCache(other.path() + "/", faces));
  init(other.path() + "/");
  EXPECT_EQ(gKelFontWidth, facade);
  EXPECT_EQ(GetFontIndex("Gulim"), -1);
  EXPECT_EQ(GetFontIndex("KelTest Evict 04"), 4);
  EXPECT_EQ(charInfo(kGulim, '"', true), Answer(0, 276));
  EXPECT_EQ(charInfo(5, 'A').first, -1);
}

// A cache that is missing or damaged leaves the table empty: every font
// index is out of range. A truncated table keeps its whole records.
TEST(KelFontDamagedCache, LeavesTheTableEmptyOrKeepsWholeRecords) {
  const std::pair<const char*, std::string> cases[] = {
      {"none", ""},
      {"garbage", std::string("\xff\x00zz\n", 5) + "0016garbage"},
      {"other version", "3"},
      {"truncated", "KelTest NoMetrics"}};
  for (const auto& [label, damage] : cases) {
    SCOPED_TRACE(label);
    kelfont_test::TempDir dir;
    const std::string base = dir.path() + "/", table = base + "FInfo/Ftable";
    if (*label != 'n') {
      ASSERT_TRUE(writeCache(base, standardFaces()));
      std::string bytes = kelfont_test::readFile(table);
      ASSERT_EQ(bytes.substr(0, 25), "001613Table Version 2.054");
      if (*label == 'g') bytes = damage;
      if (*label == 'o') bytes[24] = '3';
      if (*label == 't') bytes = bytes.substr(0, bytes.find(damage));  // inside record 8
      ASSERT_TRUE(kelfont_test::writeFile(table, bytes));
    }
    ASSERT_EQ(InitKelFont("", base.c_str(), ""), 0);
    EXPECT_EQ(IsKelFontInitialized(), 0);
    if (*label == 'n') {
      EXPECT_TRUE(kelfont_test::writeFile(base + "FInfo/Fdata/probe", "x"));
    }
    const int fonts = *label == 't' ? kDotum + 1 : 0;
    EXPECT_EQ(GetFontIndex("돋움"), fonts ? kDotum : -1);
    EXPECT_EQ(GetFontIndex("KelTest NoMetrics"), -1);
    if (fonts) {
      EXPECT_EQ(charInfo(kDotum, 'A', true), Answer(0, 1031));
    }
    EXPECT_EQ(charInfo(fonts, 'A').first, -1);
    EXPECT_EQ(emSquare(fonts).first, -1);
    EXPECT_EQ(kerning(fonts, 'A', 'V').first, -1);
    EXPECT_EQ(charInfo(-1, 'A').first, -4);
    UnInitKelFont();
  }
}

}  // namespace
