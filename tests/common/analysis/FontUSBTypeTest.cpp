// The analysis layer's tables against what they are made from: the bit
// of every code point against the block lists of the table generator, and
// the Mac Roman table against Python's codec.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "common/analysis/FontUSBType.h"
#include "common/analysis/FontUtils.h"
#include "tests/support/Python.h"

namespace {

using qro_common::FontUSBType;
using qro_common::FontUtils;
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

TEST(FontUtils, MacRomanEncAgreesWithPythonsMacRomanCodec) {
  std::string text;
  ASSERT_TRUE(kelfont_test::runPython(
      "print(' '.join(str(ord(bytes([b]).decode('mac_roman'))) for b in range(256)))", {}, &text));
  std::istringstream in(text);
  unsigned byte = 0;
  for (unsigned value; byte < 256 && in >> value; ++byte)
    EXPECT_EQ(FontUtils::MacRomanEnc[byte], value) << byte;
  EXPECT_EQ(byte, 256u);
  // The revision with the euro sign and the Apple logo.
  EXPECT_EQ(FontUtils::MacRomanEnc[0xDB], 0x20AC);
  EXPECT_EQ(FontUtils::MacRomanEnc[0xF0], 0xF8FF);
  // Mac languages without a Windows language (the entries: common_functions.tsv):
  // 60, 63, 90..127, 132, 134, 136..139, 142, 147..149, 151.
  int none = 0;
  for (unsigned mac = 0; mac < FontUtils::kWinLangFromMacCount; ++mac) {
    none += FontUtils::WinLangFromMac[mac] == 0xFFFF;
  }
  EXPECT_EQ(none, 2 + 38 + 1 + 1 + 4 + 1 + 3 + 1);
}

}  // namespace
