#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "common/font_info/FontInfo.h"
#include "common/registry/FontFacePool.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using qro_common::FontFacePool;
using qro_common::FontInfo;

std::unique_ptr<FontInfo> makeInfo(int infoIndex, const std::string& path, int faceIndex = 0) {
  auto info = std::make_unique<FontInfo>();
  info->SetInfoIndex(infoIndex);
  info->SetFilePath(new std::string(path));
  info->SetFaceIndex(static_cast<unsigned char>(faceIndex));
  return info;
}

// Unscaled advance of a character, as FreeType reads it from the face.
long advanceOf(FT_Face face, FT_ULong ch) {
  if (FT_Load_Char(face, ch, FT_LOAD_NO_SCALE) != 0) return -1;
  return face->glyph->metrics.horiAdvance;
}

// A face is opened from the info's path and face index and kept by info index alone; a
// file that does not open gives none and is tried again on the next request.
TEST(FontFacePool, OpensFacesByInfoIndexAndTriesFailuresAgain) {
  kelfont_test::TempDir dir;
  const std::string later = dir.file("later.ttf"), garbage = dir.file("garbage.ttf");
  ASSERT_TRUE(kelfont_test::writeFile(garbage, std::string(4096, '\x55')));
  FontFacePool pool;
  FT_Face face = pool.GetFontFace(*makeInfo(3, kelfont_test::testFontPath("basic.ttf")));
  EXPECT_EQ(advanceOf(face, 'V'), kelfont_test::expectedFace("basic.ttf").chars.at('V').advance);
  FT_Face third = pool.GetFontFace(*makeInfo(7, kelfont_test::testFontPath("collection.ttc"), 2));
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(third->face_index, 2);
  EXPECT_EQ(advanceOf(third, 'A'),
            kelfont_test::expectedFace("collection.ttc", 2).chars.at('A').advance);
  EXPECT_EQ(pool.GetFontFace(*makeInfo(3, kelfont_test::testFontPath("collection.ttc"), 1)), face);
  FontInfo noPath;
  noPath.SetInfoIndex(1);
  EXPECT_EQ(pool.GetFontFace(noPath), nullptr);
  EXPECT_EQ(pool.GetFontFace(*makeInfo(2, garbage)), nullptr);
  EXPECT_EQ(pool.GetFontFace(*makeInfo(4, kelfont_test::testFontPath("basic.ttf"), 5)), nullptr);
  auto info = makeInfo(5, later);
  EXPECT_EQ(pool.GetFontFace(*info), nullptr);
  EXPECT_EQ(pool.GetFaceCount(), 2u);
  ASSERT_TRUE(kelfont_test::writeFile(
      later, kelfont_test::readFile(kelfont_test::testFontPath("bold.ttf"))));
  EXPECT_EQ(advanceOf(pool.GetFontFace(*info), 'A'),
            kelfont_test::expectedFace("bold.ttf").chars.at('A').advance);
}

TEST(FontFacePool, AFullPoolClosesTheLowestInfoIndex) {
  const std::string path = kelfont_test::testFontPath("basic.ttf");
  std::vector<std::unique_ptr<FontInfo>> infos;
  for (int i = 0; i <= 101; ++i) infos.push_back(makeInfo(i, path));

  FontFacePool pool;
  for (int i = 0; i <= 100; ++i) ASSERT_NE(pool.GetFontFace(*infos[i]), nullptr) << i;
  EXPECT_EQ(pool.GetFaceCount(), 100u);
  EXPECT_FALSE(pool.HasFace(0));
  ASSERT_NE(pool.GetFontFace(*infos[50]), nullptr);  // already open: changes nothing

  // Reopening 0 closes 1, the lowest, although 1 is not the oldest request.
  ASSERT_NE(pool.GetFontFace(*infos[0]), nullptr);
  EXPECT_TRUE(pool.HasFace(0));
  EXPECT_FALSE(pool.HasFace(1));
  EXPECT_TRUE(pool.HasFace(2));

  // 101 is above every open index; 0 goes again.
  ASSERT_NE(pool.GetFontFace(*infos[101]), nullptr);
  EXPECT_FALSE(pool.HasFace(0));
  EXPECT_TRUE(pool.HasFace(101));
  EXPECT_EQ(pool.GetFaceCount(), 100u);

  // Room is made before the file is tried: a failing open still closes one.
  auto missing = makeInfo(200, path + ".missing");
  EXPECT_EQ(pool.GetFontFace(*missing), nullptr);
  EXPECT_FALSE(pool.HasFace(2));
  EXPECT_EQ(pool.GetFaceCount(), 99u);
}

}  // namespace
