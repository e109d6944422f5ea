#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/MultiDefaultFontRange.h"
#include "common/font_info/SingleDefaultFontRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"

namespace {

using font_info_test::addDefaultFont;
using font_info_test::hex;
using font_info_test::source;
using font_info_test::zeros;
using qro_common::DefaultFontInfo;
using qro_common::DefaultFontRange;
using qro_common::MultiDefaultFontRange;
using qro_common::SingleDefaultFontRange;

TEST(DefaultFontInfo, TheFontAppliedLastWins) {
  DefaultFontInfo info;
  EXPECT_EQ(info.GetFontIndex(0x41), -1);
  EXPECT_EQ(info.GetFontIndex(0xFFFFFFFFu), -1);
  EXPECT_THROW(info.GetDefaultFontRange(128), std::out_of_range);
  addDefaultFont(info, 0x41, 3);
  addDefaultFont(info, 0x41, 7);
  addDefaultFont(info, 0xAC00, 2);
  addDefaultFont(info, 0x20000, 300);  // bit 59, block 5
  EXPECT_EQ(info.GetFontIndex(0x41), 7);
  EXPECT_EQ(info.GetFontIndex(0x42), -1);
  EXPECT_EQ(info.GetFontIndex(0xAC00), 2);
  EXPECT_EQ(info.GetFontIndex(0xA960), -1);  // other block of the same bit
  EXPECT_EQ(info.GetFontIndex(0x20000), 300);
}

TEST(DefaultFontInfo, SurrogatesAndOutOfBlockCodesGiveMinusOne) {
  DefaultFontInfo info;
  auto* surrogates = new SingleDefaultFontRange(0xD800, 0xDFFF);
  surrogates->Set(0xD800, 4);
  info.SetDefaultFontRange(57, surrogates);
  EXPECT_EQ(info.GetFontIndex(0xD800), -1);
  // A range that does not cover the block of its slot.
  auto* stray = new SingleDefaultFontRange(0x4E00, 0x4E10);
  stray->Set(0x4E00, 4);
  info.SetDefaultFontRange(0, stray);
  EXPECT_EQ(info.GetFontIndex(0x41), -1);
  info.SetDefaultFontRange(1, new MultiDefaultFontRange(1));
  EXPECT_EQ(info.GetFontIndex(0xE9), -1);
}

// Read by code no lookup reaches slot 1 here.
TEST(DefaultFontInfo, ReadSkipsUnknownTypesAndIgnoresSubRangeTypes) {
  // Slot 0: type 3 (unknown here); slot 1 gets the next byte: a multi range
  // whose sub-range type byte says 9 and is read as a single range anyway.
  std::string bytes =
      hex("03") + hex("02 02 01 01 09 00010000 7F010000 0100 0000 0400") + zeros(126);
  auto in = source(bytes);
  DefaultFontInfo info;
  ASSERT_TRUE(info.Read(in));
  EXPECT_EQ(info.GetDefaultFontRange(0), nullptr);
  auto* multi = static_cast<MultiDefaultFontRange*>(info.GetDefaultFontRange(1));
  ASSERT_NE(multi, nullptr);
  ASSERT_EQ(multi->GetCount(), 2);
  ASSERT_NE(multi->GetDefaultFontRange(1), nullptr);
  EXPECT_EQ(multi->GetDefaultFontRange(1)->Get(0x100), 4);
}

}  // namespace
