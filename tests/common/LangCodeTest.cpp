#include "common/analysis/LangCode.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

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

TEST(LangCodeTable, EveryDefaultCountry) {
  const char* const countries[][2] = {
      {"af", "ZA"}, {"sq", "AL"}, {"ar", "SA"}, {"hy", "AM"}, {"eu", "ES"}, {"bn", "IN"},
      {"bg", "BG"}, {"ca", "ES"}, {"hr", "HR"}, {"da", "DK"}, {"en", "US"}, {"fr", "FR"},
      {"de", "AT"}, {"el", "GR"}, {"gu", "IN"}, {"he", "IL"}, {"hi", "IN"}, {"hu", "HU"},
      {"is", "IS"}, {"id", "ID"}, {"it", "IT"}, {"ja", "JP"}, {"kn", "IN"}, {"kk", "KZ"},
      {"kh", "KH"}, {"ko", "KR"}, {"lo", "LA"}, {"ms", "MY"}, {"mr", "IN"}, {"ne", "NP"},
      {"or", "IN"}, {"pl", "PL"}, {"pt", "BR"}, {"pa", "IN"}, {"ro", "RO"}, {"ru", "RU"},
      {"zh", "CN"}, {"si", "LK"}, {"sk", "SK"}, {"sl", "SI"}, {"es", "ES_tradnl"}, {"sv", "SE"},
      {"syr", "SY"}, {"bo", "CN"}, {"tr", "TR"}, {"uk", "UA"}, {"ur", "PK"}, {"vi", "VN"},
      {"cy", "GB"}, {"xh", "ZA"}, {"ii", "CN"}, {"yo", "NG"}, {"zu", "ZA"},
  };
  EXPECT_EQ(sizeof(qro_common::kLangCountryRows) / sizeof(qro_common::kLangCountryRows[0]),
            sizeof(countries) / sizeof(countries[0]));
  for (const auto& c : countries) EXPECT_STREQ(LangCode::GetCountryName(c[0]), c[1]) << c[0];
  for (const char* none : {"fi", "EN", "en-US", "e", ""}) {
    EXPECT_EQ(LangCode::GetCountryName(none), nullptr) << none;
  }
  EXPECT_EQ(LangCode::GetCountryName(nullptr), nullptr);
  EXPECT_EQ(LangCode::GetCountryName(std::string(5000, 'e').c_str()), nullptr);
}

TEST(LangCode, KeysAreByteExactWithoutFallback) {
  const std::pair<const char*, int> cases[] = {
      {"ko-KR", 0x0412}, {"ko", 0x0012},   {"zh-Hant", 0x7C04}, {"es-ES_tradnl", 0x040A},
      {"MY", 0x0455},    {"FR-CI", 0x300C}, {"0466", 0x0466},   {"fr-WINDIES", 0x1C0C},
      // Other spellings, case folding, language fallback, prefixes and
      // extensions of keys longer than the hashed prefix: nothing.
      {"chr", 0},        {"fr-CI", 0},     {"0x0466", 0},      {"KO-KR", 0},
      {"ko_KR", 0},      {"ko-KP", 0},     {"es-ES_tradn", 0}, {"fr-WINDIESX", 0},
      {"ko-KR ", 0},     {"\xff\xfe\x80", 0}, {"", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(LangCode::GetLangCode(c.first), c.second) << c.first;
  EXPECT_EQ(LangCode::GetLangCode(nullptr), 0);
  EXPECT_EQ(LangCode::GetLangCode(std::string(10000, 'k').c_str()), 0);
  EXPECT_STREQ(LangCode::GetLang(0x1234), "");
  EXPECT_STREQ(LangCode::GetLang(0xFFFF), "");
}

TEST(LangCode, LanguageAndCountry) {
  const struct {
    const char* language;
    const char* country;
    int id;
  } cases[] = {
      {"zh", "TW", 0x0404},
      // A null country is the language's default country, or the language
      // alone when it has none.
      {"ko", nullptr, 0x0412}, {"de", nullptr, 0x0C07}, {"es", nullptr, 0x040A},
      {"fi", nullptr, 0x000B}, {"xx", nullptr, 0},
      // An empty country looks up "ko-", which is not a tag.
      {"ko", "", 0}, {"ko", "kr", 0}, {nullptr, "KR", 0}, {"", nullptr, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(LangCode::GetLangCode(c.language, c.country), c.id)
        << (c.language ? c.language : "null") << "-" << (c.country ? c.country : "null");
  }
}

}  // namespace
