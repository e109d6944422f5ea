#include "common/analysis/FontUtils.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>


namespace {

using qro_common::FontUtils;

// Python's own "mac_roman" codec, byte by byte, as code points.
std::vector<unsigned> pythonMacRoman() {
  const std::string command = std::string(KELFONT_PYTHON) +
                              " -c \"print(' '.join(str(ord(bytes([b]).decode('mac_roman')))"
                              " for b in range(256)))\"";
  std::vector<unsigned> result;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return result;
  std::string output;
  char chunk[512];
  size_t count;
  while ((count = fread(chunk, 1, sizeof chunk, pipe)) > 0) output.append(chunk, count);
  pclose(pipe);
  std::istringstream in(output);
  unsigned value;
  while (in >> value) result.push_back(value);
  return result;
}

TEST(FontUtils, MacRomanEncAgreesWithPythonsMacRomanCodec) {
  std::vector<unsigned> expected = pythonMacRoman();
  ASSERT_EQ(expected.size(), 256u);
  for (unsigned byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(FontUtils::MacRomanEnc[byte], expected[byte]) << "byte 0x" << std::hex << byte;
  }
  // The revision with the euro sign and the Apple logo.
  EXPECT_EQ(FontUtils::MacRomanEnc[0xDB], 0x20AC);
  EXPECT_EQ(FontUtils::MacRomanEnc[0xF0], 0xF8FF);
  EXPECT_EQ(FontUtils::MacRomanEnc[0], 0);
}

TEST(FontUtils, WinLangFromMacEntries) {
  struct Entry {
    unsigned mac;
    unsigned short windows;
  };
  const Entry entries[] = {
      {0, 0x0409},   {1, 0x040C},   {11, 0x0411},  {19, 0x0404},  {23, 0x0412},  {29, 0x043B},
      {33, 0x0804},  {42, 0x0C1A},  {50, 0x082C},  {59, 0x0463},  {60, 0xFFFF},  {63, 0xFFFF},
      {65, 0x043B},  {89, 0x0441},  {90, 0xFFFF},  {127, 0xFFFF}, {128, 0x0452}, {131, 0x0476},
      {132, 0xFFFF}, {143, 0x045D}, {145, 0x0C3C}, {146, 0x083C}, {150, 0x042C}, {151, 0xFFFF},
  };
  for (const Entry& e : entries) {
    EXPECT_EQ(FontUtils::WinLangFromMac[e.mac], e.windows) << e.mac;
    EXPECT_EQ(FontUtils::GetWinLangFromMac(e.mac), e.windows) << e.mac;
  }
  int none = 0;
  for (unsigned mac = 0; mac < FontUtils::kWinLangFromMacCount; ++mac) {
    none += FontUtils::WinLangFromMac[mac] == 0xFFFF;
  }
  // 60, 63, 90..127, 132, 134, 136..139, 142, 147..149, 151.
  EXPECT_EQ(none, 2 + 38 + 1 + 1 + 4 + 1 + 3 + 1);
  EXPECT_EQ(FontUtils::GetWinLangFromMac(152), 0xFFFF);
  EXPECT_EQ(FontUtils::GetWinLangFromMac(0x7FFF), 0xFFFF);
}

}  // namespace
