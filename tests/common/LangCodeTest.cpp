#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "common/analysis/LangCode.h"
#include "common/analysis/LangCodeTable.h"

namespace {

using qro_common::LangCode;

TEST(LangCodeTable, RowsAreOneToOneAndConvertBothWays) {
  std::set<std::string> tags;
  std::set<unsigned short> ids;
  for (const auto& row : qro_common::kLangTagRows) {
    tags.insert(row.tag);
    ids.insert(row.id);
    EXPECT_EQ(LangCode::GetLangCode(row.tag), row.id) << row.tag;
    EXPECT_STREQ(LangCode::GetLang(row.id), row.tag) << row.tag;
  }
  EXPECT_EQ(tags.size(), 304u);
  EXPECT_EQ(ids.size(), 304u);
  // Lookups, default countries: tests/data/common_functions.tsv.
  EXPECT_EQ(sizeof(qro_common::kLangCountryRows) / sizeof(qro_common::kLangCountryRows[0]), 53u);
  EXPECT_EQ(LangCode::GetLangCode(std::string(10000, 'k').c_str()), 0);
}

TEST(LangCodeTable, SumsOverEveryIdentifierMatchTheReference) {
  // Sums over the whole reference table: the identifiers, the tag bytes, and
  // each identifier weighted by the byte sum of its tag. Any changed row
  // changes them.
  int known = 0;
  long long idSum = 0, tagLengths = 0, tagByteSum = 0, weighted = 0;
  for (unsigned int id = 0; id <= 0xFFFF; ++id) {
    const char* tag = LangCode::GetLang(static_cast<unsigned short>(id));
    ASSERT_NE(tag, nullptr);
    if (*tag == '\0') continue;
    ++known;
    long long bytes = 0;
    for (const char* c = tag; *c != '\0'; ++c) bytes += static_cast<unsigned char>(*c);
    idSum += id;
    tagLengths += static_cast<long long>(std::strlen(tag));
    tagByteSum += bytes;
    weighted += bytes * id;
  }
  EXPECT_EQ(known, 304);
  EXPECT_EQ(idSum, 974358);
  EXPECT_EQ(tagLengths, 1405);
  EXPECT_EQ(tagByteSum, 119953);
  EXPECT_EQ(weighted, 429648167);
}

}  // namespace
