#include <gtest/gtest.h>

#include <string>

#include "common/font_info/KerningInfo.h"
#include "tests/common/font_info/ByteSink.h"

namespace {

using font_info_test::ByteSink;
using font_info_test::hex;
using font_info_test::source;
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

TEST(KerningInfo, FirstRegistrationWins) {
  KerningInfo kerning;
  EXPECT_EQ(kerning.GetDelta(65, 86), 0);
  EXPECT_EQ(kerning.Register(65, 86, -120), 0);
  EXPECT_EQ(kerning.Register(84, 111, -60), 1);
  EXPECT_EQ(kerning.Register(65, 86, -80), 0);
  EXPECT_EQ(kerning.GetCount(), 2);
  EXPECT_EQ(kerning.GetDelta(65, 86), -120);
  EXPECT_EQ(kerning.GetDelta(86, 65), 0);
}

TEST(KerningInfo, RejectsTruncationAndAbsurdCounts) {
  std::string bytes = hex("02000000 41000000 56000000 88FF 54000000 6F000000 C4FF");
  for (size_t cut = 0; cut < bytes.size(); ++cut) {
    std::string part = bytes.substr(0, cut);
    auto in = source(part);
    KerningInfo kerning;
    EXPECT_FALSE(kerning.Read(in)) << cut;
  }
}

TEST(KerningInfo, WriteReportsARefusingStream) {
  KerningInfo kerning;
  kerning.Register(1, 2, 3);
  ByteSink out(6);
  EXPECT_FALSE(kerning.Write(out));
}

}  // namespace
