#include "base/Locale.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using qro_base::Locale;

void expectLocale(const Locale& locale, const char* language, const char* country) {
  EXPECT_EQ(locale.GetLanguage(), language);
  EXPECT_EQ(locale.GetCountry(), country);
}

TEST(LocaleConstruction, NullCountryIsTheDefaultCountry) {
  expectLocale(Locale("ko", nullptr), "ko", "KR");
  expectLocale(Locale("de", nullptr), "de", "AT");
  expectLocale(Locale("es", nullptr), "es", "ES_tradnl");
  expectLocale(Locale("fi", nullptr), "fi", "");
  expectLocale(Locale("he", "IL"), "he", "IL");
  // A given empty country stays empty in the C-string form.
  expectLocale(Locale("ko", ""), "ko", "");
  expectLocale(Locale(nullptr, nullptr), "", "");
}

TEST(LocaleConstruction, EmptyStringCountryIsTheDefaultCountry) {
  expectLocale(Locale(std::string("ko"), std::string()), "ko", "KR");
  expectLocale(Locale(std::string("pt"), std::string("")), "pt", "BR");
  expectLocale(Locale(std::string("fi"), std::string()), "fi", "");
  expectLocale(Locale(std::string("en"), std::string("GB")), "en", "GB");
}

TEST(LocaleConstruction, Constants) {
  expectLocale(Locale::ENGLISH, "en", "US");
  expectLocale(Locale::KOREAN, "ko", "KR");
  expectLocale(Locale::KOREA, "ko", "KR");
  expectLocale(Locale::JAPAN, "ja", "JP");
  expectLocale(Locale::DEFAULT, "en", "US");
}

TEST(LocaleCreate, SplitsAtUnderscoreOrHyphen) {
  std::unique_ptr<Locale> locale(Locale::Create("zh_TW"));
  expectLocale(*locale, "zh", "TW");
  locale.reset(Locale::Create("pt-PT"));
  expectLocale(*locale, "pt", "PT");
  locale.reset(Locale::Create("sr_Latn_SP"));
  expectLocale(*locale, "sr", "Latn");
  locale.reset(Locale::Create("ko--KR"));
  expectLocale(*locale, "ko", "KR");
}

TEST(LocaleCreate, SingleTokenGetsTheDefaultCountry) {
  std::unique_ptr<Locale> locale(Locale::Create("ko"));
  expectLocale(*locale, "ko", "KR");
  locale.reset(Locale::Create("fi"));
  expectLocale(*locale, "fi", "");
  locale.reset(Locale::Create("_ja"));
  expectLocale(*locale, "ja", "JP");
}

TEST(LocaleCreate, OddNames) {
  // A trailing separator leaves an empty second token.
  std::unique_ptr<Locale> locale(Locale::Create("ko-"));
  expectLocale(*locale, "ko", "");
  locale.reset(Locale::Create(""));
  expectLocale(*locale, "", "");
  locale.reset(Locale::Create("-"));
  expectLocale(*locale, "", "");
  locale.reset(Locale::Create(nullptr));
  expectLocale(*locale, "", "");
}

TEST(LocaleCompare, LocalesAndLanguageTexts) {
  EXPECT_TRUE(Locale("ko", "KR") == Locale::KOREA);
  EXPECT_FALSE(Locale("ko", "KR") != Locale::KOREA);
  EXPECT_TRUE(Locale("ko", "kr") != Locale::KOREA);
  EXPECT_TRUE(Locale("en", "GB") != Locale::ENGLISH);
  EXPECT_TRUE(Locale("en", "GB") == "en");
  EXPECT_FALSE(Locale("en", "GB") != "en");
  EXPECT_TRUE(Locale("en", "GB") != "EN");
  EXPECT_TRUE(Locale("en", "GB") != "en-GB");
  EXPECT_FALSE(Locale("en", "GB") == static_cast<const char*>(nullptr));
}

TEST(LocaleRightToLeft, ExactlyTheListedSpellings) {
  for (const char* language : {"ar", "AR", "he", "HE", "ur", "UR", "fa", "FA"}) {
    EXPECT_TRUE(Locale(language, "").IsLanguageForRTL()) << language;
  }
  for (const char* language : {"Ar", "aR", "iw", "IW", "yi", "en", "ko", "", "arb", "a"}) {
    EXPECT_FALSE(Locale(language, "").IsLanguageForRTL()) << language;
  }
  EXPECT_TRUE(Locale("he", "IL").IsLanguageForRTL());
  EXPECT_FALSE(Locale("iw", "IL").IsLanguageForRTL());
}

}  // namespace
