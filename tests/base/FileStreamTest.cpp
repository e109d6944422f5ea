#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>

#include "base/File.h"
#include "base/FileInputStream.h"
#include "base/FileOutputStream.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using qro_base::File;
using qro_base::FileInputStream;
using qro_base::FileOutputStream;

TEST(FileInputStream, ReadsBytesAndRepeatsTheLastOneAtTheEnd) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), std::string("\x00\x7f\x80\xc3", 4)));
  FileInputStream in(dir.file("f"), false);
  ASSERT_TRUE(in.IsOpen());
  EXPECT_EQ(in.Size(), 4);
  EXPECT_EQ(in.Available(), 4u);
  EXPECT_EQ(in.Read(), 0x00);
  EXPECT_EQ(in.Read(), 0x7f);
  EXPECT_EQ(in.Read(), 0x80);
  EXPECT_EQ(in.Available(), 1u);
  EXPECT_EQ(in.Read(), 0xc3);
  EXPECT_EQ(in.Available(), 0u);
  // No -1 at the end: the previous byte comes back.
  EXPECT_EQ(in.Read(), 0xc3);
  EXPECT_EQ(in.Read(), 0xc3);
}

TEST(FileInputStream, BlockReadsSeekSkipAndTell) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "0123456789"));
  FileInputStream in(dir.file("f").c_str());
  ASSERT_TRUE(in.IsOpen());
  char buffer[16] = {};
  EXPECT_EQ(in.Read(buffer, 4), 4);
  EXPECT_EQ(std::string(buffer, 4), "0123");
  EXPECT_EQ(in.Tell(), 4);
  EXPECT_TRUE(in.Skip(3));
  EXPECT_EQ(in.Read(), '7');
  EXPECT_EQ(in.Available(), 2u);
  EXPECT_EQ(in.Read(buffer, 16), 2);
  EXPECT_EQ(std::string(buffer, 2), "89");
  EXPECT_TRUE(in.Seek(1, SEEK_SET));
  EXPECT_EQ(in.Read(), '1');
  EXPECT_TRUE(in.Seek(0, SEEK_END));
  EXPECT_EQ(in.Tell(), 10);
  // Skipping past the end succeeds, but nothing is available there.
  EXPECT_TRUE(in.Skip(5));
  EXPECT_EQ(in.Available(), 0u);
}

TEST(FileInputStream, CloseReleasesTheFileOnce) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "abc"));
  FileInputStream in(dir.file("f"));
  EXPECT_TRUE(in.Close());
  EXPECT_FALSE(in.IsOpen());
  EXPECT_FALSE(in.Close());
  EXPECT_EQ(in.Available(), 0u);
  char buffer[4];
  EXPECT_EQ(in.Read(buffer, 4), 0);
  EXPECT_EQ(in.Tell(), -1);
  EXPECT_FALSE(in.Seek(0, SEEK_SET));
  EXPECT_FALSE(in.Skip(1));
}

TEST(FileInputStream, DoesNotOpenWhatCannotBeRead) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("empty"), ""));
  ASSERT_TRUE(writeFile(dir.file("plain"), "x"));
  ASSERT_EQ(mkdir(dir.file("sub").c_str(), 0755), 0);
  for (const std::string& path : {dir.file("empty"), dir.file("missing"), dir.file("sub"),
                                  dir.file("plain/below"), std::string()}) {
    SCOPED_TRACE(path);
    FileInputStream in(path);
    EXPECT_FALSE(in.IsOpen());
    EXPECT_EQ(in.Available(), 0u);
    EXPECT_EQ(in.Size(), 0);
    // The one-byte buffer starts out as 255.
    EXPECT_EQ(in.Read(), 255);
    EXPECT_FALSE(in.Close());
  }
  FileInputStream none(static_cast<const char*>(nullptr));
  EXPECT_FALSE(none.IsOpen());
}

TEST(FileOutputStream, CreatesAMissingFile) {
  TempDir dir;
  FileOutputStream out(dir.file("new").c_str());
  ASSERT_TRUE(out.IsOpen());
  EXPECT_TRUE(out.Write('A'));
  EXPECT_TRUE(out.Write("\x00\xff-", 3));
  EXPECT_TRUE(out.Write("", 0));
  EXPECT_EQ(out.Tell(), 4);
  EXPECT_TRUE(out.Close());
  EXPECT_EQ(readFile(dir.file("new")), std::string("A\x00\xff-", 4));
}

TEST(FileOutputStream, OverwritesAnExistingFileWithoutTruncating) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "abcdef"));
  {
    FileOutputStream out(dir.file("f").c_str());
    ASSERT_TRUE(out.IsOpen());
    EXPECT_TRUE(out.Write("XY", 2));
    EXPECT_TRUE(out.Seek(4, SEEK_SET));
    EXPECT_TRUE(out.Write('Z'));
  }
  EXPECT_EQ(readFile(dir.file("f")), "XYcdZf");
}

TEST(FileOutputStream, HonoursTheGivenMode) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("w"), "abcdef"));
  ASSERT_TRUE(writeFile(dir.file("a"), "abc"));
  {
    FileOutputStream truncating(dir.file("w"), "w");
    FileOutputStream appending(dir.file("a"), "a");
    FileOutputStream creating(dir.file("c"), "r");  // "r" fails on a missing file, "w+" creates it
    ASSERT_TRUE(truncating.IsOpen() && appending.IsOpen() && creating.IsOpen());
    EXPECT_TRUE(truncating.Write("XY", 2));
    EXPECT_TRUE(appending.Write("XY", 2));
    EXPECT_TRUE(creating.Write("XY", 2));
  }
  EXPECT_EQ(readFile(dir.file("w")), "XY");
  EXPECT_EQ(readFile(dir.file("a")), "abcXY");
  EXPECT_EQ(readFile(dir.file("c")), "XY");

  // Read-only mode on an existing file opens, but writes fail.
  FileOutputStream readOnly(dir.file("w"), "r");
  ASSERT_TRUE(readOnly.IsOpen());
  EXPECT_FALSE(readOnly.Write("Q", 1));
}

TEST(FileOutputStream, FailsWhereNoFileCanBeWritten) {
  TempDir dir;
  ASSERT_EQ(mkdir(dir.file("sub").c_str(), 0755), 0);
  ASSERT_TRUE(writeFile(dir.file("plain"), "x"));
  for (const std::string& path : {dir.file("sub"), dir.file("missing/f"), dir.file("plain/f")}) {
    SCOPED_TRACE(path);
    FileOutputStream out(path.c_str());
    EXPECT_FALSE(out.IsOpen());
    EXPECT_FALSE(out.Write('x'));
    EXPECT_FALSE(out.Write("xy", 2));
    EXPECT_FALSE(out.Close());
    EXPECT_EQ(out.Tell(), -1);
  }
  EXPECT_FALSE(qro_base::FileOutputStream(static_cast<const char*>(nullptr)).IsOpen());
}

TEST(File, ReadsSeeksAndTells) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "hello"));
  File file(dir.file("f").c_str(), 0);
  ASSERT_TRUE(file.IsOpen());
  char buffer[8] = {};
  EXPECT_EQ(file.Read(buffer, 8), 5u);
  EXPECT_EQ(std::string(buffer, 5), "hello");
  EXPECT_EQ(file.Seek(1), 0);
  EXPECT_EQ(file.Tell(), 1);
  EXPECT_EQ(file.Seek(-2, SEEK_END), 0);
  EXPECT_EQ(file.Read(buffer, 8), 2u);
  EXPECT_EQ(std::string(buffer, 2), "lo");
  EXPECT_EQ(file.Seek(-1), -1);
}

TEST(File, WriteModeOpensForReadingOnly) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("f"), "hello"));
  {
    File file(dir.file("f").c_str(), 1);
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(file.Write("HE", 2), 0u);
    char buffer[2];
    EXPECT_EQ(file.Read(buffer, 2), 2u);
    EXPECT_EQ(std::string(buffer, 2), "he");
  }
  EXPECT_EQ(readFile(dir.file("f")), "hello");
}

TEST(File, DoesNotOpenEmptyMissingOrDirectory) {
  TempDir dir;
  ASSERT_TRUE(writeFile(dir.file("empty"), ""));
  for (const std::string& path : {dir.file("empty"), dir.file("missing"), dir.path()}) {
    File file(path.c_str(), 0);
    EXPECT_FALSE(file.IsOpen()) << path;
    char buffer[1];
    EXPECT_EQ(file.Read(buffer, 1), 0u);
    EXPECT_EQ(file.Tell(), -1);
  }
}

}  // namespace
