#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "common/analysis/FontUSBType.h"
#include "tests/support/Python.h"

namespace {

using qro_common::FontUSBType;
using Info = FontUSBType::CodePointUSBInfo;

const std::string kScripts = std::string(KELFONT_TEST_SOURCE_DIR) + "/../scripts";

// The published block lists of every bit, as the table generator holds them:
// bit, sub-range index (-1 for a single-range bit), sub-range count (0 for a
// single-range bit), first and last code point.
using Record = std::array<long long, 5>;
std::vector<Record> listedRanges() {
  std::string text;
  EXPECT_TRUE(kelfont_test::runPython(
      "import sys; sys.path.insert(0, sys.argv[1]); import gen_usb_types as g; "
      "[print(b, i, len(r), f, l) for b, r in g.parse_bit_lists(g.MULTI) "
      "for i, (f, l) in enumerate(r)]; "
      "[print(b, -1, 0, *r[0]) for b, r in g.parse_single(g.SINGLE)]",
      {kScripts}, &text));
  std::istringstream in(text);
  std::vector<Record> result;
  for (Record r; in >> r[0] >> r[1] >> r[2] >> r[3] >> r[4];) result.push_back(r);
  return result;
}

Record record(const Info& info) {
  return {info.usbType, info.subRangeIndex, info.subRangeCount, info.rangeFirst, info.rangeLast};
}

// Every code point against the lists: its bit, and for both ends and the
// middle of every block the whole record. Code points outside the listed
// blocks (U+D7FC..D7FF, U+F0000..FEFFF, the gaps) have no bit and leave the
// rest of the record as it was.
TEST(FontUSBType, EveryCodePointMatchesTheLists) {
  std::vector<Record> ranges = listedRanges();
  ASSERT_GT(ranges.size(), 150u);
  std::vector<unsigned char> expected(0x110000, FontUSBType::kNoBit);
  for (const Record& r : ranges) {
    const auto first = static_cast<unsigned>(r[3]), last = static_cast<unsigned>(r[4]);
    for (unsigned cp = first; cp <= last; ++cp) expected[cp] = static_cast<unsigned char>(r[0]);
    for (unsigned cp : {first, first + (last - first) / 2, last}) {
      Info info{0, 9, 0, 0, 0};
      ASSERT_EQ(FontUSBType::GetCodePointUSBInfo(cp, info), r[0]) << std::hex << cp;
      EXPECT_EQ(record(info), r) << std::hex << cp;
    }
  }
  int mismatches = 0;
  for (unsigned cp = 0; cp < expected.size() && mismatches <= 20; ++cp) {
    mismatches += FontUSBType::GetUSBType(cp) != expected[cp];
    EXPECT_EQ(FontUSBType::GetUSBType(cp), expected[cp]) << "U+" << std::hex << cp;
  }
  for (unsigned cp : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(FontUSBType::GetUSBType(cp), 255) << std::hex << cp;
  }
  Info info{7, 3, 11, 22, 33};
  EXPECT_EQ(FontUSBType::GetCodePointUSBInfo(0x0860, info), 255);
  EXPECT_EQ(record(info), (Record{255, 3, 33, 11, 22}));
}

// The generator itself checks that its lists do not overlap, that the code
// points outside them are exactly the known gaps, and that the script
// classes of the character-type table pick the same default fonts.
TEST(UsbTypesGenerator, CheckedInSourceIsUpToDate) {
  std::string command =
      std::string(KELFONT_PYTHON) + " -B " + kScripts + "/gen_usb_types.py --check";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace
