#include <gtest/gtest.h>

#include <string>

#include "base/BufferedInputStream.h"
#include "base/BufferedOutputStream.h"
#include "base/FileInputStream.h"
#include "base/FileOutputStream.h"
#include "base/PartialInputStream.h"
#include "tests/base/MemoryStreams.h"
#include "tests/support/TempDir.h"

namespace {

using kelfont_test::MemoryInputStream;
using kelfont_test::MemoryOutputStream;
using qro_base::BufferedInputStream;
using qro_base::BufferedOutputStream;
using qro_base::PartialInputStream;

std::string readAllBytes(BufferedInputStream& in) {
  std::string bytes;
  for (int byte; (byte = in.Read()) != -1;) bytes += static_cast<char>(byte);
  return bytes;
}

TEST(BufferedInputStream, ReadsSourcesOfAnyLengthAndThenEnds) {
  // 0, 8 and 12 bytes are exact multiples of the buffer: the last refill brings nothing.
  for (unsigned length : {0u, 3u, 4u, 5u, 8u, 12u, 13u}) {
    SCOPED_TRACE(length);
    std::string data;
    for (unsigned i = 0; i < length; ++i) data += static_cast<char>(0xF0 + i);
    BufferedInputStream in(new MemoryInputStream(data), 4);
    EXPECT_EQ(in.Available(), length);
    EXPECT_EQ(readAllBytes(in), data);
    EXPECT_EQ(in.Read(), -1);
    char buffer[4];
    EXPECT_EQ(in.Read(buffer, 4), 0);
  }
  // A file stream repeats its last byte at the end; the block reads still end.
  kelfont_test::TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("f"), "xyz"));
  BufferedInputStream file(new qro_base::FileInputStream(dir.file("f")), 32768);
  EXPECT_EQ(readAllBytes(file), "xyz");
}

TEST(BufferedInputStream, BlockReadsAndSkipsCrossBlocks) {
  auto* source = new MemoryInputStream("0123456789abcdef");
  BufferedInputStream in(source, 4);
  EXPECT_EQ(source->reads, 1);  // the first block is read at construction
  EXPECT_EQ(in.Read(), '0');
  char buffer[16] = {};
  EXPECT_EQ(in.Read(buffer, 6), 6);
  EXPECT_EQ(std::string(buffer, 6), "123456");
  EXPECT_EQ(in.Available(), 9u);
  EXPECT_TRUE(in.Skip(2));
  EXPECT_EQ(in.Read(), '9');
  EXPECT_TRUE(in.Skip(100));  // past the end still reports success
  EXPECT_EQ(in.Read(), -1);
}

TEST(BufferedInputStream, OwnsItsSourceAndSizeZeroIsNotOpen) {
  bool destroyed = false;
  {
    auto* source = new MemoryInputStream("ab", ~0u, &destroyed);
    BufferedInputStream in(source, 4);
    EXPECT_TRUE(in.Close());
    EXPECT_EQ(source->closes, 1);
    EXPECT_FALSE(destroyed);
  }
  EXPECT_TRUE(destroyed);
  destroyed = false;
  {
    BufferedInputStream in(new MemoryInputStream("ab", ~0u, &destroyed), 0);
    EXPECT_FALSE(in.IsOpen());
    EXPECT_EQ(in.Read(), -1);
    EXPECT_FALSE(in.Skip(1));
  }
  EXPECT_TRUE(destroyed);
}

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

TEST(PartialInputStream, StopsAtItsLengthAndLeavesTheSourceOpen) {
  MemoryInputStream source("0123456789abcdefghij");
  PartialInputStream part(source, 10);
  EXPECT_FALSE(part.IsOpen());  // the flag is never set
  char buffer[32] = {};
  EXPECT_EQ(part.Read(), '0');
  EXPECT_EQ(part.Read(buffer, 2), 2);
  EXPECT_TRUE(part.Skip(2));
  EXPECT_EQ(part.Available(), 5u);
  EXPECT_EQ(part.Read(buffer, 32), 5);
  EXPECT_EQ(std::string(buffer, 5), "56789");
  EXPECT_EQ(part.Read(), -1);

  PartialInputStream next(source, 4);
  EXPECT_TRUE(next.Skip(9));
  EXPECT_EQ(next.Available(), 0u);
  EXPECT_TRUE(next.Close());
  EXPECT_EQ(source.closes, 0);
  EXPECT_EQ(source.Read(), 'e');

  MemoryInputStream shortSource("ab");
  PartialInputStream longer(shortSource, 5);
  EXPECT_EQ(longer.Read(buffer, 32), 2);
  EXPECT_EQ(longer.Read(), -1);
  EXPECT_EQ(longer.Available(), 0u);
}

}  // namespace
