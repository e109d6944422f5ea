#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>

#include "base/File.h"
#include "base/FileOutputStream.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using qro_base::File;
using qro_base::FileOutputStream;

TEST(FileOutputStream, OverwritesWithoutTruncatingByDefaultAndHonoursTheMode) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "abcdef"));
  ASSERT_TRUE(writeFile(dir.file("w"), "abcdef"));
  ASSERT_TRUE(writeFile(dir.file("a"), "abc"));
  {
    FileOutputStream out(dir.file("f").c_str());
    ASSERT_TRUE(out.IsOpen());
    EXPECT_TRUE(out.Write("X\x00", 2));
    EXPECT_TRUE(out.Seek(4, SEEK_SET));
    EXPECT_TRUE(out.Write('Z'));
    // "r" fails on a missing file, and the stream then creates it.
    FileOutputStream created(dir.file("new"), "r");
    FileOutputStream truncating(dir.file("w"), "w");
    FileOutputStream appending(dir.file("a"), "a");
    EXPECT_TRUE(created.Write("XY", 2));
    EXPECT_TRUE(truncating.Write("XY", 2));
    EXPECT_TRUE(appending.Write("XY", 2));
  }
  EXPECT_EQ(readFile(dir.file("f")), std::string("X\x00"
                                                 "cdZf",
                                                 6));
  EXPECT_EQ(readFile(dir.file("new")), "XY");
  EXPECT_EQ(readFile(dir.file("w")), "XY");
  EXPECT_EQ(readFile(dir.file("a")), "abcXY");
  // Read-only mode on an existing file opens, but writes fail.
  FileOutputStream readOnly(dir.file("w"), "r");
  ASSERT_TRUE(readOnly.IsOpen());
  EXPECT_FALSE(readOnly.Write("Q", 1));
}

TEST(FileOutputStream, FailsWhereNoFileCanBeWritten) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("plain"), "x"));
  for (const std::string& path : {dir.path(), dir.file("missing/f"), dir.file("plain/f")}) {
    SCOPED_TRACE(path);
    FileOutputStream out(path.c_str());
    EXPECT_FALSE(out.IsOpen());
    EXPECT_FALSE(out.Write("xy", 2));
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.Tell(), -1);
  }
}

TEST(File, ReadsSeeksAndOpensForReadingOnlyEvenInWriteMode) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "hello"));
  {
    File file(dir.file("f").c_str(), 1);
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(file.Write("HE", 2), 0u);
    char buffer[8] = {};
    EXPECT_EQ(file.Read(buffer, 8), 5u);
    EXPECT_EQ(std::string(buffer, 5), "hello");
    EXPECT_EQ(file.Seek(-2, SEEK_END), 0);
    EXPECT_EQ(file.Tell(), 3);
    EXPECT_EQ(file.Seek(-1), -1);
  }
  EXPECT_EQ(readFile(dir.file("f")), "hello");
  // A host's File overrides reading and writing, also through File&.
  struct Counted : File {
    using File::File;
    unsigned Read(char*, unsigned count) const override { return count + 100; }
    unsigned Write(const char*, unsigned count) override { return count + 200; }
  } counted(dir.file("f").c_str(), 0);
  File& base = counted;
  char byte = 0;
  EXPECT_EQ(base.Read(&byte, 1), 101u);
  EXPECT_EQ(base.Write(&byte, 1), 201u);
  ASSERT_TRUE(writeFile(dir.file("empty"), ""));
  for (const std::string& path : {dir.file("empty"), dir.file("missing"), dir.path()}) {
    File file(path.c_str(), 0);
    EXPECT_FALSE(file.IsOpen()) << path;
    EXPECT_EQ(file.Tell(), -1);
  }
}

}  // namespace
