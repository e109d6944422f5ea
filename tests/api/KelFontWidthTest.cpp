// Start-up steps of the facade class, on objects of its own (the global
// facade is left alone).

#include <gtest/gtest.h>

#include <string>

#include "api/KelFontWidth.h"
#include "tests/support/TempDir.h"

namespace {

TEST(KelFontWidth, StartUpStepsFailForTheirOwnReasons) {
  // -3: no serializer to load the table from; queries are refused.
  CKelFontWidth facade;
  EXPECT_EQ(facade.InitFontTable(), -3);
  int advance = 0;
  EXPECT_EQ(facade.GetFontCharInfo(0, 'A', false, false, advance), -1);
  // No bold correction before the set of corrected fonts is made.
  EXPECT_EQ(facade.AdjustAdvanceRatio(-1, 1024.0f), 1024.0f);
  // The serializer makes the cache folders, however deep.
  kelfont_test::TempDir dir;
  CKelFontWidth good;
  good.SetExtractPath((dir.path() + "/deep/cache/").c_str());
  EXPECT_EQ(good.InitFontInfoSerializer(), 0);
  EXPECT_TRUE(kelfont_test::writeFile(dir.path() + "/deep/cache/FInfo/Fdata/probe", "x"));
}

}  // namespace
