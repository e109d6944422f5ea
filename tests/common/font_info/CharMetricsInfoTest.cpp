#include "common/font_info/CharMetricsInfo.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

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

TEST(CharMetricsInfo, EmptyInfoWritesZeroBytesAndDoesNotReadBack) {
  CharMetricsInfo info;
  ByteSink out;
  ASSERT_TRUE(info.Write(out));
  EXPECT_EQ(out.bytes, zeros(128));
  auto in = source(out.bytes);
  EXPECT_FALSE(info.Read(in));
  auto again = source(out.bytes);
  EXPECT_EQ(info.ReadChecked(again), CharMetricsInfo::ReadResult::kEmpty);
  EXPECT_THROW(info.GetCharMetricsRange(128), std::out_of_range);
}

TEST(CharMetricsInfo, WritesEachSlotInOrder) {
  CharMetricsInfo info;
  ASSERT_TRUE(addAdvance(info, 0x41, 1366));
  ASSERT_TRUE(addAdvance(info, 0x20, 500));
  ASSERT_TRUE(addAdvance(info, 0x1D80, 7));  // bit 4, third block
  ByteSink out;
  ASSERT_TRUE(info.Write(out));
  EXPECT_EQ(out.bytes, hex("01 00000000 7F000000 0200 2000 F401 4100 5605") + zeros(3) +
                           hex("02 03 01 02 01 801D0000 BF1D0000 0100 0000 0700") + zeros(123));
}

TEST(CharMetricsInfo, LooksCharactersUpByTheirSlot) {
  CharMetricsInfo info;
  addAdvance(info, 0x41, 1366);
  addAdvance(info, 0xAC00, 920);   // bit 56, block 1
  addAdvance(info, 0x4E00, 1000);  // bit 59, block 0
  addAdvance(info, 0x1F600, 1200); // bit 127
  EXPECT_EQ(info.GetCharMetrics(0x41)->GetAdvance(), 1366);
  EXPECT_EQ(info.GetCharMetrics(0xAC00)->GetAdvance(), 920);
  EXPECT_EQ(info.GetCharMetrics(0x4E00)->GetAdvance(), 1000);
  EXPECT_EQ(info.GetCharMetrics(0x1F600)->GetAdvance(), 1200);
  EXPECT_TRUE(info.IsVisibleChar(0x1F600));
  EXPECT_EQ(info.GetCharMetrics(0x42), nullptr);
  EXPECT_FALSE(info.IsVisibleChar(0xAC01));
  EXPECT_EQ(info.GetCharMetrics(0x0860), nullptr);  // no bit
  EXPECT_EQ(info.GetCharMetrics(0xFFFFFFFFu), nullptr);
}

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
  info.SetCharMetricsRange(2, new ZippedCharMetricsRange(0x3000, 0x303F, new CharMetrics(9),
                                                         new char[8]()));
  EXPECT_EQ(info.GetCharMetrics(0x100), nullptr);
  EXPECT_FALSE(info.IsVisibleChar(0x100));
}

TEST(CharMetricsInfo, ZipReplacesUniformRangesOnly) {
  CharMetricsInfo info;
  addAdvance(info, 0x30, 1000);
  addAdvance(info, 0x39, 1000);
  addAdvance(info, 0xE9, 600);           // bit 1: a single entry stays single
  addAdvance(info, 0x0250, 500);         // bit 4 block 0: uniform
  addAdvance(info, 0x0251, 500);
  addAdvance(info, 0x1D00, 1);           // bit 4 block 1: mixed
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

TEST(CharMetricsInfo, ReadReplacesWhatWasThereAndSkipsUnknownTypes) {
  CharMetricsInfo info;
  addAdvance(info, 0x41, 1);
  std::string bytes = hex("05") + hex("01 80000000 FF000000 0100 4100 0700") + zeros(126);
  auto in = source(bytes);
  ASSERT_TRUE(info.Read(in));
  EXPECT_EQ(info.GetCharMetricsRange(0), nullptr);
  EXPECT_EQ(info.GetCharMetrics(0x41), nullptr);
  EXPECT_EQ(info.GetCharMetrics(0xC1)->GetAdvance(), 7);
  EXPECT_EQ(in.Available(), 0u);
}

TEST(CharMetricsInfo, RoundTripOfEveryKind) {
  CharMetricsInfo info;
  for (unsigned code = 0x20; code < 0x7F; ++code) {
    addAdvance(info, code, static_cast<unsigned short>(code));
  }
  addAdvance(info, 0x3041, 1000);   // bit 49, will be zipped
  addAdvance(info, 0x3093, 1000);
  addAdvance(info, 0xAC00, 920);    // bit 56, multi
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
  for (unsigned code : {0x20u, 0x41u, 0x7Eu, 0x7Fu, 0x3041u, 0x3042u, 0x3093u, 0xAC00u, 0xAC01u,
                        0xD7B0u, 0x2F800u, 0x2F801u, 0x1F0A0u}) {
    const CharMetrics* original = info.GetCharMetrics(code);
    const CharMetrics* read = copy.GetCharMetrics(code);
    ASSERT_EQ(original == nullptr, read == nullptr) << std::hex << code;
    if (original != nullptr) {
      EXPECT_EQ(read->GetAdvance(), original->GetAdvance()) << code;
    }
    EXPECT_EQ(copy.IsVisibleChar(code), info.IsVisibleChar(code)) << std::hex << code;
  }
  EXPECT_EQ(copy.GetCharMetricsRange(49)->GetType(), CharMetricsRange::kZipped);
  EXPECT_EQ(copy.GetCharMetrics(0x3042)->GetAdvance(), 1000);
  EXPECT_FALSE(copy.IsVisibleChar(0x3042));
  // Written again, the copy gives the same bytes.
  ByteSink again;
  ASSERT_TRUE(copy.Write(again));
  EXPECT_EQ(again.bytes, out.bytes);
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
