#include "common/registry/UILangCode.h"

#include <gtest/gtest.h>

#include "base/Environment.h"
#include "base/Locale.h"

namespace {

using qro_base::Locale;

class UILangCodeTest : public ::testing::Test {
 protected:
  void SetUp() override { saved_ = qro_base::ensureEnvironment().GetUILocale(); }
  void TearDown() override { qro_base::ensureEnvironment().SetUILocale(saved_); }

  static void setUILocale(const char* language, const char* country) {
    qro_base::ensureEnvironment().SetUILocale(Locale(language, country));
  }

  Locale saved_{"en", "US"};
};

TEST_F(UILangCodeTest, LanguageAndCountryOfTheUserInterfaceLocale) {
  setUILocale("ko", "KR");
  EXPECT_EQ(qro_common::getUILangCode(), 0x0412);
  setUILocale("en", "US");
  EXPECT_EQ(qro_common::getUILangCode(), 0x0409);
  setUILocale("zh", "TW");
  EXPECT_EQ(qro_common::getUILangCode(), 0x0404);
  setUILocale("ja", "JP");
  EXPECT_EQ(qro_common::getUILangCode(), 0x0411);
}

TEST_F(UILangCodeTest, UnknownTagGivesZero) {
  setUILocale("xx", "YY");
  EXPECT_EQ(qro_common::getUILangCode(), 0);
  // The tag is matched exactly: the country is not upper-cased.
  setUILocale("ko", "kr");
  EXPECT_EQ(qro_common::getUILangCode(), 0);
}

}  // namespace
