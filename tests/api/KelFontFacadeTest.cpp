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
using Answer = std::pair<int, int>;  // status, value

const int kUnset = -12345;

Answer charInfo(int font, int ch, bool bold = false, bool italic = false) {
  int advance = kUnset;
  int status = GetFontCharInfo(font, ch, bold, italic, advance);
  return {status, advance};
}

Answer emSquare(int font, bool bold = false, bool italic = false) {
  int value = kUnset;
  int status = GetFontEmSquareFUnit(font, bold, italic, value);
  return {status, value};
}

Answer kerning(int font, int first, int second, bool bold = false, bool italic = false) {
  int delta = kUnset;
  int status = GetKerningInfo(font, bold, italic, first, second, delta);
  return {status, delta};
}

kelfont_test::ExpectedFace expectedFace(const std::string& file) {
  kelfont_test::ExpectedFace face;
  EXPECT_TRUE(kelfont_test::loadExpectedFace(file, 0, &face)) << file;
  return face;
}

class KelFontFacade : public ::testing::Test {
 protected:
  void SetUp() override {
    base_ = dir_.path() + "/";
    ASSERT_TRUE(writeCache(base_, standardFaces()));
    testing::internal::CaptureStdout();
    int status = InitKelFont((base_ + "qrfont.zip").c_str(), base_.c_str(), "/system/fonts/");
    printed_ = testing::internal::GetCapturedStdout();
    ASSERT_EQ(status, 0);
  }
  void TearDown() override { UnInitKelFont(); }

  kelfont_test::TempDir dir_;
  std::string base_;
  std::string printed_;
};

TEST_F(KelFontFacade, StartsFromTheCacheAndSaysSo) {
  EXPECT_EQ(printed_, "InitExtracter success\n");
  EXPECT_EQ(IsKelFontInitialized(), 0);
  EXPECT_EQ(gKelFontInitStatus, 0);
  EXPECT_NE(gKelFontWidth, nullptr);
}

TEST_F(KelFontFacade, FindsFontsByNameAndLocalizedName) {
  EXPECT_EQ(GetFontIndex("KelTest Basic"), kBasic);
  EXPECT_EQ(GetFontIndex("켈테스트 기본"), kBasic);
  EXPECT_EQ(GetFontIndex("Gulim"), kGulim);
  EXPECT_EQ(GetFontIndex("굴림"), kGulim);
  EXPECT_EQ(GetFontIndex("돋움"), kDotum);
  EXPECT_EQ(GetFontIndex("Roboto"), kRobotoLight);
  EXPECT_EQ(GetFontIndex("KelTest Evict 21"), kFontCount - 1);
  EXPECT_EQ(GetFontIndex("keltest basic"), -1);
  EXPECT_EQ(GetFontIndex(""), -1);
  EXPECT_EQ(GetFontIndex(nullptr), -1);
}

TEST_F(KelFontFacade, AdvancesAreThoseOfTheFontFilesPerStyle) {
  // Bold italic takes the bold face.
  const std::pair<const char*, std::pair<bool, bool>> styles[] = {{"basic.ttf", {false, false}},
                                                                  {"bold.ttf", {true, false}},
                                                                  {"italic.ttf", {false, true}},
                                                                  {"bold.ttf", {true, true}}};
  for (const auto& style : styles) {
    kelfont_test::ExpectedFace face = expectedFace(style.first);
    ASSERT_GT(face.chars.size(), 90u);
    for (const auto& entry : face.chars) {
      int code = static_cast<int>(entry.first);
      EXPECT_EQ(charInfo(kBasic, code, style.second.first, style.second.second),
                Answer(0, entry.second.advance))
          << style.first << " U+" << std::hex << code;
    }
  }
  // The faces really differ, so the style did choose the file.
  EXPECT_NE(expectedFace("basic.ttf").chars.at('A').advance,
            expectedFace("bold.ttf").chars.at('A').advance);
}

TEST_F(KelFontFacade, BoldAdvancesOfTheListedFontsAreCorrected) {
  for (size_t i = 0; i < boldBands().size(); ++i) {
    int ch = static_cast<int>(0x21 + i);
    const BoldBand& band = boldBands()[i];
    EXPECT_EQ(charInfo(kGulim, ch, true), Answer(0, band.bold)) << band.advance;
    EXPECT_EQ(charInfo(kGulim, ch, true, true), Answer(0, band.bold)) << band.advance;
    EXPECT_EQ(charInfo(kGulim, ch), Answer(0, band.advance));
    EXPECT_EQ(charInfo(kGulim, ch, false, true), Answer(0, band.advance));
  }
  // 돋움 has a bold face of its own: 1051 there, 1024 in the regular face.
  EXPECT_EQ(charInfo(kDotum, 'A'), Answer(0, 1024));
  EXPECT_EQ(charInfo(kDotum, 'A', true), Answer(0, 1031));
  EXPECT_EQ(charInfo(kDotum, 'A', false, true), Answer(0, 1024));
  // Fonts outside the list keep their bold advances: 100 would become 96.
  EXPECT_EQ(charInfo(kFirstEvict, 'A', true), Answer(0, 100));
}

TEST_F(KelFontFacade, MissingCharacterIsNotRemembered) {
  EXPECT_EQ(charInfo(kGulim, 'z'), Answer(-6, 0));
  EXPECT_EQ(charInfo(kGulim, 'z', true), Answer(-6, 0));
  EXPECT_EQ(charInfo(kGulim, 'z'), Answer(-6, 0));
  EXPECT_EQ(charInfo(kGulim, 0x1F600), Answer(-6, 0));
  EXPECT_EQ(charInfo(kGulim, -1), Answer(-6, 0));

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

TEST_F(KelFontFacade, EmSquareIsTheUnitsPerEmOfTheFace) {
  int unitsPerEm = expectedFace("basic.ttf").unitsPerEm;
  ASSERT_EQ(unitsPerEm, 2048);
  for (bool bold : {false, true}) {
    for (bool italic : {false, true}) EXPECT_EQ(emSquare(kBasic, bold, italic), Answer(0, 2048));
  }
  EXPECT_EQ(emSquare(kGulim, true), Answer(0, 1024));
}

TEST_F(KelFontFacade, KerningComesFromTheFaceOfTheStyle) {
  kelfont_test::ExpectedFace regular = expectedFace("basic.ttf");
  ASSERT_FALSE(regular.kerning.empty());
  for (const auto& pair : regular.kerning) {
    EXPECT_EQ(
        kerning(kBasic, static_cast<int>(pair.first.first), static_cast<int>(pair.first.second)),
        Answer(0, pair.second));
  }
  EXPECT_EQ(regular.kerning.count({'A', 'V'}), 1u);
  EXPECT_EQ(kerning(kBasic, 'A', 'A'), Answer(0, 0));
  kelfont_test::ExpectedFace bold = expectedFace("bold.ttf");
  for (const auto& pair : bold.kerning) {
    EXPECT_EQ(kerning(kBasic, static_cast<int>(pair.first.first),
                      static_cast<int>(pair.first.second), true),
              Answer(0, pair.second));
  }
  // A face without kerning answers 0 for every pair.
  EXPECT_EQ(kerning(kGulim, 'A', 'V'), Answer(0, 0));
  EXPECT_EQ(kerning(kGulim, 'A', 'V'), Answer(0, 0));
}

TEST_F(KelFontFacade, KerningQueriesTakeTheirTime) {
  startTime = endTime = static_cast<std::clock_t>(-1);
  kerning(kBasic, 'A', 'V');
  EXPECT_NE(startTime, static_cast<std::clock_t>(-1));
  EXPECT_LE(startTime, endTime);

  UnInitKelFont();
  startTime = endTime = static_cast<std::clock_t>(-1);
  EXPECT_EQ(kerning(kBasic, 'A', 'V').first, -1);
  EXPECT_NE(startTime, static_cast<std::clock_t>(-1));
  EXPECT_EQ(endTime, static_cast<std::clock_t>(-1));
}

// A data file rewritten behind the facade's back shows whether the facade
// still holds the face's data (old values) or reads the file again (new
// values).
Face rewritten(int i) {
  Face face = evictFace(i);
  for (auto& entry : face.advances) entry.second = static_cast<unsigned short>(entry.second + 1000);
  return face;
}

TEST_F(KelFontFacade, TheTwentySecondLoadedFontDropsTheOldest) {
  for (int i = 0; i <= 20; ++i) ASSERT_EQ(charInfo(kFirstEvict + i, 'A'), Answer(0, 100 + i));
  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo, rewritten(0)));
  EXPECT_EQ(charInfo(kFirstEvict, 'B'), Answer(0, 200));  // 21 loaded: still in memory

  EXPECT_EQ(charInfo(kFirstEvict + 21, 'A'), Answer(0, 121));  // drops font 0
  EXPECT_EQ(charInfo(kFirstEvict, 'A'), Answer(0, 100));       // answered before
  EXPECT_EQ(charInfo(kFirstEvict, 'C'), Answer(0, 1300));      // read again; drops font 1

  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo + 2, rewritten(2)));
  EXPECT_EQ(charInfo(kFirstEvict + 2, 'C'), Answer(0, 302));
  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo + 1, rewritten(1)));
  EXPECT_EQ(charInfo(kFirstEvict + 1, 'C'), Answer(0, 1301));
}

TEST_F(KelFontFacade, AFailedLoadStillDropsTheOldest) {
  for (int i = 0; i <= 20; ++i) ASSERT_EQ(charInfo(kFirstEvict + i, 'A'), Answer(0, 100 + i));
  EXPECT_EQ(charInfo(kNoData, 'A').first, -5);  // drops font 0, adds nothing
  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo, rewritten(0)));
  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo + 1, rewritten(1)));
  EXPECT_EQ(charInfo(kFirstEvict, 'B'), Answer(0, 1200));  // read again: 20 were left
  EXPECT_EQ(charInfo(kFirstEvict + 1, 'B'), Answer(0, 201));
}

TEST_F(KelFontFacade, FacesLoadedForKerningAreNeverDropped) {
  ASSERT_EQ(kerning(kFirstEvict + 21, 'A', 'V'), Answer(0, 0));
  for (int i = 0; i <= 20; ++i) ASSERT_EQ(charInfo(kFirstEvict + i, 'A'), Answer(0, 100 + i));
  for (int font : {kGulim, kDotum, kNoMetrics}) ASSERT_EQ(charInfo(font, 'A').first, 0);
  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo + 21, rewritten(21)));
  EXPECT_EQ(charInfo(kFirstEvict + 21, 'B'), Answer(0, 221));
}

TEST_F(KelFontFacade, ClearingDropsLoadedDataButKeepsAnswers) {
  EXPECT_EQ(charInfo(kFirstEvict, 'A'), Answer(0, 100));
  ASSERT_TRUE(writeDataFile(base_, kFirstEvictInfo, rewritten(0)));
  EXPECT_EQ(charInfo(kFirstEvict, 'B'), Answer(0, 200));
  ClearKelFontCacheInfo();
  EXPECT_EQ(charInfo(kFirstEvict, 'A'), Answer(0, 100));
  EXPECT_EQ(charInfo(kFirstEvict, 'C'), Answer(0, 1300));
  EXPECT_EQ(charInfo(kFirstEvict, 'A', true), Answer(0, 1100));  // a new key
}

TEST_F(KelFontFacade, UnInitDestroysTheFacadeAndKeepsTheStatus) {
  ASSERT_EQ(charInfo(kGulim, '"'), Answer(0, 280));
  UnInitKelFont();
  EXPECT_EQ(gKelFontWidth, nullptr);
  EXPECT_EQ(IsKelFontInitialized(), 0);
  EXPECT_EQ(charInfo(kGulim, 'A').first, -1);
  EXPECT_EQ(emSquare(kGulim).first, -1);
  EXPECT_EQ(GetFontIndex("Gulim"), -1);
  ClearKelFontCacheInfo();
  UnInitKelFont();

  testing::internal::CaptureStdout();
  EXPECT_EQ(InitKelFont("", base_.c_str(), ""), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
  EXPECT_EQ(charInfo(kGulim, '"', true), Answer(0, 276));
}

TEST_F(KelFontFacade, ASecondStartUpReadsTheNewCacheAndKeepsOldAnswers) {
  ASSERT_EQ(charInfo(kGulim, 'A'), Answer(0, boldBands()[0x41 - 0x21].advance));
  CKelFontWidth* facade = gKelFontWidth;

  kelfont_test::TempDir other;
  std::string otherBase = other.path() + "/";
  std::vector<Face> faces;
  for (int i = 0; i < 5; ++i) faces.push_back(evictFace(i));
  ASSERT_TRUE(writeCache(otherBase, faces));
  testing::internal::CaptureStdout();
  EXPECT_EQ(InitKelFont("", otherBase.c_str(), ""), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
  EXPECT_EQ(gKelFontWidth, facade);
  EXPECT_EQ(GetFontIndex("Gulim"), -1);
  EXPECT_EQ(GetFontIndex("KelTest Evict 04"), 4);
  // Answers given before the start-up are kept; indexes beyond the new
  // table's font count are refused.
  EXPECT_EQ(charInfo(kGulim, 'A'), Answer(0, boldBands()[0x41 - 0x21].advance));
  EXPECT_EQ(charInfo(5, 'A').first, -1);
}

// A cache that is missing or damaged leaves the table empty: every font
// index is out of range.
class KelFontDamagedCache : public ::testing::Test {
 protected:
  void TearDown() override { UnInitKelFont(); }

  void expectEmptyTable() {
    ASSERT_EQ(InitKelFont("", base_.c_str(), ""), 0);
    EXPECT_EQ(IsKelFontInitialized(), 0);
    EXPECT_EQ(charInfo(0, 'A').first, -1);
    EXPECT_EQ(emSquare(0).first, -1);
    EXPECT_EQ(kerning(0, 'A', 'V').first, -1);
    EXPECT_EQ(GetFontIndex("KelTest Basic"), -1);
    EXPECT_EQ(charInfo(-1, 'A').first, -4);
  }

  std::string table() const { return base_ + "FInfo/Ftable"; }

  kelfont_test::TempDir dir_;
  std::string base_ = dir_.path() + "/";
};

TEST_F(KelFontDamagedCache, NoCacheAtAll) {
  expectEmptyTable();
  EXPECT_TRUE(kelfont_test::readFile(table()).empty());
  // The serializer made its folders.
  ASSERT_TRUE(kelfont_test::writeFile(base_ + "FInfo/Fdata/probe", "x"));
}

TEST_F(KelFontDamagedCache, GarbageTable) {
  ASSERT_TRUE(writeCache(base_, standardFaces()));
  ASSERT_TRUE(kelfont_test::writeFile(table(), std::string("\xff\x00zz\n", 5) + "0016garbage"));
  expectEmptyTable();
}

TEST_F(KelFontDamagedCache, TableOfAnotherVersion) {
  ASSERT_TRUE(writeCache(base_, standardFaces()));
  std::string bytes = kelfont_test::readFile(table());
  ASSERT_EQ(bytes.substr(0, 25), "001613Table Version 2.054");
  bytes[24] = '3';
  ASSERT_TRUE(kelfont_test::writeFile(table(), bytes));
  expectEmptyTable();
}

TEST_F(KelFontDamagedCache, TruncatedTableKeepsTheWholeRecords) {
  ASSERT_TRUE(writeCache(base_, standardFaces()));
  std::string bytes = kelfont_test::readFile(table());
  size_t cut = bytes.find("KelTest NoMetrics");  // inside the eighth record
  ASSERT_NE(cut, std::string::npos);
  ASSERT_TRUE(kelfont_test::writeFile(table(), bytes.substr(0, cut)));
  ASSERT_EQ(InitKelFont("", base_.c_str(), ""), 0);
  EXPECT_EQ(GetFontIndex("돋움"), kDotum);
  EXPECT_EQ(GetFontIndex("KelTest NoMetrics"), -1);
  EXPECT_EQ(charInfo(kDotum, 'A', true), Answer(0, 1031));
  EXPECT_EQ(charInfo(kDotum + 1, 'A').first, -1);
}

}  // namespace
