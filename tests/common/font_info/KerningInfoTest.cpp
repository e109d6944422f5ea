#include <gtest/gtest.h>

#include <string>

#include "common/font_info/KerningInfo.h"
#include "tests/common/font_info/ByteSink.h"

namespace {

using font_info_test::ByteSink;
using qro_common::KerningInfo;
using qro_common::KerningPair;

TEST(KerningPair, OrdersByLeftThenRightAsSignedNumbers) {
  EXPECT_TRUE(KerningPair(-1, 5) < KerningPair(0, 0));
  EXPECT_TRUE(KerningPair(65, 86) < KerningPair(65, 87));
  EXPECT_TRUE(KerningPair(65, 100) < KerningPair(66, 0));
  // The delta takes no part.
  EXPECT_FALSE(KerningPair(65, 86, -5) < KerningPair(65, 86, 10));
  EXPECT_FALSE(KerningPair(65, 86, 10) < KerningPair(65, 86, -5));
}

// Registration, reading and writing: tests/data/byte_formats.tsv.
TEST(KerningInfo, WriteReportsARefusingStream) {
  KerningInfo kerning;
  kerning.Register(1, 2, 3);
  ByteSink out(6);
  EXPECT_FALSE(kerning.Write(out));
}

}  // namespace
