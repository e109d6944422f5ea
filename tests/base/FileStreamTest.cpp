#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>

#include "base/File.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::readFile;
using kelfont_test::TempDir;
using kelfont_test::writeFile;
using qro_base::File;

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
