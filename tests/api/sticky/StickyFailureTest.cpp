// A failed InitKelFont is final for the whole process, so this program runs
// apart from the other facade tests.

#include <gtest/gtest.h>

#include <string>

#include "api/kelfont.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/TempDir.h"

namespace {

TEST(KelFontStartUp, AFailureIsFinalForTheProcess) {
  kelfont_test::TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("plain"), "a file, not a folder"));
  std::string unusable = dir.file("plain") + "/cache/";

  testing::internal::CaptureStdout();
  EXPECT_EQ(InitKelFont("", unusable.c_str(), ""), -2);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
  EXPECT_EQ(IsKelFontInitialized(), -2);
  EXPECT_EQ(gKelFontWidth, nullptr);

  bool regular = false;
  int value = 0;
  EXPECT_EQ(GetFontCharInfo(0, 'A', regular, regular, value), -1);
  EXPECT_EQ(GetFontEmSquareFUnit(0, regular, regular, value), -1);
  EXPECT_EQ(GetKerningInfo(0, regular, regular, 'A', 'V', value), -1);
  EXPECT_EQ(GetFontIndex("KelTest Basic"), -1);
  ClearKelFontCacheInfo();
  UnInitKelFont();

  // A good cache changes nothing any more: the start-up is skipped.
  std::string base = dir.path() + "/good/";
  ASSERT_TRUE(facade_test::writeCache(base, facade_test::standardFaces()));
  testing::internal::CaptureStdout();
  EXPECT_EQ(InitKelFont("", base.c_str(), ""), -2);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(IsKelFontInitialized(), -2);
  EXPECT_EQ(gKelFontWidth, nullptr);
  EXPECT_EQ(GetFontCharInfo(facade_test::kDotum, 'A', regular, regular, value), -1);
  EXPECT_EQ(GetFontIndex("돋움"), -1);
}

}  // namespace
