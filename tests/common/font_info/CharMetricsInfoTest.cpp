#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"
#include "tests/common/font_info/TableBuilders.h"

namespace {

using font_info_test::addAdvance;
using font_info_test::ByteSink;
using font_info_test::hex;
using font_info_test::source;
using font_info_test::zeros;
using qro_common::CharMetrics;
using qro_common::CharMetricsInfo;
using qro_common::CharMetricsRange;
using qro_common::MultiCharMetricsRange;
using qro_common::SingleCharMetricsRange;
using qro_common::ZippedCharMetricsRange;

// What a hostile file can do: ranges in the surrogate and reserved slots, a
// CJK range in the Basic Latin slot, a multi range in a single-range slot, a
// zipped range elsewhere.
TEST(CharMetricsInfo, RangesInTheWrongSlotAnswerNothing) {
  CharMetricsInfo info;
  auto* surrogates = new SingleCharMetricsRange(0xD800, 0xDFFF);
  surrogates->SetAdvance(0xD800, 1);
  info.SetCharMetricsRange(57, surrogates);
  EXPECT_FALSE(addAdvance(info, 0xDC00, 1));
  EXPECT_EQ(info.GetCharMetrics(0xD800), nullptr);
  for (unsigned char bit = 123; bit <= 126; ++bit) {
    auto* range = new SingleCharMetricsRange(0x1F0A0, 0x1F6FF);
    range->SetAdvance(0x1F600, 1);
    info.SetCharMetricsRange(bit, range);
  }
  EXPECT_EQ(info.GetCharMetrics(0x1F600), nullptr);
  auto* cjk = new SingleCharMetricsRange(0x4E00, 0x4E10);
  cjk->SetAdvance(0x4E00, 1);
  info.SetCharMetricsRange(0, cjk);
  EXPECT_EQ(info.GetCharMetrics(0x41), nullptr);
  EXPECT_FALSE(info.IsVisibleChar(0x7F));
  info.SetCharMetricsRange(1, new MultiCharMetricsRange(2));
  EXPECT_EQ(info.GetCharMetrics(0xE9), nullptr);
  info.SetCharMetricsRange(
      2, new ZippedCharMetricsRange(0x3000, 0x303F, new CharMetrics(9), new char[8]()));
  EXPECT_EQ(info.GetCharMetrics(0x100), nullptr);
  EXPECT_FALSE(info.IsVisibleChar(0x100));
}

TEST(CharMetricsInfo, ZipReplacesUniformRangesOnly) {
  CharMetricsInfo info;
  addAdvance(info, 0x30, 1000);
  addAdvance(info, 0x39, 1000);
  addAdvance(info, 0xE9, 600);    // bit 1: a single entry stays single
  addAdvance(info, 0x0250, 500);  // bit 4 block 0: uniform
  addAdvance(info, 0x0251, 500);
  addAdvance(info, 0x1D00, 1);  // bit 4 block 1: mixed
  addAdvance(info, 0x1D01, 2);
  info.ZipCharMetricsRanges();
  ASSERT_EQ(info.GetCharMetricsRange(0)->GetType(), CharMetricsRange::kZipped);
  EXPECT_EQ(info.GetCharMetricsRange(1)->GetType(), CharMetricsRange::kSingle);
  auto* multi = static_cast<MultiCharMetricsRange*>(info.GetCharMetricsRange(4));
  EXPECT_EQ(multi->GetCharMetricsRange(0)->GetType(), CharMetricsRange::kZipped);
  EXPECT_EQ(multi->GetCharMetricsRange(1)->GetType(), CharMetricsRange::kSingle);
  // The shared advance also for unmapped codes, which stay invisible.
  EXPECT_EQ(info.GetCharMetrics(0x41)->GetAdvance(), 1000);
  EXPECT_FALSE(info.IsVisibleChar(0x41));
  EXPECT_TRUE(info.IsVisibleChar(0x39));
  EXPECT_EQ(info.GetCharMetrics(0x0252)->GetAdvance(), 500);
  EXPECT_EQ(info.GetCharMetrics(0x1D01)->GetAdvance(), 2);
  EXPECT_EQ(info.GetCharMetrics(0x1D02), nullptr);
}

// Golden bytes and damaged bodies: tests/data/byte_formats.tsv.
TEST(CharMetricsInfo, ReadReplacesWhatWasThere) {
  CharMetricsInfo info;
  addAdvance(info, 0x41, 1);
  EXPECT_THROW(info.GetCharMetricsRange(128), std::out_of_range);
  std::string bytes = hex("05") + hex("01 80000000 FF000000 0100 4100 0700") + zeros(126);
  auto in = source(bytes);
  ASSERT_TRUE(info.Read(in));
  EXPECT_EQ(info.GetCharMetrics(0x41), nullptr);
  EXPECT_EQ(in.Available(), 0u);
}

TEST(CharMetricsInfo, RoundTripOfEveryKind) {
  CharMetricsInfo info;
  for (unsigned code = 0x20; code < 0x7F; ++code) {
    addAdvance(info, code, static_cast<unsigned short>(code));
  }
  addAdvance(info, 0x3041, 1000);  // bit 49, will be zipped
  addAdvance(info, 0x3093, 1000);
  addAdvance(info, 0xAC00, 920);  // bit 56, multi
  addAdvance(info, 0xD7B0, 700);
  addAdvance(info, 0x2F800, 1024);  // bit 61, block 2, outside the BMP
  addAdvance(info, 0x1F0A0, 1);     // bit 127
  info.ZipCharMetricsRanges();
  ByteSink out;
  ASSERT_TRUE(info.Write(out));
  auto in = source(out.bytes);
  CharMetricsInfo copy;
  ASSERT_TRUE(copy.Read(in));
  EXPECT_EQ(in.Available(), 0u);
  // Each kind of slot is looked up by the code's bit and block.
  const unsigned cases[][2] = {{0x41, 0x41},  {0x7E, 0x7E},    {0x3093, 1000}, {0xAC00, 920},
                               {0xD7B0, 700}, {0x2F800, 1024}, {0x1F0A0, 1}};
  for (const auto& c : cases) {
    ASSERT_NE(copy.GetCharMetrics(c[0]), nullptr) << std::hex << c[0];
    EXPECT_EQ(copy.GetCharMetrics(c[0])->GetAdvance(), c[1]) << std::hex << c[0];
    EXPECT_TRUE(copy.IsVisibleChar(c[0])) << std::hex << c[0];
  }
  for (unsigned code : {0x7Fu, 0xAC01u, 0x2F801u, 0x0860u, 0xFFFFFFFFu}) {
    EXPECT_EQ(copy.GetCharMetrics(code), nullptr) << std::hex << code;
  }
  // A zipped range: the shared advance for every code, visible or not.
  EXPECT_EQ(copy.GetCharMetricsRange(49)->GetType(), CharMetricsRange::kZipped);
  EXPECT_EQ(copy.GetCharMetrics(0x3042)->GetAdvance(), 1000);
  EXPECT_FALSE(copy.IsVisibleChar(0x3042));
}

TEST(CharMetricsInfo, EveryTruncationIsDamage) {
  CharMetricsInfo info;
  addAdvance(info, 0x41, 1366);
  addAdvance(info, 0xE9, 500);
  addAdvance(info, 0xE8, 500);
  addAdvance(info, 0xAC00, 920);
  info.ZipCharMetricsRanges();
  ByteSink out;
  ASSERT_TRUE(info.Write(out));
  for (size_t cut = 0; cut < out.bytes.size(); ++cut) {
    std::string part = out.bytes.substr(0, cut);
    auto in = source(part);
    CharMetricsInfo copy;
    ASSERT_EQ(copy.ReadChecked(in), CharMetricsInfo::ReadResult::kDamaged) << cut;
    for (unsigned char usb = 0; usb < 128; ++usb) {
      ASSERT_EQ(copy.GetCharMetricsRange(usb), nullptr);
    }
  }
}

TEST(CharMetricsInfo, WriteReportsARefusingStream) {
  CharMetricsInfo info;
  addAdvance(info, 0x41, 1);
  ByteSink out(5);
  EXPECT_FALSE(info.Write(out));
}

}  // namespace
