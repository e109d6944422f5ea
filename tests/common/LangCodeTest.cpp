#include <gtest/gtest.h>

#include <map>
#include <string>

#include "common/analysis/LangCode.h"
#include "common/analysis/LangCodeTable.h"
#include "tests/support/Cases.h"

namespace {

using qro_common::LangCode;

// The rows of the language table (tests/data/lang_tags.tsv) convert both ways, the table holds
// no other row, and no other identifier has a tag. Lookups, default countries:
// tests/data/common_functions.tsv.
TEST(LangCodeTable, EveryRowConvertsBothWaysAndNoOtherIdentifierHasATag) {
  std::map<unsigned, std::string> rows;
  for (const kelfont_test::Case& c : kelfont_test::cases("lang_tags.tsv")) rows[c.num(0)] = c[1];
  ASSERT_EQ(rows.size(), 304u);
  for (unsigned id = 0; id <= 0xFFFF; ++id) {
    const auto row = rows.find(id);
    const std::string tag = row == rows.end() ? "" : row->second;
    ASSERT_STREQ(LangCode::GetLang(static_cast<unsigned short>(id)), tag.c_str()) << id;
    EXPECT_EQ(tag.empty() ? id : LangCode::GetLangCode(tag.c_str()), id) << tag;
  }
  for (const auto& row : qro_common::kLangTagRows) EXPECT_EQ(rows[row.id], row.tag) << row.tag;
  EXPECT_EQ(sizeof(qro_common::kLangCountryRows) / sizeof(qro_common::kLangCountryRows[0]), 53u);
  EXPECT_EQ(LangCode::GetLangCode(std::string(10000, 'k').c_str()), 0);
}

}  // namespace
