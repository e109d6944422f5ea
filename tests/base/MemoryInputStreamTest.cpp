#include "base/MemoryInputStream.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(MemoryInputStream, ReadsBytesThenMinusOne) {
  std::string data("\x00\xFF\x41", 3);
  qro_base::MemoryInputStream in(data.data(), 3);
  ASSERT_TRUE(in.IsOpen());
  EXPECT_EQ(in.Available(), 3u);
  EXPECT_EQ(in.Read(), 0);
  EXPECT_EQ(in.Read(), 255);
  EXPECT_EQ(in.Read(), 0x41);
  EXPECT_EQ(in.Read(), -1);
  EXPECT_EQ(in.Read(), -1);
  EXPECT_EQ(in.Available(), 0u);
}

TEST(MemoryInputStream, BlockReadsStopAtTheEnd) {
  std::string data = "abcdef";
  qro_base::MemoryInputStream in(data.data(), 6);
  char buffer[8] = {};
  EXPECT_EQ(in.Read(buffer, 4), 4);
  EXPECT_EQ(std::string(buffer, 4), "abcd");
  EXPECT_EQ(in.Read(buffer, 8), 2);
  EXPECT_EQ(std::string(buffer, 2), "ef");
  EXPECT_EQ(in.Read(buffer, 8), 0);
  EXPECT_EQ(in.Position(), 6u);
}

TEST(MemoryInputStream, SkipFailsPastTheEndAndStopsThere) {
  std::string data = "abcdef";
  qro_base::MemoryInputStream in(data.data(), 6);
  EXPECT_TRUE(in.Skip(2));
  EXPECT_EQ(in.Read(), 'c');
  EXPECT_FALSE(in.Skip(10));
  EXPECT_EQ(in.Available(), 0u);
  EXPECT_EQ(in.Read(), -1);
}

TEST(MemoryInputStream, EmptyAndClosedStreams) {
  qro_base::MemoryInputStream empty(nullptr, 0);
  EXPECT_TRUE(empty.IsOpen());
  EXPECT_EQ(empty.Read(), -1);
  qro_base::MemoryInputStream bad(nullptr, 5);
  EXPECT_FALSE(bad.IsOpen());
  EXPECT_EQ(bad.Available(), 0u);
  EXPECT_EQ(bad.Read(), -1);

  std::string data = "xy";
  qro_base::MemoryInputStream in(data.data(), 2);
  EXPECT_TRUE(in.Close());
  EXPECT_FALSE(in.Close());
  EXPECT_EQ(in.Read(), -1);
  EXPECT_EQ(in.Available(), 0u);
}

}  // namespace
