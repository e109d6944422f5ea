// A start-up on storage that cannot hold a cache yet (no path, a path
// through a file) answers with an empty table, and a later start-up on a
// good path reads that cache: nothing of the first one sticks. It runs in
// a process of its own because it starts the global facade from scratch.

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "api/kelfont.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/TempDir.h"

namespace {

TEST(KelFontStartUp, StorageNotReadyGivesAnEmptyTableUntilAGoodPath) {
  kelfont_test::TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("plain"), "a file, not a folder"));
  const std::string unusable = dir.file("plain") + "/cache/";
  char previous[4096];
  ASSERT_NE(getcwd(previous, sizeof previous), nullptr);
  ASSERT_EQ(chdir(dir.path().c_str()), 0);

  bool regular = false;
  int value = 0;
  for (const std::string& path : {std::string(), unusable}) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(InitKelFont("", path.c_str(), ""), 0) << path;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "InitExtracter success\n");
    EXPECT_EQ(IsKelFontInitialized(), 0);
    ASSERT_NE(gKelFontWidth, nullptr);
    EXPECT_EQ(GetFontIndex("돋움"), -1);
    EXPECT_EQ(GetFontCharInfo(0, 'A', regular, regular, value), -1);
  }
  // The empty path made no cache folder in the working directory.
  EXPECT_NE(access((dir.path() + "/FInfo").c_str(), F_OK), 0);
  ASSERT_EQ(chdir(previous), 0);

  const std::string base = dir.path() + "/good/";
  ASSERT_TRUE(facade_test::writeCache(base, kelfont_test::cases("facade_faces.tsv")));
  EXPECT_EQ(InitKelFont("", base.c_str(), ""), 0);
  EXPECT_EQ(GetFontIndex("돋움"), 2);
  EXPECT_EQ(GetFontCharInfo(2, 'A', regular, regular, value), 0);
  EXPECT_EQ(value, 1024);
  UnInitKelFont();
}

}  // namespace
