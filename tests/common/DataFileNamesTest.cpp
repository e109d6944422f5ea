#include "common/registry/DataFileNames.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

using namespace qro_common;

TEST(DataFileNames, ByteSizeRoundsUpToWholeBytes) {
  const int cases[][3] = {
      {0, 7, 1},       {0, 8, 2},   {5, 5, 1},       {0xAC00, 0xD7A3, 1397},  // 11172 values
      {-8, -1, 1},     {5, 4, 0},   {INT_MAX, INT_MIN, 0},
      {INT_MIN, INT_MAX, 536870912},  // 2^32 values: no overflow on the way
  };
  for (const auto& c : cases) EXPECT_EQ(getByteSize(c[0], c[1]), c[2]) << c[0] << " " << c[1];
}

TEST(DataFileNames, FontFilesByExtensionAnywhereInThePath) {
  for (const char* path : {"/system/fonts/Roboto.ttf", "a.otf", "NotoCJK.ttc", "ARIAL.TTF",
                           "X.OTF", "Y.TTC", "/fonts/old.ttf.bak", "dir.ttf/readme"}) {
    std::string text = path;
    EXPECT_TRUE(isFontFile(text)) << path;
  }
  for (const char* path : {"Roboto.Ttf", "a.tTF", "font.woff", "fonts.xml", "ttf", "", "a_ttf",
                           "a.tt", "Roboto.otc"}) {
    std::string text = path;
    EXPECT_FALSE(isFontFile(text)) << path;
  }
}

}  // namespace
