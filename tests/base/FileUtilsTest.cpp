#include "base/FileUtils.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "tests/support/TempDir.h"

namespace {

using kelfont_test::TempDir;
using qro_base::confirmFilePathExists;
using qro_base::isFileExists;

bool isDirectory(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

TEST(FileUtils, IsFileExistsSeesFilesAndDirectories) {
  TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("f"), ""));
  EXPECT_TRUE(isFileExists(dir.file("f").c_str()));
  EXPECT_TRUE(isFileExists(dir.path().c_str()));
  EXPECT_FALSE(isFileExists(dir.file("missing").c_str()));
  EXPECT_FALSE(isFileExists(nullptr));
}

TEST(FileUtils, ConfirmFilePathExistsCreatesEveryComponent) {
  TempDir dir;
  mode_t saved = umask(0);
  bool created = confirmFilePathExists((dir.path() + "/a/b/c/").c_str());
  umask(saved);
  ASSERT_TRUE(created);
  for (const char* part : {"a", "a/b", "a/b/c"}) {
    struct stat info;
    ASSERT_EQ(stat(dir.file(part).c_str(), &info), 0) << part;
    EXPECT_TRUE(S_ISDIR(info.st_mode)) << part;
    EXPECT_EQ(info.st_mode & 07777, 0775u) << part;
  }
  // The last component is a directory too, trailing separator or not, and
  // backslashes separate as well.
  EXPECT_TRUE(confirmFilePathExists(dir.file("a/b/d").c_str()));
  EXPECT_TRUE(isDirectory(dir.file("a/b/d")));
  EXPECT_TRUE(confirmFilePathExists(dir.file("p\\q").c_str()));
  EXPECT_TRUE(isDirectory(dir.file("p\\q")));
}

TEST(FileUtils, ConfirmFilePathExistsAcceptsWhatExistsAndFailsBelowAFile) {
  TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("f"), "x"));
  EXPECT_TRUE(confirmFilePathExists("/"));
  EXPECT_TRUE(confirmFilePathExists(dir.file("f").c_str()));  // even a plain file
  EXPECT_FALSE(confirmFilePathExists(dir.file("f/sub/deeper").c_str()));
  EXPECT_FALSE(confirmFilePathExists(""));
  EXPECT_FALSE(confirmFilePathExists(nullptr));
}

}  // namespace
