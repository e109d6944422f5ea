#include "common/registry/UILangCode.h"

#include <gtest/gtest.h>

#include "base/Environment.h"
#include "base/Locale.h"

namespace {

TEST(UILangCode, LanguageAndCountryOfTheUserInterfaceLocale) {
  qro_base::Environment& environment = qro_base::ensureEnvironment();
  const qro_base::Locale saved = environment.GetUILocale();
  struct Row {
    const char *language, *country;
    int code;
  } rows[] = {{"ko", "KR", 0x0412}, {"en", "US", 0x0409}, {"zh", "TW", 0x0404},
              {"ja", "JP", 0x0411}, {"xx", "YY", 0},
              {"ko", "kr", 0}};  // matched exactly: the country is not upper-cased
  for (const Row& row : rows) {
    environment.SetUILocale(qro_base::Locale(row.language, row.country));
    EXPECT_EQ(qro_common::getUILangCode(), row.code) << row.language << "-" << row.country;
  }
  environment.SetUILocale(saved);
}

}  // namespace
