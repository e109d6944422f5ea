#include "base/Locale.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using qro_base::Locale;

std::string text(const Locale& locale) { return locale.GetLanguage() + "|" + locale.GetCountry(); }

TEST(Locale, ConstructionFillsTheDefaultCountry) {
  EXPECT_EQ(text(Locale("ko", nullptr)), "ko|KR");
  EXPECT_EQ(text(Locale("es", nullptr)), "es|ES_tradnl");
  EXPECT_EQ(text(Locale("fi", nullptr)), "fi|");
  // A given empty country stays empty in the C-string form, but not in the
  // std::string form.
  EXPECT_EQ(text(Locale("ko", "")), "ko|");
  EXPECT_EQ(text(Locale(std::string("pt"), std::string())), "pt|BR");
  EXPECT_EQ(text(Locale(nullptr, nullptr)), "|");
  EXPECT_EQ(text(Locale::DEFAULT), "en|US");
}

// Create splits with the tokenizer: empty tokens between separators are
// dropped, a trailing empty one is kept.
TEST(Locale, CreateSplitsAtUnderscoreOrHyphen) {
  const char* const cases[][2] = {
      {"zh_TW", "zh|TW"}, {"pt-PT", "pt|PT"}, {"sr_Latn_SP", "sr|Latn"}, {"ko--KR", "ko|KR"},
      {"ko", "ko|KR"},    {"_ja", "ja|JP"},   {"ko-", "ko|"},             {"-", "|"},
  };
  for (const auto& c : cases) {
    std::unique_ptr<Locale> locale(Locale::Create(c[0]));
    EXPECT_EQ(text(*locale), c[1]) << c[0];
  }
  std::unique_ptr<Locale> none(Locale::Create(nullptr));
  EXPECT_EQ(text(*none), "|");
}

TEST(Locale, CompareWithLocalesAndLanguageTexts) {
  EXPECT_TRUE(Locale("ko", "KR") == Locale::KOREA);
  EXPECT_TRUE(Locale("ko", "kr") != Locale::KOREA);
  EXPECT_TRUE(Locale("en", "GB") == "en");
  EXPECT_TRUE(Locale("en", "GB") != "EN");
  EXPECT_TRUE(Locale("en", "GB") != "en-GB");
  EXPECT_FALSE(Locale("en", "GB") == static_cast<const char*>(nullptr));
}

TEST(Locale, RightToLeftIsExactlyTheListedSpellings) {
  for (const char* language : {"ar", "AR", "he", "HE", "ur", "UR", "fa", "FA"}) {
    EXPECT_TRUE(Locale(language, "").IsLanguageForRTL()) << language;
  }
  for (const char* language : {"Ar", "iw", "yi", "en", "", "arb"}) {
    EXPECT_FALSE(Locale(language, "").IsLanguageForRTL()) << language;
  }
}

}  // namespace
