// Registration, reading and writing of kerning: tests/data/byte_formats.tsv.
#include <gtest/gtest.h>

#include <string>

#include "common/font_info/KerningInfo.h"

namespace {

using qro_common::KerningPair;

TEST(KerningPair, OrdersByLeftThenRightAsSignedNumbers) {
  EXPECT_TRUE(KerningPair(-1, 5) < KerningPair(0, 0));
  EXPECT_TRUE(KerningPair(65, 86) < KerningPair(65, 87));
  EXPECT_TRUE(KerningPair(65, 100) < KerningPair(66, 0));
  // The delta takes no part.
  EXPECT_FALSE(KerningPair(65, 86, -5) < KerningPair(65, 86, 10));
  EXPECT_FALSE(KerningPair(65, 86, 10) < KerningPair(65, 86, -5));
}

}  // namespace
