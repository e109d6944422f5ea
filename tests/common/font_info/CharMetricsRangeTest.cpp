// Ranges of advances; the table of ranges and the byte forms: tests/data/advance_tables.tsv,
// tests/data/byte_formats.tsv.
#include <gtest/gtest.h>

#include <string>

#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"

namespace {

using font_info_test::ByteSink;
using qro_common::CharMetrics;
using qro_common::MultiCharMetricsRange;
using qro_common::SingleCharMetricsRange;

TEST(SingleCharMetricsRange, EntriesInsideTheRangeOnly) {
  SingleCharMetricsRange range(0x100, 0x17F);
  EXPECT_EQ(range.GetSize(), 0x80);
  range.Set(0x101, new CharMetrics(600));
  range.SetAdvance(0x17F, 0);
  EXPECT_EQ(range.Get(0x101)->GetAdvance(), 600);
  EXPECT_TRUE(range.IsVisibleChar(0x17F));
  EXPECT_EQ(range.Get(0x102), nullptr);
  EXPECT_EQ(range.Get(0xFF), nullptr);
  EXPECT_EQ(range.Get(0x180), nullptr);
  EXPECT_FALSE(range.IsVisibleChar(0xFFFFFFFFu));
  range.Set(0x101, range.Get(0x101));  // its own entry: kept, not deleted
  range.Set(0x102, range.Get(0x101));  // copies the value
  EXPECT_EQ(range.Get(0x102)->GetAdvance(), 600);
  range.Set(0x17F, nullptr);
  range.Set(0x180, new CharMetrics(1));  // outside: deleted (the leak checker would tell)
  EXPECT_EQ(range.GetPresentCount(), 2);
  // Invalid bounds make an empty range that writes nothing.
  for (auto bounds : {std::make_pair(10, 5), std::make_pair(0, 0x10000)}) {
    SingleCharMetricsRange empty(bounds.first, bounds.second);
    EXPECT_EQ(empty.GetSize(), 0);
    ByteSink out;
    EXPECT_FALSE(empty.Write(out));
  }
  EXPECT_EQ(SingleCharMetricsRange(0x100000, 0x10FFFD).GetSize(), 65534);  // the largest block
}

TEST(MultiCharMetricsRange, DelegatesToTheBlockOfTheCode) {
  MultiCharMetricsRange range(1);  // one slot of the three blocks of bit 56
  auto* jamo = new SingleCharMetricsRange(0xA960, 0xA97C);
  jamo->SetAdvance(0xA960, 5);
  range.SetCharMetricsRange(0, jamo);
  EXPECT_EQ(range.Get(0xA960)->GetAdvance(), 5);
  EXPECT_TRUE(range.IsVisibleChar(0xA960));
  EXPECT_EQ(range.Get(0xAC00), nullptr);  // blocks without a slot
  EXPECT_FALSE(range.IsVisibleChar(0xD7B0));
  EXPECT_EQ(range.Get(0x41), nullptr);  // not a block of this bit
  range.SetCharMetricsRange(0, jamo);   // the same range again: kept
  EXPECT_EQ(range.GetCharMetricsRange(0), jamo);
  range.SetCharMetricsRange(7, new SingleCharMetricsRange(0, 1));  // no such slot
  EXPECT_EQ(range.GetCharMetricsRange(7), nullptr);
  EXPECT_EQ(range.GetCharMetricsRange(-1), nullptr);
}

}  // namespace
