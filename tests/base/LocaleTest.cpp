#include <gtest/gtest.h>

#include "base/Locale.h"

namespace {

using qro_base::Locale;

// Construction, Create and right-to-left: tests/data/base_functions.tsv.
TEST(Locale, CompareWithLocalesAndLanguageTexts) {
  EXPECT_EQ(Locale::DEFAULT.GetLanguage() + Locale::DEFAULT.GetCountry(), "enUS");
  EXPECT_TRUE(Locale("ko", "KR") == Locale::KOREA);
  EXPECT_TRUE(Locale("ko", "kr") != Locale::KOREA);
  EXPECT_TRUE(Locale("en", "GB") == "en");
  EXPECT_TRUE(Locale("en", "GB") != "EN");
  EXPECT_TRUE(Locale("en", "GB") != "en-GB");
  EXPECT_FALSE(Locale("en", "GB") == static_cast<const char*>(nullptr));
}

}  // namespace
