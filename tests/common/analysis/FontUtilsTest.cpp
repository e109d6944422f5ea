#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "common/analysis/FontUtils.h"
#include "tests/support/Python.h"

namespace {

using qro_common::FontUtils;

TEST(FontUtils, MacRomanEncAgreesWithPythonsMacRomanCodec) {
  std::string text;
  ASSERT_TRUE(kelfont_test::runPython(
      "print(' '.join(str(ord(bytes([b]).decode('mac_roman'))) for b in range(256)))", {}, &text));
  std::istringstream in(text);
  std::vector<unsigned> expected;
  for (unsigned value; in >> value;) expected.push_back(value);
  ASSERT_EQ(expected.size(), 256u);
  for (unsigned byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(FontUtils::MacRomanEnc[byte], expected[byte]) << "byte 0x" << std::hex << byte;
  }
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
