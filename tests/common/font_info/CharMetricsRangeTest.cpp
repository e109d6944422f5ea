// Ranges of advances; the table of ranges and the byte forms: tests/data/advance_tables.tsv,
// tests/data/byte_formats.tsv.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "common/font_info/MultiCharMetricsRange.h"
#include "common/font_info/SingleCharMetricsRange.h"
#include "tests/common/font_info/ByteSink.h"

namespace {

using font_info_test::ByteSink;
using font_info_test::source;
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

// The body the binary form prescribes for these present entries.
std::string singleBody(int first, int last, const std::map<unsigned, unsigned short>& entries) {
  std::string bytes(1, '\x01');
  auto put = [&bytes](unsigned value, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  };
  put(static_cast<unsigned>(first), 4);
  put(static_cast<unsigned>(last), 4);
  put(static_cast<unsigned>(entries.size()), 2);
  for (const auto& entry : entries) {
    put(entry.first, 2);
    put(entry.second, 2);
  }
  return bytes;
}

// Entries set in any order, changed and cleared, in a sparse block that
// first holds one advance only: every code answers as a plain map of the
// same entries would, and the written body lists exactly those entries.
TEST(SingleCharMetricsRange, AnyOrderOfChangesKeepsTheEntries) {
  const int first = 0x4E00;
  const int last = 0x9FFF;
  struct Step {
    unsigned offset;
    int advance;  // -1 clears
  };
  const Step steps[] = {
      {0, 1000},     {64, 1000}, {200, 1000}, {130, 1000},   // out of order, one advance
      {20991, 1000}, {5, 500},   {3, 1000},   {20000, 700},  // a second advance, then inserts
      {64, 900},     {130, -1},  {0, -1},     {20991, -1},   // changes, clears of both ends
      {7, 1000},     {20991, 1}, {200, -1},   {201, 2},
      {20991, -1},   {20002, 5}, {20900, 6},  {20500, 7},  // appends, then one between
  };
  SingleCharMetricsRange range(first, last);
  std::map<unsigned, unsigned short> model;
  for (const Step& step : steps) {
    const unsigned code = static_cast<unsigned>(first) + step.offset;
    if (step.advance < 0) {
      range.Set(code, nullptr);
      model.erase(step.offset);
    } else {
      range.SetAdvance(code, static_cast<unsigned short>(step.advance));
      model[step.offset] = static_cast<unsigned short>(step.advance);
    }
    const std::string at = "after offset " + std::to_string(step.offset);
    ASSERT_EQ(range.GetPresentCount(), static_cast<int>(model.size())) << at;
    for (unsigned offset = 0; offset <= static_cast<unsigned>(last - first); ++offset) {
      auto it = model.find(offset);
      const CharMetrics* metrics = range.Get(static_cast<unsigned>(first) + offset);
      ASSERT_EQ(metrics != nullptr, it != model.end()) << at << ", code offset " << offset;
      ASSERT_EQ(range.IsVisibleChar(static_cast<unsigned>(first) + offset), it != model.end());
      if (metrics != nullptr) {
        ASSERT_EQ(metrics->GetAdvance(), it->second) << at << ", " << offset;
      }
    }
    ByteSink out;
    ASSERT_TRUE(range.Write(out));
    ASSERT_EQ(out.bytes, singleBody(first, last, model)) << at;
    // What was written reads back the same.
    std::string body = out.bytes.substr(1);
    auto in = source(body);
    SingleCharMetricsRange reread(-1, -1);
    ASSERT_TRUE(reread.Read(in)) << at;
    ByteSink again;
    ASSERT_TRUE(reread.Write(again));
    EXPECT_EQ(again.bytes, out.bytes) << at;
  }
}

}  // namespace
