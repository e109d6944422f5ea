#include "base/MemoryInputStream.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(MemoryInputStream, ReadsSkipsAndEnds) {
  std::string data("\xFF" "abcdef", 7);
  qro_base::MemoryInputStream in(data.data(), 7);
  EXPECT_EQ(in.Read(), 255);
  char buffer[8] = {};
  EXPECT_EQ(in.Read(buffer, 2), 2);
  EXPECT_TRUE(in.Skip(1));
  EXPECT_EQ(in.Read(buffer, 8), 3);
  EXPECT_EQ(std::string(buffer, 3), "def");
  EXPECT_EQ(in.Read(), -1);
  EXPECT_FALSE(in.Skip(1));  // fails past the end
  EXPECT_TRUE(in.Close());
  EXPECT_FALSE(in.Close());
  qro_base::MemoryInputStream empty(nullptr, 0);
  EXPECT_TRUE(empty.IsOpen());
  qro_base::MemoryInputStream bad(nullptr, 5);
  EXPECT_FALSE(bad.IsOpen());
  EXPECT_EQ(bad.Read(), -1);
}

}  // namespace
