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

TEST(BufferedInputStream, EmptySourceEndsAtOnce) {
  BufferedInputStream in(new MemoryInputStream(""), 16);
  EXPECT_TRUE(in.IsOpen());
  EXPECT_EQ(in.Read(), -1);
  int value = 7;
  EXPECT_FALSE(in.Read(value));
  EXPECT_EQ(value, 7);
  char buffer[4];
  EXPECT_EQ(in.Read(buffer, 4), 0);
  EXPECT_EQ(in.Available(), 0u);
}

TEST(BufferedInputStream, ReadsSourcesOfAnyLengthAndThenEnds) {
  // 8 and 12 bytes are exact multiples of the buffer: the last refill brings nothing.
  for (unsigned length : {1u, 3u, 4u, 5u, 8u, 12u, 13u}) {
    SCOPED_TRACE(length);
    std::string data;
    for (unsigned i = 0; i < length; ++i) data += static_cast<char>(0xF0 + i);
    BufferedInputStream in(new MemoryInputStream(data), 4);
    EXPECT_EQ(readAllBytes(in), data);
    EXPECT_EQ(in.Read(), -1);
    char buffer[4];
    EXPECT_EQ(in.Read(buffer, 4), 0);
  }
}

TEST(BufferedInputStream, BlockReadsRefillAsNeeded) {
  auto* source = new MemoryInputStream("abcdefghij");
  BufferedInputStream in(source, 4);
  EXPECT_EQ(source->reads, 1);  // the first block is read at construction
  EXPECT_EQ(in.Read(), 'a');
  char buffer[16] = {};
  EXPECT_EQ(in.Read(buffer, 6), 6);
  EXPECT_EQ(std::string(buffer, 6), "bcdefg");
  EXPECT_EQ(in.Available(), 3u);
  EXPECT_EQ(in.Read(buffer, 16), 3);
  EXPECT_EQ(std::string(buffer, 3), "hij");
  EXPECT_EQ(source->reads, 3);
  // After a short block the source is not asked again.
  EXPECT_EQ(in.Read(), -1);
  EXPECT_EQ(source->reads, 3);
}

TEST(BufferedInputStream, SkipsWithinAndAcrossBlocks) {
  BufferedInputStream in(new MemoryInputStream("0123456789abcdef"), 4);
  EXPECT_TRUE(in.Skip(2));
  EXPECT_EQ(in.Read(), '2');
  EXPECT_TRUE(in.Skip(6));
  EXPECT_EQ(in.Read(), '9');
  EXPECT_TRUE(in.Skip(0));
  EXPECT_EQ(in.Read(), 'a');
  // Past the end still reports success.
  EXPECT_TRUE(in.Skip(100));
  EXPECT_EQ(in.Read(), -1);
}

TEST(BufferedInputStream, AvailableAddsSourceAndBuffer) {
  BufferedInputStream in(new MemoryInputStream("0123456789"), 4);
  EXPECT_EQ(in.Available(), 10u);
  in.Read();
  EXPECT_EQ(in.Available(), 9u);
}

TEST(BufferedInputStream, OwnsAndClosesItsSource) {
  bool destroyed = false;
  {
    auto* source = new MemoryInputStream("ab", ~0u, &destroyed);
    BufferedInputStream in(source, 4);
    EXPECT_TRUE(in.Close());
    EXPECT_EQ(source->closes, 1);
    EXPECT_FALSE(destroyed);
  }
  EXPECT_TRUE(destroyed);
}

TEST(BufferedInputStream, SizeZeroIsNotOpen) {
  bool destroyed = false;
  {
    BufferedInputStream in(new MemoryInputStream("ab", ~0u, &destroyed), 0);
    EXPECT_FALSE(in.IsOpen());
    EXPECT_EQ(in.Read(), -1);
    char buffer[2];
    EXPECT_EQ(in.Read(buffer, 2), 0);
    EXPECT_FALSE(in.Skip(1));
  }
  EXPECT_TRUE(destroyed);
}

TEST(BufferedInputStream, FindsTheEndOfAFile) {
  kelfont_test::TempDir dir;
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("f"), "xyz"));
  ASSERT_TRUE(kelfont_test::writeFile(dir.file("empty"), ""));
  BufferedInputStream in(new qro_base::FileInputStream(dir.file("f")), 32768);
  EXPECT_EQ(readAllBytes(in), "xyz");
  BufferedInputStream empty(new qro_base::FileInputStream(dir.file("empty")), 32768);
  EXPECT_EQ(empty.Read(), -1);
}

TEST(BufferedOutputStream, HoldsBytesUntilFlush) {
  MemoryOutputStream sink;
  BufferedOutputStream out(&sink, 8);
  ASSERT_TRUE(out.IsOpen());
  EXPECT_TRUE(out.Write('a'));
  EXPECT_TRUE(out.Write("bcd", 3));
  EXPECT_EQ(sink.data, "");
  EXPECT_TRUE(out.Flush());
  EXPECT_EQ(sink.data, "abcd");
  EXPECT_TRUE(out.Flush());
  EXPECT_EQ(sink.blocks.size(), 1u);
}

TEST(BufferedOutputStream, SingleBytesBeyondTheRoomFlushFirst) {
  MemoryOutputStream sink;
  BufferedOutputStream out(&sink, 4);
  for (char c : std::string("012345")) EXPECT_TRUE(out.Write(c));
  EXPECT_EQ(sink.data, "0123");
  EXPECT_TRUE(out.Flush());
  EXPECT_EQ(sink.data, "012345");
}

TEST(BufferedOutputStream, LargeBlocksGoStraightToTheSink) {
  MemoryOutputStream sink;
  BufferedOutputStream out(&sink, 4);
  EXPECT_TRUE(out.Write("ab", 2));
  EXPECT_TRUE(out.Write("CDEF", 4));
  EXPECT_EQ(sink.blocks, (std::vector<std::string>{"ab", "CDEF"}));
  // Three bytes do not fit behind two: flush, then buffer.
  EXPECT_TRUE(out.Write("gh", 2));
  EXPECT_TRUE(out.Write("ijk", 3));
  EXPECT_EQ(sink.data, "abCDEFgh");
  EXPECT_TRUE(out.Flush());
  EXPECT_EQ(sink.data, "abCDEFghijk");
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

TEST(BufferedOutputStream, SizeZeroIsNotOpen) {
  MemoryOutputStream sink;
  BufferedOutputStream out(&sink, 0);
  EXPECT_FALSE(out.IsOpen());
  EXPECT_FALSE(out.Write('a'));
  EXPECT_FALSE(out.Write("abc", 3));
  EXPECT_EQ(sink.data, "");
}

TEST(PartialInputStream, DeliversExactlyItsLength) {
  MemoryInputStream source("0123456789abcdefghij");
  PartialInputStream part(source, 10);
  EXPECT_FALSE(part.IsOpen());  // the flag is never set
  EXPECT_EQ(part.Available(), 10u);
  std::string bytes;
  for (int byte; (byte = part.Read()) != -1;) bytes += static_cast<char>(byte);
  EXPECT_EQ(bytes, "0123456789");
  EXPECT_EQ(part.Available(), 0u);
  EXPECT_EQ(source.Read(), 'a');
}

TEST(PartialInputStream, BlockReadsAndSkipsStopAtItsLength) {
  MemoryInputStream source("0123456789abcdefghij");
  PartialInputStream part(source, 10);
  char buffer[32] = {};
  EXPECT_EQ(part.Read(buffer, 3), 3);
  EXPECT_TRUE(part.Skip(2));
  EXPECT_EQ(part.Available(), 5u);
  EXPECT_EQ(part.Read(buffer, 32), 5);
  EXPECT_EQ(std::string(buffer, 5), "56789");
  EXPECT_EQ(part.Read(buffer, 32), 0);

  PartialInputStream next(source, 4);
  EXPECT_TRUE(next.Skip(9));
  EXPECT_EQ(next.Available(), 0u);
  EXPECT_EQ(source.Read(), 'e');
}

TEST(PartialInputStream, CloseEndsTheViewButNotTheSource) {
  MemoryInputStream source("abc");
  PartialInputStream part(source, 2);
  EXPECT_TRUE(part.Close());
  EXPECT_EQ(part.Read(), -1);
  EXPECT_EQ(source.closes, 0);
  EXPECT_EQ(source.Read(), 'a');
}

TEST(PartialInputStream, EndsWithAShortSource) {
  MemoryInputStream source("ab");
  PartialInputStream part(source, 5);
  EXPECT_EQ(part.Read(), 'a');
  EXPECT_EQ(part.Read(), 'b');
  EXPECT_EQ(part.Read(), -1);
  EXPECT_EQ(part.Available(), 0u);
}

}  // namespace
