#include "base/U16CharTraits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/TextConversion.h"

namespace {

// The u16 strings against the standard library's own UTF-16 strings: both
// hold unsigned 16-bit units, so every operation must agree, including
// units above 0x7FFF and embedded zeros.
TEST(U16CharTraits, StringsBehaveAsTheStandardUtf16Strings) {
  const std::vector<std::u16string> texts = {
      u"", u"a", u"ab", std::u16string(u"a\0b", 3), u"\u7FFF", u"\u8000", u"\uFFFF",
      u"\uFFFFa", u"b\u8000\u7FFF", u"ab\uFFFF"};
  auto mine = [](const std::u16string& text) { return qro_base::u16string(text.begin(), text.end()); };
  auto sign = [](int value) { return (value > 0) - (value < 0); };
  for (const auto& a : texts) {
    qro_base::u16string ma = mine(a);
    ASSERT_EQ(ma.size(), a.size());
    EXPECT_EQ(qro_base::U16CharTraits::length(ma.c_str()),
              std::char_traits<char16_t>::length(a.c_str()));
    for (const auto& b : texts) {
      qro_base::u16string mb = mine(b);
      SCOPED_TRACE(testing::PrintToString(a) + " vs " + testing::PrintToString(b));
      EXPECT_EQ(sign(ma.compare(mb)), sign(a.compare(b)));
      EXPECT_EQ(ma < mb, a < b);
      EXPECT_EQ(ma == mb, a == b);
      EXPECT_EQ(ma.find(mb), a.find(b));
      EXPECT_EQ(ma.rfind(mb), a.rfind(b));
      EXPECT_EQ(ma.find_first_of(mb), a.find_first_of(b));
      EXPECT_EQ(ma.find_last_not_of(mb), a.find_last_not_of(b));
      qro_base::u16string joined = ma + mb;
      joined.insert(1 % (joined.size() + 1), ma);  // moves the tail over itself
      std::u16string expected = a + b;
      expected.insert(1 % (expected.size() + 1), a);
      EXPECT_TRUE(std::equal(joined.begin(), joined.end(), expected.begin(), expected.end()));
    }
  }
  qro_base::u16string filled(3, 0xFFFF);
  EXPECT_EQ(filled.find(0xFFFF, 1), 1u);
  EXPECT_EQ(qro_base::U16CharTraits::to_int_type(0xFFFF), 0xFFFF);
  EXPECT_NE(qro_base::U16CharTraits::to_int_type(0xFFFF), qro_base::U16CharTraits::eof());
}

}  // namespace
