#include "base/MemoryInputStream.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(MemoryInputStream, ReadsSkipsAndEnds) {
  std::string data("\x00\xFF" "abcdef", 8);
  qro_base::MemoryInputStream in(data.data(), 8);
  ASSERT_TRUE(in.IsOpen());
  EXPECT_EQ(in.Read(), 0);
  EXPECT_EQ(in.Read(), 255);
  char buffer[8] = {};
  EXPECT_EQ(in.Read(buffer, 2), 2);
  EXPECT_EQ(std::string(buffer, 2), "ab");
  EXPECT_TRUE(in.Skip(1));
  EXPECT_EQ(in.Read(buffer, 8), 3);
  EXPECT_EQ(in.Position(), 8u);
  EXPECT_EQ(in.Read(), -1);
  EXPECT_EQ(in.Read(buffer, 8), 0);
  qro_base::MemoryInputStream again(data.data(), 8);
  EXPECT_FALSE(again.Skip(10));  // fails past the end, and stops there
  EXPECT_EQ(again.Available(), 0u);
}

TEST(MemoryInputStream, EmptyBadAndClosedStreams) {
  qro_base::MemoryInputStream empty(nullptr, 0);
  EXPECT_TRUE(empty.IsOpen());
  EXPECT_EQ(empty.Read(), -1);
  qro_base::MemoryInputStream bad(nullptr, 5);
  EXPECT_FALSE(bad.IsOpen());
  EXPECT_EQ(bad.Available(), 0u);
  std::string data = "xy";
  qro_base::MemoryInputStream in(data.data(), 2);
  EXPECT_TRUE(in.Close());
  EXPECT_FALSE(in.Close());
  EXPECT_EQ(in.Read(), -1);
}

}  // namespace
