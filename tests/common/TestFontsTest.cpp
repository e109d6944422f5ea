// Smoke check of the generated test fonts: FreeType opens every one with the
// face count the generator listed, every face has its expected values, and
// the glyphs of a face have distinct advances, so that a character measured
// through the wrong glyph shows in the analyzer tests. What each font was
// made for is asserted by the tests that use it.

#include <ft2build.h>
#include FT_FREETYPE_H

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/TestFonts.h"

namespace {

TEST(TestFonts, EveryGeneratedFontOpensWithItsFacesAndExpectedValues) {
  FT_Library library = nullptr;
  ASSERT_EQ(FT_Init_FreeType(&library), 0);
  std::vector<std::string> files = kelfont_test::testFontFiles();
  EXPECT_GE(files.size(), 31u);
  for (const std::string& file : files) {
    FT_Face face = nullptr;
    ASSERT_EQ(FT_New_Face(library, kelfont_test::testFontPath(file).c_str(), 0, &face), 0) << file;
    EXPECT_EQ(face->num_faces, kelfont_test::expectedFaceCount(file)) << file;
    FT_Done_Face(face);
    for (int index = 0; index < kelfont_test::expectedFaceCount(file); ++index) {
      kelfont_test::ExpectedFace want;
      std::string error;
      ASSERT_TRUE(kelfont_test::loadExpectedFace(file, index, &want, &error)) << error;
      EXPECT_FALSE(want.chars.empty()) << file;
      EXPECT_EQ(static_cast<int>(want.glyphs.size()), want.numGlyphs) << file;
      std::set<int> advances;
      for (const auto& glyph : want.glyphs) advances.insert(glyph.advance);
      EXPECT_EQ(advances.size(), want.glyphs.size()) << file;
    }
  }
  FT_Done_FreeType(library);
}

}  // namespace
