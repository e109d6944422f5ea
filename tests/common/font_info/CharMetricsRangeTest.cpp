#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "common/font_info/ZippedCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"

namespace {

using font_info_test::ByteSink;
using font_info_test::hex;
using font_info_test::source;
using qro_common::CharMetrics;
using qro_common::CharMetricsRange;
using qro_common::MultiCharMetricsRange;
using qro_common::SingleCharMetricsRange;
using qro_common::ZippedCharMetricsRange;

TEST(CharMetrics, TwoBytesLowFirst) {
  ByteSink out;
  ASSERT_TRUE(CharMetrics(0x1234).Write(out));
  EXPECT_EQ(out.bytes, hex("3412"));
  CharMetrics metrics;
  std::string bytes = hex("E803");
  auto in = source(bytes);
  ASSERT_TRUE(metrics.Read(in));
  EXPECT_EQ(metrics.GetAdvance(), 1000);
  EXPECT_FALSE(metrics.Read(in));
}

TEST(SingleCharMetricsRange, GetAndVisibilityFollowPresentEntries) {
  SingleCharMetricsRange range(0x100, 0x17F);
  EXPECT_EQ(range.GetSize(), 0x80);
  range.Set(0x101, new CharMetrics(600));
  range.SetAdvance(0x17F, 0);
  ASSERT_NE(range.Get(0x101), nullptr);
  EXPECT_EQ(range.Get(0x101)->GetAdvance(), 600);
  EXPECT_TRUE(range.IsVisibleChar(0x17F));
  ASSERT_NE(range.Get(0x17F), nullptr);
  EXPECT_EQ(range.Get(0x17F)->GetAdvance(), 0);
  EXPECT_EQ(range.Get(0x102), nullptr);
  EXPECT_FALSE(range.IsVisibleChar(0x102));
  // Outside the range, on both sides.
  EXPECT_EQ(range.Get(0xFF), nullptr);
  EXPECT_EQ(range.Get(0x180), nullptr);
  EXPECT_FALSE(range.IsVisibleChar(0xFFFFFFFFu));
  EXPECT_EQ(range.GetPresentCount(), 2);
  range.RemoveAll();
  EXPECT_EQ(range.Get(0x101), nullptr);
  EXPECT_EQ(range.GetSize(), 0x80);
}

TEST(SingleCharMetricsRange, SetHandlesItsOwnEntriesNullAndStrayCodes) {
  SingleCharMetricsRange range(0, 15);
  range.Set(3, new CharMetrics(10));
  range.Set(3, range.Get(3));        // its own entry: kept, not deleted
  range.Set(4, range.Get(3));        // copies the value
  EXPECT_EQ(range.Get(3)->GetAdvance(), 10);
  EXPECT_EQ(range.Get(4)->GetAdvance(), 10);
  range.Set(3, nullptr);
  EXPECT_FALSE(range.IsVisibleChar(3));
  range.Set(16, new CharMetrics(1));  // outside: deleted (the leak checker would tell)
  EXPECT_EQ(range.GetPresentCount(), 1);
}

TEST(SingleCharMetricsRange, InvalidBoundsMakeAnEmptyRange) {
  for (auto bounds : {std::make_pair(-1, -1), std::make_pair(10, 5), std::make_pair(0, 0x10000),
                      std::make_pair(0x10FFFF, 0x110000)}) {
    SingleCharMetricsRange range(bounds.first, bounds.second);
    EXPECT_EQ(range.GetSize(), 0);
    range.Set(static_cast<unsigned>(bounds.first), new CharMetrics(1));
    EXPECT_EQ(range.Get(static_cast<unsigned>(bounds.first)), nullptr);
    ByteSink out;
    EXPECT_FALSE(range.Write(out));
    EXPECT_TRUE(out.bytes.empty());
  }
  // The largest block still fits.
  SingleCharMetricsRange planeSixteen(0x100000, 0x10FFFD);
  EXPECT_EQ(planeSixteen.GetSize(), 65534);
}

TEST(SingleCharMetricsRange, VisibleCharInfoHasOneBitPerCode) {
  SingleCharMetricsRange range(0x30, 0x40);  // 17 codes: 3 bytes
  range.SetAdvance(0x30, 1);
  range.SetAdvance(0x39, 1);
  range.SetAdvance(0x3F, 1);
  range.SetAdvance(0x40, 1);
  std::unique_ptr<char[]> bits(range.MakeVisibleCharInfo());
  EXPECT_EQ(std::string(bits.get(), 3), hex("01 82 01"));
}

TEST(SingleCharMetricsRange, CheckZipNeedsTwoEqualAdvances) {
  SingleCharMetricsRange range(0, 127);
  EXPECT_EQ(range.CheckZipCharMetrics(), nullptr);
  range.SetAdvance(0x41, 1000);
  EXPECT_EQ(range.CheckZipCharMetrics(), nullptr);
  range.SetAdvance(0x42, 1000);
  std::unique_ptr<CharMetrics> shared(range.CheckZipCharMetrics());
  ASSERT_NE(shared, nullptr);
  EXPECT_EQ(shared->GetAdvance(), 1000);
  range.SetAdvance(0x7F, 999);
  EXPECT_EQ(range.CheckZipCharMetrics(), nullptr);
}

TEST(SingleCharMetricsRange, ReadRejectsBadBodies) {
  const char* bodies[] = {
      "05000000 04000000 0000",                // first > last
      "FFFFFFFF 04000000 0000",                // negative first
      "00001000 05001100 0000",                // last beyond U+10FFFF
      "00000000 FFFF0000 0000",                // 65536 codes
      "00000000 03000000 0500 0000 0100 0100 0100 0200 0100 0300 0100 0400 0100",  // K > size
      "00000000 03000000 0100 0400 0100",      // offset past the end
      "00000000 03000000 0200 0200 0100 0100 0100",  // offsets not ascending
      "00000000 03000000 0200 0100 0100 0100 0100",  // repeated offset
  };
  for (const char* text : bodies) {
    std::string bytes = hex(text);
    auto in = source(bytes);
    SingleCharMetricsRange range(-1, -1);
    EXPECT_FALSE(range.Read(in)) << text;
    EXPECT_EQ(range.GetSize(), 0) << text;
    EXPECT_EQ(range.Get(0), nullptr);
  }
}

TEST(ZippedCharMetricsRange, SharedAdvanceForEveryCodeOfTheRange) {
  char* bits = new char[2]{0x05, 0x00};  // codes 0x30 and 0x32
  ZippedCharMetricsRange range(0x30, 0x3F, new CharMetrics(1000), bits);
  ASSERT_NE(range.Get(0x31), nullptr);
  EXPECT_EQ(range.Get(0x31)->GetAdvance(), 1000);
  EXPECT_EQ(range.Get(0x30), range.Get(0x3F));
  EXPECT_TRUE(range.IsVisibleChar(0x30));
  EXPECT_FALSE(range.IsVisibleChar(0x31));
  EXPECT_TRUE(range.IsVisibleChar(0x32));
  EXPECT_EQ(range.Get(0x40), nullptr);
  EXPECT_FALSE(range.IsVisibleChar(0x2F));
}

TEST(ZippedCharMetricsRange, WritesBitsThenTheSharedAdvance) {
  SingleCharMetricsRange single(0x80, 0xFF);
  single.SetAdvance(0xA0, 250);
  single.SetAdvance(0xFF, 250);
  ZippedCharMetricsRange range(0x80, 0xFF, single.CheckZipCharMetrics(),
                               single.MakeVisibleCharInfo());
  ByteSink out;
  ASSERT_TRUE(range.Write(out));
  EXPECT_EQ(out.bytes, hex("03 80000000 FF000000"
                           "00000000 01000000 00000000 00000080"
                           "FA00"));
  std::string body = out.bytes.substr(1);
  auto in = source(body);
  ZippedCharMetricsRange copy;
  ASSERT_TRUE(copy.Read(in));
  EXPECT_EQ(copy.GetFirst(), 0x80);
  EXPECT_EQ(copy.GetLast(), 0xFF);
  for (unsigned code = 0x80; code <= 0xFF; ++code) {
    EXPECT_EQ(copy.IsVisibleChar(code), code == 0xA0 || code == 0xFF) << code;
    EXPECT_EQ(copy.Get(code)->GetAdvance(), 250);
  }
}

TEST(ZippedCharMetricsRange, ReadRejectsBadAndTruncatedBodies) {
  std::string good = hex("00000000 09000000 FF03 E803");
  for (size_t cut = 0; cut < good.size(); ++cut) {
    std::string part = good.substr(0, cut);
    auto in = source(part);
    ZippedCharMetricsRange range;
    EXPECT_FALSE(range.Read(in)) << cut;
    EXPECT_EQ(range.Get(0), nullptr);
    EXPECT_FALSE(range.IsVisibleChar(0));
  }
  for (const char* text : {"09000000 00000000 FF03 E803", "00000000 FFFF0000"}) {
    std::string bytes = hex(text);
    auto in = source(bytes);
    ZippedCharMetricsRange range;
    EXPECT_FALSE(range.Read(in)) << text;
  }
}

TEST(MultiCharMetricsRange, DelegatesToTheBlockOfTheCode) {
  MultiCharMetricsRange range(3);
  auto* latin = new SingleCharMetricsRange(0x0250, 0x02AF);
  latin->SetAdvance(0x0250, 11);
  range.SetCharMetricsRange(0, latin);
  ASSERT_NE(range.Get(0x0250), nullptr);
  EXPECT_EQ(range.Get(0x0250)->GetAdvance(), 11);
  EXPECT_TRUE(range.IsVisibleChar(0x0250));
  EXPECT_EQ(range.Get(0x1D80), nullptr);       // block 2 is empty
  EXPECT_EQ(range.Get(0x41), nullptr);         // not a block of this bit
  range.SetCharMetricsRange(0, latin);         // the same range again: kept
  EXPECT_EQ(range.GetCharMetricsRange(0), latin);
  range.SetCharMetricsRange(7, new SingleCharMetricsRange(0, 1));  // no such slot
  EXPECT_EQ(range.GetCharMetricsRange(7), nullptr);
  EXPECT_EQ(range.GetCharMetricsRange(-1), nullptr);
}

TEST(MultiCharMetricsRange, FewerSlotsThanBlocksIsSafe) {
  // A range of one slot in the Hangul bit (three blocks): codes of the
  // second and third block have no slot.
  MultiCharMetricsRange range(1);
  auto* jamo = new SingleCharMetricsRange(0xA960, 0xA97C);
  jamo->SetAdvance(0xA960, 5);
  range.SetCharMetricsRange(0, jamo);
  EXPECT_EQ(range.Get(0xA960)->GetAdvance(), 5);
  EXPECT_EQ(range.Get(0xAC00), nullptr);
  EXPECT_FALSE(range.IsVisibleChar(0xD7B0));
}

TEST(MultiCharMetricsRange, RoundTripWithSingleAndZippedBlocks) {
  MultiCharMetricsRange range(3);  // bit 56
  auto* syllables = new SingleCharMetricsRange(0xAC00, 0xD7AF);
  syllables->SetAdvance(0xAC00, 920);
  syllables->SetAdvance(0xD7A3, 921);
  range.SetCharMetricsRange(1, syllables);
  char* bits = new char[4]{0x03, 0x00, 0x00, 0x08};  // D7B0, D7B1, D7CB
  range.SetCharMetricsRange(
      2, new ZippedCharMetricsRange(0xD7B0, 0xD7CF, new CharMetrics(500), bits));
  ByteSink out;
  ASSERT_TRUE(range.Write(out));
  std::string body = out.bytes.substr(1);
  auto in = source(body);
  MultiCharMetricsRange copy(-1);
  ASSERT_TRUE(copy.Read(in));
  EXPECT_EQ(in.Available(), 0u);
  EXPECT_EQ(copy.GetCount(), 3);
  EXPECT_EQ(copy.GetCharMetricsRange(0), nullptr);
  ASSERT_NE(copy.GetCharMetricsRange(1), nullptr);
  EXPECT_EQ(copy.GetCharMetricsRange(1)->GetType(), CharMetricsRange::kSingle);
  EXPECT_EQ(copy.GetCharMetricsRange(2)->GetType(), CharMetricsRange::kZipped);
  EXPECT_EQ(copy.Get(0xAC00)->GetAdvance(), 920);
  EXPECT_EQ(copy.Get(0xD7A3)->GetAdvance(), 921);
  EXPECT_EQ(copy.Get(0xAC01), nullptr);
  EXPECT_TRUE(copy.IsVisibleChar(0xD7CB));
  EXPECT_FALSE(copy.IsVisibleChar(0xD7CC));
  EXPECT_EQ(copy.Get(0xD7CC)->GetAdvance(), 500);
}

TEST(MultiCharMetricsRange, ReadRejectsBadSlots) {
  const char* bodies[] = {
      // more occupied than slots
      "02 03 00 01 00000000 00000000 0000 01 01 00000000 00000000 0000",
      "03 01 03 01 00000000 00000000 0000",                               // slot past the end
      "03 02 01 01 00000000 00000000 0000 01 01 00000000 00000000 0000",  // slot repeated
      "03 01 00 01 05000000 00000000 0000",                               // bad sub-range
      "03 01 00 01 00000000 01000000",                                    // truncated
  };
  for (const char* text : bodies) {
    std::string bytes = hex(text);
    auto in = source(bytes);
    MultiCharMetricsRange range(-1);
    EXPECT_FALSE(range.Read(in)) << text;
    EXPECT_EQ(range.GetCount(), 0);
  }
}

}  // namespace
