// Start-up steps of the facade class, on objects of its own (the global
// facade is left alone).

#include <gtest/gtest.h>

#include <string>

#include "api/KelFontWidth.h"
#include "common/registry/FontTable.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/TempDir.h"

namespace {

TEST(KelFontWidth, StartUpStepsFailForTheirOwnReasons) {
  // -3: no serializer to load the table from; queries are refused.
  CKelFontWidth facade;
  EXPECT_EQ(facade.InitFontTable(), -3);
  int advance = 0;
  EXPECT_EQ(facade.GetFontCharInfo(0, 'A', false, false, advance), -1);
  // The serializer makes the cache folders, however deep.
  kelfont_test::TempDir dir;
  CKelFontWidth good;
  good.SetExtractPath((dir.path() + "/deep/cache/").c_str());
  EXPECT_EQ(good.InitFontInfoSerializer(), 0);
  EXPECT_TRUE(kelfont_test::writeFile(dir.path() + "/deep/cache/FInfo/Fdata/probe", "x"));
}

TEST(KelFontWidth, UnknownAdjustFontNamesContributeMinusOne) {
  kelfont_test::TempDir dir;
  std::string base = dir.path() + "/";
  ASSERT_TRUE(facade_test::writeCache(base, facade_test::standardFaces()));
  CKelFontWidth facade;
  facade.SetExtractPath(base.c_str());
  ASSERT_EQ(facade.InitFontInfoSerializer(), 0);
  ASSERT_EQ(facade.InitFontTable(), 0);
  EXPECT_EQ(facade.AdjustAdvanceRatio(facade_test::kGulim, 1024.0f), 1024.0f);  // not yet set up
  facade.InitializeAdvanceRatioAdjustFontSet();
  EXPECT_EQ(facade.AdjustAdvanceRatio(facade_test::kGulim, 1024.0f), 1005.0f);
  EXPECT_EQ(facade.AdjustAdvanceRatio(facade_test::kDotum, 1000.5f), 981.5f);
  EXPECT_EQ(facade.AdjustAdvanceRatio(-1, 1024.0f), 1005.0f);
  EXPECT_EQ(facade.AdjustAdvanceRatio(facade_test::kBasic, 1024.0f), 1024.0f);
}

}  // namespace
