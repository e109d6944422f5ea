// Characters without a Unicode-range slot (Javanese, Adlam, ...): answered
// by the requested face when it maps them, else led to a face that does
// through "fx", which counts only beside the "fi" it was written with.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

std::string le(unsigned value, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
  return bytes;
}

// The mark of the "fi" bytes: FNV-1a's step over the file as 8-byte
// little-endian words (the last zero-padded), the byte count mixed in last.
std::string fingerprint(const std::string& fi) {
  std::uint64_t hash = 14695981039346656037ull;
  std::string padded = fi + std::string((8 - fi.size() % 8) % 8, '\0');
  for (std::size_t i = 0; i < padded.size(); i += 8) {
    std::uint64_t word = 0;
    for (int b = 0; b < 8; ++b) word |= std::uint64_t(static_cast<unsigned char>(padded[i + b])) << (8 * b);
    hash = (hash ^ word) * 1099511628211ull;
  }
  hash ^= fi.size();
  return le(static_cast<unsigned>(hash), 4) + le(static_cast<unsigned>(hash >> 32), 4);
}

TEST(CharsWithoutARange, LedToTheFaceThatMapsThemWhileFxMatchesFi) {
  TempDir fonts, storage;
  for (const char* name : {"basic.ttf", "gpos_kern.ttf"}) {
    ASSERT_EQ(symlink(testFontPath(name).c_str(), fonts.file(name).c_str()), 0);
  }
  const std::string base = storage.path() + "/";
  TestFontManager manager(nullptr, base, {fonts.path()});
  manager.Initialize();
  const int basic = manager.GetFontIndex("KelTest Basic");
  const int gpos = manager.GetFontIndex("KelTest Gpos");
  ASSERT_GE(basic, 0);
  ASSERT_GE(gpos, 0);
  // gpos_kern.ttf maps U+A9B1 and U+1E900 to A's glyph: 538 of 1000 units.
  for (unsigned code : {0xA9B1u, 0x1E900u}) {
    for (int requested : {gpos, basic}) {
      int font = requested;
      unsigned ch = code;
      EXPECT_EQ(manager.ConfirmVisibleChar(font, ch, false, false), requested != gpos);
      EXPECT_EQ(font, gpos);
      EXPECT_EQ(ch, code);
      EXPECT_FLOAT_EQ(manager.GetCharAdvanceRatio(requested, code, false, false), 0.538f);
    }
  }
  const std::string run = le(static_cast<unsigned>(gpos), 2);
  EXPECT_EQ(readFile(base + "FInfo/fx"), fingerprint(readFile(base + "FInfo/fi")) + le(2, 4) +
                                             le(0xA9B1, 4) + le(0xA9B1, 4) + run +
                                             le(0x1E900, 4) + le(0x1E900, 4) + run);

  // Beside other "fi" bytes, "fx" gives nothing: the road ends in a space.
  std::string stale = readFile(base + "FInfo/fx");
  stale[0] = static_cast<char>(stale[0] ^ 1);
  ASSERT_TRUE(writeFile(base + "FInfo/fx", stale));
  TestFontManager again(nullptr, base, {fonts.path()});
  again.Initialize();
  int font = basic;
  unsigned ch = 0xA9B1;
  again.ConfirmVisibleChar(font, ch, false, false);
  EXPECT_EQ(ch, 0x20u);
}

}  // namespace
}  // namespace kelfont_test
