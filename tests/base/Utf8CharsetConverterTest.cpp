#include "base/Utf8CharsetConverter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/DefaultCharsetConverterManager.h"

namespace {

using qro_base::Utf8CharsetConverter;

TEST(Utf8CharsetConverter, LeavesAnIncompleteTailUnlessLast) {
  Utf8CharsetConverter converter;
  std::string bytes = "a\xE2\x82";
  unsigned short units[8] = {};
  unsigned produced = 99;
  EXPECT_EQ(converter.Convert(bytes.data(), 3, units, 8, false, produced), 1u);
  EXPECT_EQ(produced, 1u);
  EXPECT_EQ(units[0], 'a');
  EXPECT_EQ(converter.Convert(bytes.data() + 1, 2, units, 8, true, produced), 2u);
  EXPECT_EQ(produced, 1u);
  EXPECT_EQ(units[0], 0xFFFD);
  // A bad byte after the lead is known to be wrong without waiting.
  EXPECT_EQ(converter.Convert("\xE2" "a", 2, units, 8, false, produced), 2u);
  EXPECT_EQ(produced, 2u);
  EXPECT_EQ(units[0], 0xFFFD);
  EXPECT_EQ(units[1], 'a');
}

TEST(Utf8CharsetConverter, StopsWhenTheTargetIsFull) {
  Utf8CharsetConverter converter;
  std::string bytes = "ab\xF0\x90\x80\x80";  // U+10000 needs two units
  unsigned short units[3] = {};
  unsigned produced = 0;
  EXPECT_EQ(converter.Convert(bytes.data(), 6, units, 3, false, produced), 2u);
  EXPECT_EQ(produced, 2u);
  EXPECT_EQ(converter.Convert(bytes.data() + 2, 4, units, 3, true, produced), 4u);
  EXPECT_EQ(produced, 2u);
  EXPECT_EQ(units[0], 0xD800);
  EXPECT_EQ(units[1], 0xDC00);
  EXPECT_EQ(converter.Convert(bytes.data(), 6, units, 0, true, produced), 0u);
  EXPECT_EQ(produced, 0u);
}

TEST(Utf8CharsetConverter, DecodesTheEdgesOfEachLength) {
  Utf8CharsetConverter converter;
  std::string bytes = "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF4\x8F\xBF\xBF";
  unsigned short units[8] = {};
  unsigned produced = 0;
  EXPECT_EQ(converter.Convert(bytes.data(), static_cast<unsigned>(bytes.size()), units, 8, true,
                              produced),
            bytes.size());
  std::vector<unsigned short> expected{0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0xDBFF, 0xDFFF};
  EXPECT_EQ(std::vector<unsigned short>(units, units + produced), expected);
}

TEST(DefaultCharsetConverterManager, KnowsUtf8Only) {
  qro_base::DefaultCharsetConverterManager manager;
  EXPECT_NE(manager.GetConverter(65001), nullptr);
  EXPECT_EQ(manager.GetConverter(65001), manager.GetConverter(65001));
  EXPECT_EQ(manager.GetConverter(949), nullptr);
  EXPECT_EQ(manager.GetConverter(0), nullptr);
}

}  // namespace
