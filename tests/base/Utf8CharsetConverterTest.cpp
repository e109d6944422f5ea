#include "base/Utf8CharsetConverter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/DefaultCharsetConverterManager.h"

namespace {

std::vector<unsigned short> convert(const std::string& bytes, unsigned room, bool last,
                                    unsigned* consumed) {
  qro_base::Utf8CharsetConverter converter;
  std::vector<unsigned short> units(room + 1, 0xAAAA);
  unsigned produced = 99;
  *consumed = converter.Convert(bytes.data(), static_cast<unsigned>(bytes.size()), units.data(),
                                room, last, produced);
  EXPECT_EQ(units[room], 0xAAAA) << "wrote past the target";
  units.resize(produced);
  return units;
}

using Units = std::vector<unsigned short>;

TEST(Utf8CharsetConverter, EdgesTailsAndAFullTarget) {
  unsigned consumed = 0;
  std::string edges = "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF4\x8F\xBF\xBF";
  EXPECT_EQ(convert(edges, 8, true, &consumed), (Units{0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0xDBFF, 0xDFFF}));
  EXPECT_EQ(consumed, edges.size());
  // An incomplete tail is left for the next call unless this is the last.
  EXPECT_EQ(convert("a\xE2\x82", 8, false, &consumed), (Units{'a'}));
  EXPECT_EQ(consumed, 1u);
  EXPECT_EQ(convert("\xE2\x82", 8, true, &consumed), (Units{0xFFFD}));
  EXPECT_EQ(consumed, 2u);
  // A bad byte after the lead is known to be wrong without waiting.
  EXPECT_EQ(convert("\xE2" "a", 8, false, &consumed), (Units{0xFFFD, 'a'}));
  // A full target stops before a character that does not fit: U+10000
  // needs two units.
  EXPECT_EQ(convert("ab\xF0\x90\x80\x80", 3, false, &consumed), (Units{'a', 'b'}));
  EXPECT_EQ(consumed, 2u);
  EXPECT_EQ(convert("ab", 0, true, &consumed), Units{});
  EXPECT_EQ(consumed, 0u);
}

TEST(DefaultCharsetConverterManager, KnowsUtf8Only) {
  qro_base::DefaultCharsetConverterManager manager;
  EXPECT_NE(manager.GetConverter(65001), nullptr);
  EXPECT_EQ(manager.GetConverter(65001), manager.GetConverter(65001));
  EXPECT_EQ(manager.GetConverter(949), nullptr);
}

}  // namespace
