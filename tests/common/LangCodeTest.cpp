#include "common/analysis/LangCode.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "common/analysis/LangCodeTable.h"

namespace {

using qro_common::LangCode;

struct TagCase {
  const char* tag;
  int id;
};

// Every other row of the language table (the 1st, 3rd, 5th, ...), written
// out independently of the library's own table.
const TagCase kEveryOtherRow[] = {
    {"af", 0x0036}, {"sq", 0x001C}, {"gsw-FR", 0x0484}, {"ar", 0x0001}, {"ar-BH", 0x3C01},
    {"ar-IQ", 0x0801}, {"ar-KW", 0x3401}, {"ar-LY", 0x1001}, {"ar-OM", 0x2001}, {"ar-SA", 0x0401},
    {"ar-TN", 0x1C01}, {"ar-YE", 0x2401}, {"hy-AM", 0x042B}, {"az", 0x002C}, {"az-Latn-AZ", 0x042C},
    {"eu", 0x002D}, {"be", 0x0023}, {"bn-BD", 0x0845}, {"bs-Cyrl-BA", 0x201A}, {"br-FR", 0x047E},
    {"bg-BG", 0x0402}, {"ca-ES", 0x0403}, {"zh-MO", 0x1404}, {"zh-Hans", 0x0004}, {"zh-TW", 0x0404},
    {"co-FR", 0x0483}, {"hr-HR", 0x041A}, {"cs", 0x0005}, {"da", 0x0006}, {"prs-AF", 0x048C},
    {"div-MV", 0x0465}, {"nl-BE", 0x0813}, {"en", 0x0009}, {"en-BZ", 0x2809}, {"en-029", 0x2409},
    {"en-IE", 0x1809}, {"en-MY", 0x4409}, {"en-PH", 0x3409}, {"en-ZA", 0x1C09}, {"en-GB", 0x0809},
    {"en-ZW", 0x3009}, {"et-EE", 0x0425}, {"fo-FO", 0x0438}, {"fi", 0x000B}, {"fr", 0x000C},
    {"fr-CA", 0x0C0C}, {"fr-LU", 0x140C}, {"fr-CH", 0x100C}, {"gl", 0x0056}, {"ka", 0x0037},
    {"de", 0x0007}, {"de-DE", 0x0407}, {"de-LU", 0x1007}, {"el", 0x0008}, {"kl-GL", 0x046F},
    {"ha-Latn-NG", 0x0468}, {"he-IL", 0x040D}, {"hi-IN", 0x0439}, {"hu-HU", 0x040E},
    {"is-IS", 0x040F}, {"id", 0x0021}, {"iu-Latn-CA", 0x085D}, {"ga-IE", 0x083C}, {"zu-ZA", 0x0435},
    {"it-IT", 0x0410}, {"ja", 0x0011}, {"kn", 0x004B}, {"kk", 0x003F}, {"kh-KH", 0x0453},
    {"rw-RW", 0x0487}, {"sw-KE", 0x0441}, {"kok-IN", 0x0457}, {"ko-KR", 0x0412}, {"ky-KG", 0x0440},
    {"lv", 0x0026}, {"lt", 0x0027}, {"wee-DE", 0x082E}, {"mk", 0x002F}, {"ms", 0x003E},
    {"ms-MY", 0x043E}, {"mt-MT", 0x043A}, {"arn-CL", 0x047A}, {"mr-IN", 0x044E}, {"mn", 0x0050},
    {"mn-Mong-CN", 0x0850}, {"no", 0x0014}, {"nn-NO", 0x0814}, {"or-IN", 0x0448}, {"fa", 0x0029},
    {"pl", 0x0015}, {"pt", 0x0016}, {"pt-PT", 0x0816}, {"pa-IN", 0x0446}, {"quz-EC", 0x086B},
    {"ro", 0x0018}, {"rm-CH", 0x0417}, {"ru-RU", 0x0419}, {"smj-NO", 0x103B}, {"se-FI", 0x0C3B},
    {"se-SE", 0x083B}, {"sma-NO", 0x183B}, {"sa", 0x004F}, {"sr", 0x7C1A}, {"sr-Cyrl-SP", 0x0C1A},
    {"sr-Latn-SP", 0x081A}, {"tn-ZA", 0x0432}, {"sk", 0x001B}, {"sl", 0x0024}, {"es", 0x000A},
    {"es-BO", 0x400A}, {"es-CO", 0x240A}, {"es-DO", 0x1C0A}, {"es-SV", 0x440A}, {"es-HN", 0x480A},
    {"es-NI", 0x4C0A}, {"es-PY", 0x3C0A}, {"es-PR", 0x500A}, {"es-US", 0x540A}, {"es-VE", 0x200A},
    {"sv-FI", 0x081D}, {"syr", 0x005A}, {"tg-Cyrl-TJ", 0x0428}, {"ta", 0x0049}, {"tt", 0x0044},
    {"te", 0x004A}, {"th", 0x001E}, {"bo-CN", 0x0451}, {"tr-TR", 0x041F}, {"ug-CN", 0x0480},
    {"uk-UA", 0x0422}, {"ur", 0x0020}, {"uz", 0x0043}, {"uz-Latn-UZ", 0x0443}, {"vi-VN", 0x042A},
    {"wo-SN", 0x0488}, {"ii-CN", 0x0478}, {"MY", 0x0455}, {"0466", 0x0466}, {"FR-CI", 0x300C},
    {"fr-RE", 0x200C}, {"fr-WINDIES", 0x1C0C}, {"0467", 0x0467}, {"GN", 0x0474}, {"0469", 0x0469},
    {"KS", 0x0460}, {"MNI", 0x0458}, {"ro-MO", 0x0818}, {"SD", 0x0459}, {"SO", 0x0477},
    {"045F", 0x045F}, {"ti-ET", 0x0473}, {"VEN", 0x0433},
};

// The whole country table.
const struct {
  const char* language;
  const char* country;
} kCountries[] = {
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

TEST(LangCodeTable, HasOneToOneRows) {
  std::set<std::string> tags;
  std::set<unsigned short> ids;
  for (const auto& row : qro_common::kLangTagRows) {
    ASSERT_NE(row.tag, nullptr);
    tags.insert(row.tag);
    ids.insert(row.id);
  }
  EXPECT_EQ(sizeof(qro_common::kLangTagRows) / sizeof(qro_common::kLangTagRows[0]), 304u);
  EXPECT_EQ(tags.size(), 304u);
  EXPECT_EQ(ids.size(), 304u);

  std::set<std::string> languages;
  for (const auto& row : qro_common::kLangCountryRows) languages.insert(row.language);
  EXPECT_EQ(sizeof(qro_common::kLangCountryRows) / sizeof(qro_common::kLangCountryRows[0]), 53u);
  EXPECT_EQ(languages.size(), 53u);
}

TEST(LangCodeTable, EveryRowConvertsBothWays) {
  for (const auto& row : qro_common::kLangTagRows) {
    EXPECT_EQ(LangCode::GetLangCode(row.tag), row.id) << row.tag;
    EXPECT_STREQ(LangCode::GetLang(row.id), row.tag) << row.tag;
  }
  for (const auto& row : qro_common::kLangCountryRows) {
    EXPECT_STREQ(LangCode::GetCountryName(row.language), row.country) << row.language;
  }
}

TEST(LangCodeTable, MatchesRowsWrittenOutIndependently) {
  EXPECT_EQ(sizeof(kEveryOtherRow) / sizeof(kEveryOtherRow[0]), 152u);
  for (const TagCase& c : kEveryOtherRow) {
    EXPECT_EQ(LangCode::GetLangCode(c.tag), c.id) << c.tag;
    EXPECT_STREQ(LangCode::GetLang(static_cast<unsigned short>(c.id)), c.tag) << c.tag;
  }
  for (const auto& c : kCountries) {
    EXPECT_STREQ(LangCode::GetCountryName(c.language), c.country) << c.language;
  }
}

TEST(LangCodeGetLangCode, TagsBothWays) {
  EXPECT_EQ(LangCode::GetLangCode("ko-KR"), 0x0412);
  EXPECT_STREQ(LangCode::GetLang(0x0412), "ko-KR");
  EXPECT_EQ(LangCode::GetLangCode("ko"), 0x0012);
  EXPECT_STREQ(LangCode::GetLang(0x0012), "ko");
  EXPECT_EQ(LangCode::GetLangCode("en-US"), 0x0409);
  EXPECT_EQ(LangCode::GetLangCode("ja-JP"), 0x0411);
}

TEST(LangCodeGetLangCode, SystemSpecificKeys) {
  const TagCase cases[] = {
      {"sr", 0x7C1A},         {"zh-Hans", 0x0004},      {"zh-Hant", 0x7C04},
      {"es-ES", 0x0C0A},      {"es-ES_tradnl", 0x040A}, {"MY", 0x0455},
      {"CHR", 0x045C},        {"GD", 0x043C},           {"GN", 0x0474},
      {"KS", 0x0460},         {"LA", 0x0476},           {"MNI", 0x0458},
      {"OM", 0x0472},         {"SD", 0x0459},           {"SO", 0x0477},
      {"TS", 0x0431},         {"VEN", 0x0433},          {"JI", 0x043D},
      {"FR-CI", 0x300C},      {"0466", 0x0466},         {"0467", 0x0467},
      {"0475", 0x0475},       {"0469", 0x0469},         {"0471", 0x0471},
      {"0859", 0x0859},       {"045F", 0x045F},         {"fr-WINDIES", 0x1C0C},
      {"en-029", 0x2409},     {"kh-KH", 0x0453},        {"wee-DE", 0x082E},
      {"wen-DE", 0x042E},     {"ro-MO", 0x0818},        {"ru-MO", 0x0819},
      {"az-Cyrl-AZ", 0x082C}, {"tzm-Latn-DZ", 0x085F},  {"mn-Mong-CN", 0x0850},
  };
  for (const TagCase& c : cases) EXPECT_EQ(LangCode::GetLangCode(c.tag), c.id) << c.tag;
  // Other spellings of those keys are not in the table.
  EXPECT_EQ(LangCode::GetLangCode("chr"), 0);
  EXPECT_EQ(LangCode::GetLangCode("fr-CI"), 0);
  EXPECT_EQ(LangCode::GetLangCode("045f"), 0);
  EXPECT_EQ(LangCode::GetLangCode("0x0466"), 0);
}

TEST(LangCodeGetLangCode, NoCaseFoldingOrFallback) {
  EXPECT_EQ(LangCode::GetLangCode("KO-KR"), 0);
  EXPECT_EQ(LangCode::GetLangCode("ko_KR"), 0);
  EXPECT_EQ(LangCode::GetLangCode("Ko"), 0);
  // A language-country tag missing from the table does not fall back to
  // its language.
  EXPECT_EQ(LangCode::GetLangCode("ko-KP"), 0);
  EXPECT_EQ(LangCode::GetLangCode("fi-SE"), 0);
}

TEST(LangCodeGetLangCode, OddInputsGiveZero) {
  EXPECT_EQ(LangCode::GetLangCode(nullptr), 0);
  EXPECT_EQ(LangCode::GetLangCode(""), 0);
  EXPECT_EQ(LangCode::GetLangCode("-"), 0);
  // Longer than the hashed prefix: whole keys are compared.
  EXPECT_EQ(LangCode::GetLangCode("es-ES_tradn"), 0);
  EXPECT_EQ(LangCode::GetLangCode("es-ES_tradnlX"), 0);
  EXPECT_EQ(LangCode::GetLangCode("fr-WINDIESX"), 0);
  EXPECT_EQ(LangCode::GetLangCode("az-Cyrl-AZZ"), 0);
  EXPECT_EQ(LangCode::GetLangCode(std::string(10000, 'k').c_str()), 0);
  EXPECT_EQ(LangCode::GetLangCode("\xff\xfe\x80"), 0);
  EXPECT_EQ(LangCode::GetLangCode("ko-KR "), 0);
}

TEST(LangCodeGetLangCode, LanguageAndCountry) {
  EXPECT_EQ(LangCode::GetLangCode("ko", "KR"), 0x0412);
  EXPECT_EQ(LangCode::GetLangCode("zh", "TW"), 0x0404);
  EXPECT_EQ(LangCode::GetLangCode("en", "GB"), 0x0809);
  // A null country is the language's default country.
  EXPECT_EQ(LangCode::GetLangCode("ko", nullptr), 0x0412);
  EXPECT_EQ(LangCode::GetLangCode("de", nullptr), 0x0C07);
  EXPECT_EQ(LangCode::GetLangCode("es", nullptr), 0x040A);
  EXPECT_EQ(LangCode::GetLangCode("pt", nullptr), 0x0416);
  EXPECT_EQ(LangCode::GetLangCode("zh", nullptr), 0x0804);
  // No default country: the language alone.
  EXPECT_EQ(LangCode::GetLangCode("fi", nullptr), 0x000B);
  EXPECT_EQ(LangCode::GetLangCode("sr", nullptr), 0x7C1A);
  EXPECT_EQ(LangCode::GetLangCode("xx", nullptr), 0);
  // An empty country looks up "ko-", which is not a tag.
  EXPECT_EQ(LangCode::GetLangCode("ko", ""), 0);
  EXPECT_EQ(LangCode::GetLangCode("ko", "kr"), 0);
  EXPECT_EQ(LangCode::GetLangCode(nullptr, "KR"), 0);
  EXPECT_EQ(LangCode::GetLangCode(nullptr, nullptr), 0);
  EXPECT_EQ(LangCode::GetLangCode("", nullptr), 0);
}

TEST(LangCodeGetLang, UnknownIdentifiersGiveTheEmptyString) {
  EXPECT_STREQ(LangCode::GetLang(0x7C04), "zh-Hant");
  EXPECT_STREQ(LangCode::GetLang(0x0C04), "zh-HK");
  EXPECT_STREQ(LangCode::GetLang(0x040A), "es-ES_tradnl");
  EXPECT_STREQ(LangCode::GetLang(0x0C0A), "es-ES");
  EXPECT_STREQ(LangCode::GetLang(0x1234), "");
  EXPECT_STREQ(LangCode::GetLang(0), "");
  EXPECT_STREQ(LangCode::GetLang(0xFFFF), "");
  // The same storage every time.
  EXPECT_EQ(LangCode::GetLang(0x0412), LangCode::GetLang(0x0412));
}

TEST(LangCodeGetLang, EveryIdentifierIsDefined) {
  // Sums over the whole written table: the identifiers, the tag bytes, and
  // each identifier weighted by the byte sum of its tag. They catch a changed
  // row that the every-other-row check above does not cover.
  int known = 0;
  long long idSum = 0, tagLengths = 0, tagByteSum = 0, weighted = 0;
  for (unsigned int id = 0; id <= 0xFFFF; ++id) {
    const char* tag = LangCode::GetLang(static_cast<unsigned short>(id));
    ASSERT_NE(tag, nullptr);
    if (*tag == '\0') continue;
    ++known;
    EXPECT_EQ(LangCode::GetLangCode(tag), static_cast<int>(id)) << tag;
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

TEST(LangCodeGetCountryName, DefaultCountries) {
  EXPECT_STREQ(LangCode::GetCountryName("en"), "US");
  EXPECT_STREQ(LangCode::GetCountryName("ko"), "KR");
  EXPECT_STREQ(LangCode::GetCountryName("de"), "AT");
  EXPECT_STREQ(LangCode::GetCountryName("es"), "ES_tradnl");
  EXPECT_STREQ(LangCode::GetCountryName("pt"), "BR");
  EXPECT_STREQ(LangCode::GetCountryName("syr"), "SY");
  EXPECT_EQ(LangCode::GetCountryName("fi"), nullptr);
  EXPECT_EQ(LangCode::GetCountryName("EN"), nullptr);
  EXPECT_EQ(LangCode::GetCountryName("en-US"), nullptr);
  EXPECT_EQ(LangCode::GetCountryName("e"), nullptr);
  EXPECT_EQ(LangCode::GetCountryName(""), nullptr);
  EXPECT_EQ(LangCode::GetCountryName(nullptr), nullptr);
  EXPECT_EQ(LangCode::GetCountryName(std::string(5000, 'e').c_str()), nullptr);
  EXPECT_EQ(LangCode::GetCountryName("en"), LangCode::GetCountryName("en"));
}

}  // namespace
