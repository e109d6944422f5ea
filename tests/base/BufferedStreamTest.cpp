#include <gtest/gtest.h>

#include <string>

#include "base/BufferedOutputStream.h"
#include "base/FileOutputStream.h"
#include "tests/base/MemoryStreams.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::MemoryOutputStream;
using qro_base::BufferedOutputStream;

TEST(BufferedOutputStream, BuffersSmallWritesAndPassesLargeBlocksThrough) {
  MemoryOutputStream sink;
  BufferedOutputStream out(&sink, 4);
  EXPECT_TRUE(out.Write('a'));
  EXPECT_TRUE(out.Write("b", 1));
  EXPECT_EQ(sink.data, "");
  EXPECT_TRUE(out.Write("CDEF", 4));
  EXPECT_EQ(sink.blocks, (std::vector<std::string>{"ab", "CDEF"}));
  // Three bytes do not fit behind two: flush, then buffer.
  EXPECT_TRUE(out.Write("gh", 2));
  EXPECT_TRUE(out.Write("ijk", 3));
  EXPECT_EQ(sink.data, "abCDEFgh");
  for (char c : std::string("lm")) EXPECT_TRUE(out.Write(c));  // the fifth byte flushes first
  EXPECT_EQ(sink.data, "abCDEFghijkl");
  EXPECT_TRUE(out.Flush());
  EXPECT_EQ(sink.data, "abCDEFghijklm");
}

TEST(BufferedOutputStream, KeepsPendingBytesWhenTheSinkFails) {
  MemoryOutputStream sink;
  BufferedOutputStream out(&sink, 4);
  EXPECT_TRUE(out.Write("abcd", 3));
  sink.fail = true;
  EXPECT_FALSE(out.Flush());
  EXPECT_FALSE(out.Write("xy", 2));
  EXPECT_FALSE(out.Write("LARGE", 5));
  sink.fail = false;
  EXPECT_TRUE(out.Flush());
  EXPECT_EQ(sink.data, "abc");
  BufferedOutputStream sizeless(&sink, 0);
  EXPECT_FALSE(sizeless.IsOpen());
  EXPECT_FALSE(sizeless.Write("abc", 3));
}

TEST(BufferedOutputStream, CloseWithoutFlushLosesPendingBytes) {
  kelfont_test::TempDir dir;
  qro_base::FileOutputStream file(dir.file("f").c_str());
  {
    BufferedOutputStream out(&file, 16);
    EXPECT_TRUE(out.Write("kept", 4));
    EXPECT_TRUE(out.Flush());
    EXPECT_TRUE(out.Write("lost", 4));
    EXPECT_TRUE(out.Close());
  }
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(kelfont_test::readFile(dir.file("f")), "kept");
}

}  // namespace
