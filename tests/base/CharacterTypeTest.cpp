#include "base/CharacterType.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/CharacterTypeData.h"

namespace {

using qro_base::CharacterType;
namespace data = qro_base::character_type_data;

const char* const kUcdDir = "/usr/share/unicode";

// Key ranges and identity rows of the two case tables.
const char* const kUpperKeys =
    "0061-007A, 00AA, 00B5, 00BA, 00DF-0177, 017A-0180, 0183-0185, 018D, 0192, 0195, "
    "0199-019B, 019E, 01A1-01A5, 01A8-01AD, 01B6, 01B9-01BA, 01BD-01BF, 01C6, 01C9, "
    "01CC-01F0, 01F3, 01FB-0236, 0250-02AF, 0390, 03AC-03D1, 03D5-03F5, 03F8, 03FB, "
    "0430-0479, 0493-04BF, 04C2-04CE, 04D1-04F3, 0501-050F, 0561-0587, 1D00-1D2B, "
    "1D62-1D6B, 1E01-1E9B, 1EA1-1EF9, 1F00-1FF7, 2071, 207F, 210A, 210E-210F, 2113, "
    "212F, 2134, 2139, 213D, 2146-2149, FF41-FF5A";
const char* const kLowerKeys =
    "0041-005A, 00C0-00DE, 0100-0136, 0139-0147, 014A-017D, 0181-018B, 018E-0198, "
    "019C-01A9, 01AC-01B7, 01C4, 01C7, 01CA, 01CD-01DB, 01DE-01EE, 01F1, 01F4-0232, "
    "0386-03AB, 03D2-03D4, 03D8-03EE, 03F4, 03F7-03FA, 0400-042F, 0460-0478, 0492-04CD, "
    "04D0-04F2, 0500-050E, 0531-0556, 10A0-10C5, 1E00-1E8A, 1EAA-1EF8, 1F08-1FFB, 2102, "
    "2107, 210B-210D, 2110-2112, 2115, 2119-211D, 2124-212D, 2130-2133, 213E-213F, 2145, "
    "FF21-FF3A";
const char* const kUpperIdentity =
    "00AA, 00BA, 00DF, 0138, 0149, 0180, 018D, 019A-019B, 01AA-01AB, 01BA, 01BE, 01F0, "
    "0221, 0234-0236, 0250-0252, 0255, 0258, 025A, 025C-025F, 0261-0262, 0264-0267, "
    "026A-026E, 0270-0271, 0273-0274, 0276-027F, 0281-0282, 0284-0287, 0289, 028C-0291, "
    "0293-02AF, 0390, 03B0, 03D7, 03F3, 0587, 1D00-1D2B, 1D62-1D6B, 1E96-1E9A, 1F50, "
    "1F52, 1F54, 1F56, 1FB2, 1FB4, 1FB6-1FB7, 1FC2, 1FC4, 1FC6-1FC7, 1FD2-1FD3, "
    "1FD6-1FD7, 1FE2-1FE4, 1FE6-1FE7, 1FF2, 1FF4, 1FF6-1FF7, 2071, 207F, 210A, "
    "210E-210F, 2113, 212F, 2134, 2139, 213D, 2146-2149";
const char* const kLowerIdentity =
    "03D2-03D4, 04C0, 10A0-10C5, 2102, 2107, 210B-210D, 2110-2112, 2115, 2119-211D, 2124, "
    "2128, 212C-212D, 2130-2131, 2133, 213E-213F, 2145";

std::set<unsigned> codeSet(const char* text) {
  std::set<unsigned> result;
  std::string list(text);
  for (char& c : list) {
    if (c == ',') c = ' ';
  }
  std::istringstream items(list);
  std::string item;
  while (items >> item) {
    unsigned first = 0, last = 0;
    std::string::size_type dash = item.find('-');
    first = static_cast<unsigned>(std::stoul(item.substr(0, dash), nullptr, 16));
    last = dash == std::string::npos ? first
                                     : static_cast<unsigned>(std::stoul(item.substr(dash + 1), nullptr, 16));
    for (unsigned cp = first; cp <= last; ++cp) result.insert(cp);
  }
  return result;
}

// The parts of the Unicode Character Database the checks need.
struct Ucd {
  std::map<unsigned, std::string> category;
  std::map<unsigned, unsigned> upper;  // simple uppercase mapping
  std::map<unsigned, unsigned> lower;  // simple lowercase mapping
  std::map<unsigned, int> age;         // major * 10 + minor

  bool assignedBy(unsigned cp, int version) const {
    auto it = age.find(cp);
    return it != age.end() && it->second <= version;
  }
  // The mapping of cp when cp and its partner exist in `version`.
  bool partner(const std::map<unsigned, unsigned>& mapping, unsigned cp, int version,
               unsigned& out) const {
    auto it = mapping.find(cp);
    if (it == mapping.end() || it->second == cp) return false;
    if (!assignedBy(cp, version) || !assignedBy(it->second, version)) return false;
    out = it->second;
    return true;
  }
  std::string gc(unsigned cp) const {
    auto it = category.find(cp);
    return it == category.end() ? "Cn" : it->second;
  }
};

std::vector<std::string> splitFields(const std::string& line) {
  std::vector<std::string> fields;
  std::string::size_type start = 0;
  for (;;) {
    std::string::size_type semi = line.find(';', start);
    std::string field = line.substr(start, semi == std::string::npos ? std::string::npos : semi - start);
    std::string::size_type b = field.find_first_not_of(' ');
    std::string::size_type e = field.find_last_not_of(' ');
    fields.push_back(b == std::string::npos ? "" : field.substr(b, e - b + 1));
    if (semi == std::string::npos) return fields;
    start = semi + 1;
  }
}

// Loads UnicodeData.txt and DerivedAge.txt; false when they are missing.
bool loadUcd(Ucd& ucd) {
  std::ifstream unicodeData(std::string(kUcdDir) + "/UnicodeData.txt");
  std::ifstream derivedAge(std::string(kUcdDir) + "/DerivedAge.txt");
  if (!unicodeData || !derivedAge) return false;
  std::string line;
  unsigned rangeStart = 0;
  while (std::getline(unicodeData, line)) {
    std::vector<std::string> f = splitFields(line);
    if (f.size() < 15) continue;
    unsigned cp = static_cast<unsigned>(std::stoul(f[0], nullptr, 16));
    if (f[1].find(", First>") != std::string::npos) {
      rangeStart = cp;
      continue;
    }
    unsigned first = f[1].find(", Last>") != std::string::npos ? rangeStart : cp;
    for (unsigned c = first; c <= cp; ++c) ucd.category[c] = f[2];
    if (!f[12].empty()) ucd.upper[cp] = static_cast<unsigned>(std::stoul(f[12], nullptr, 16));
    if (!f[13].empty()) ucd.lower[cp] = static_cast<unsigned>(std::stoul(f[13], nullptr, 16));
  }
  while (std::getline(derivedAge, line)) {
    line = line.substr(0, line.find('#'));
    if (line.find(';') == std::string::npos) continue;
    std::vector<std::string> f = splitFields(line);
    std::string::size_type dots = f[0].find("..");
    unsigned first = static_cast<unsigned>(std::stoul(f[0].substr(0, dots), nullptr, 16));
    unsigned last = dots == std::string::npos
                        ? first
                        : static_cast<unsigned>(std::stoul(f[0].substr(dots + 2), nullptr, 16));
    int major = 0, minor = 0;
    std::sscanf(f[1].c_str(), "%d.%d", &major, &minor);
    for (unsigned c = first; c <= last; ++c) ucd.age[c] = major * 10 + minor;
  }
  return !ucd.category.empty() && !ucd.age.empty();
}

#define LOAD_UCD_OR_SKIP(ucd)                                                          \
  Ucd ucd;                                                                             \
  if (!loadUcd(ucd)) {                                                                 \
    GTEST_SKIP() << "Unicode Character Database not found in " << kUcdDir              \
                 << " (install the Debian package unicode-data); cross-check skipped"; \
  }

std::map<unsigned, unsigned> tableOf(const data::CasePair* pairs, unsigned count) {
  std::map<unsigned, unsigned> result;
  for (unsigned i = 0; i < count; ++i) result[pairs[i].from] = pairs[i].to;
  return result;
}

// ---------------------------------------------------------------------------
// Examples.

TEST(CharacterTypeCase, ToUpperCaseExamples) {
  EXPECT_EQ(CharacterType::ToUpperCase('a'), 'A');
  EXPECT_EQ(CharacterType::ToUpperCase('z'), 'Z');
  EXPECT_EQ(CharacterType::ToUpperCase(0x00FF), 0x0178);
  EXPECT_EQ(CharacterType::ToUpperCase(0x00B5), 0x039C);
  EXPECT_EQ(CharacterType::ToUpperCase(0x00DF), 0x00DF);
  EXPECT_EQ(CharacterType::ToUpperCase(0x0561), 0x0531);
  EXPECT_EQ(CharacterType::ToUpperCase(0x0250), 0x0250);
  EXPECT_EQ(CharacterType::ToUpperCase(0x1F80), 0x1F88);
  EXPECT_EQ(CharacterType::ToUpperCase(0x0131), 'I');
  EXPECT_EQ(CharacterType::ToUpperCase(0xFF41), 0xFF21);
  EXPECT_EQ(CharacterType::ToUpperCase('A'), 'A');
}

TEST(CharacterTypeCase, ToLowerCaseExamples) {
  EXPECT_EQ(CharacterType::ToLowerCase('A'), 'a');
  EXPECT_EQ(CharacterType::ToLowerCase(0x212A), 'k');
  EXPECT_EQ(CharacterType::ToLowerCase(0x0130), 'i');
  EXPECT_EQ(CharacterType::ToLowerCase(0x10A0), 0x10A0);
  EXPECT_EQ(CharacterType::ToLowerCase(0x0178), 0x00FF);
  EXPECT_EQ(CharacterType::ToLowerCase(0x1F88), 0x1F88);  // titlecase, not a key
  EXPECT_EQ(CharacterType::ToLowerCase(0x2132), 0x2132);  // cased only since Unicode 5.0
  EXPECT_EQ(CharacterType::ToLowerCase('a'), 'a');
}

TEST(CharacterTypeCase, UnitsOutsideBothTablesAreUnchanged) {
  for (unsigned unit : {0x4E00u, 0x0000u, 0x0030u, 0xD800u, 0xDFFFu, 0xE000u, 0xFFFFu, 0x2C30u}) {
    EXPECT_EQ(CharacterType::ToUpperCase(static_cast<unsigned short>(unit)), unit);
    EXPECT_EQ(CharacterType::ToLowerCase(static_cast<unsigned short>(unit)), unit);
  }
}

TEST(CharacterTypeFlags, ByteValuesOfCommonUnits) {
  const auto& t = CharacterType::charTypes;
  EXPECT_EQ(t['a'], 0xA0);  // lowercase | letter | Basic Latin
  EXPECT_EQ(t['A'], 0x60);
  EXPECT_EQ(t['7'], 0x08);
  EXPECT_EQ(t[' '], 0x10);
  EXPECT_EQ(t['\t'], 0x10);
  EXPECT_EQ(t['!'], 0x00);
  EXPECT_EQ(t[0x00E9], 0xA4);  // e acute, Latin-1
  EXPECT_EQ(t[0x00A0], 0x14);  // no-break space
  EXPECT_EQ(t[0x00AA], 0x24);  // feminine ordinal: a letter without partner
  EXPECT_EQ(t[0x0660], 0x0D);  // Arabic-Indic zero
  EXPECT_EQ(t[0x0627], 0x25);  // alef
  EXPECT_EQ(t[0x3000], 0x17);  // ideographic space
  EXPECT_EQ(t[0x4E00], 0x27);
  EXPECT_EQ(t[0xAC00], 0x21);
  EXPECT_EQ(t[0x3042], 0x26);
  EXPECT_EQ(t[0xFF10], 0x0F);  // fullwidth zero
  EXPECT_EQ(t[0xFF41], 0xA7);  // fullwidth a
}

TEST(CharacterTypeFlags, CaseFlagsAtTheEdges) {
  const auto& t = CharacterType::charTypes;
  // Cased symbols and letter numbers count.
  EXPECT_TRUE(t[0x2170] & CharacterType::kLowercase);  // small roman numeral one
  EXPECT_TRUE(t[0x2160] & CharacterType::kUppercase);
  EXPECT_TRUE(t[0x24D0] & CharacterType::kLowercase);  // circled small a
  EXPECT_TRUE(t[0x24B6] & CharacterType::kUppercase);
  // Unicode 4.1 and 5.0 letters are in; later ones carry only their class.
  EXPECT_TRUE(t[0x2C30] & CharacterType::kLowercase);  // Glagolitic, 4.1
  EXPECT_TRUE(t[0x2C00] & CharacterType::kUppercase);
  EXPECT_TRUE(t[0x2132] & CharacterType::kUppercase);  // partner U+214E, 5.0
  EXPECT_TRUE(t[0x0180] & CharacterType::kLowercase);  // partner U+0243, 5.0
  EXPECT_EQ(t[0x1E9E], CharacterType::kScriptOther);    // capital sharp s, 5.1
  EXPECT_EQ(t[0x2C70], CharacterType::kScriptOther);    // 5.2
  // The combining ypogegrammeni and the titlecase letters have no flag.
  EXPECT_FALSE(t[0x0345] & (CharacterType::kLowercase | CharacterType::kUppercase));
  for (unsigned unit : {0x01C5u, 0x01C8u, 0x01CBu, 0x01F2u, 0x1F88u, 0x1FBCu, 0x1FFCu}) {
    EXPECT_FALSE(t[unit] & (CharacterType::kLowercase | CharacterType::kUppercase)) << unit;
    EXPECT_TRUE(t[unit] & CharacterType::kLetter) << unit;
  }
  // Letters without a partner.
  EXPECT_FALSE(t[0x00DF] & (CharacterType::kLowercase | CharacterType::kUppercase));
  EXPECT_FALSE(t[0x2102] & (CharacterType::kLowercase | CharacterType::kUppercase));
}

TEST(CharacterTypeFlags, WhiteSpaceIsExactlyTheUnicodeSet) {
  std::set<unsigned> spaces = codeSet(
      "0009-000D, 0020, 0085, 00A0, 1680, 2000-200A, 2028-2029, 202F, 205F, 3000");
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    EXPECT_EQ((CharacterType::charTypes[cp] & CharacterType::kSpace) != 0, spaces.count(cp) == 1)
        << std::hex << cp;
  }
}

TEST(CharacterTypeFlags, LowercaseFlagCountMatchesTheReference) {
  int lower = 0;
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    if (CharacterType::charTypes[cp] & CharacterType::kLowercase) ++lower;
  }
  EXPECT_EQ(lower, 886);
}

// ---------------------------------------------------------------------------
// Cross-check against the Unicode Character Database.

TEST(CharacterTypeUcd, EveryPairIsAnIdentityRowOrTheSimpleMapping) {
  LOAD_UCD_OR_SKIP(ucd);
  struct Table {
    const char* name;
    const data::CasePair* pairs;
    unsigned count;
    std::set<unsigned> keys;
    std::set<unsigned> identity;
    const std::map<unsigned, unsigned>* mapping;
    unsigned identityCount;
  };
  Table tables[] = {
      {"upper", data::kUpperCasePairs, data::kUpperCasePairCount, codeSet(kUpperKeys),
       codeSet(kUpperIdentity), &ucd.upper, 198},
      {"lower", data::kLowerCasePairs, data::kLowerCasePairCount, codeSet(kLowerKeys),
       codeSet(kLowerIdentity), &ucd.lower, 66},
  };
  for (const Table& table : tables) {
    SCOPED_TRACE(table.name);
    EXPECT_EQ(table.identity.size(), table.identityCount);
    std::map<unsigned, unsigned> pairs = tableOf(table.pairs, table.count);
    for (unsigned i = 1; i < table.count; ++i) {
      ASSERT_LT(table.pairs[i - 1].from, table.pairs[i].from) << "not sorted at " << i;
    }
    unsigned identities = 0;
    for (const auto& [key, value] : pairs) {
      EXPECT_EQ(table.keys.count(key), 1u) << std::hex << key << " outside the key ranges";
      if (table.identity.count(key)) {
        EXPECT_EQ(value, key) << std::hex << key;
        ++identities;
        continue;
      }
      auto it = table.mapping->find(key);
      ASSERT_NE(it, table.mapping->end()) << std::hex << key << " has no mapping";
      EXPECT_EQ(value, it->second) << std::hex << key;
      EXPECT_NE(value, key) << std::hex << key;
    }
    EXPECT_EQ(identities, table.identityCount);
  }
}

// The tables hold, inside their key ranges, every letter that had a simple
// case partner in Unicode 4.0 (titlecase letters aside), plus the identity
// rows, and nothing else.
TEST(CharacterTypeUcd, TablesAreTheUnicode40MappingsOfTheKeyRanges) {
  LOAD_UCD_OR_SKIP(ucd);
  const int kVersion = 40;
  auto expectedTable = [&](const char* keys, const char* identity,
                           const std::map<unsigned, unsigned>& mapping) {
    std::map<unsigned, unsigned> result;
    std::set<unsigned> identities = codeSet(identity);
    for (unsigned cp : codeSet(keys)) {
      unsigned partner = 0;
      if (identities.count(cp)) {
        result[cp] = cp;
      } else if (ucd.gc(cp) != "Lt" && ucd.partner(mapping, cp, kVersion, partner)) {
        result[cp] = partner;
      }
    }
    return result;
  };
  std::map<unsigned, unsigned> upper = expectedTable(kUpperKeys, kUpperIdentity, ucd.upper);
  std::map<unsigned, unsigned> lower = expectedTable(kLowerKeys, kLowerIdentity, ucd.lower);
  EXPECT_EQ(tableOf(data::kUpperCasePairs, data::kUpperCasePairCount), upper);
  EXPECT_EQ(tableOf(data::kLowerCasePairs, data::kLowerCasePairCount), lower);
  EXPECT_EQ(lower.size(), 685u);  // the reference size of the lowercase table

  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    auto unit = static_cast<unsigned short>(cp);
    auto u = upper.find(cp);
    auto l = lower.find(cp);
    ASSERT_EQ(CharacterType::ToUpperCase(unit), u == upper.end() ? cp : u->second) << std::hex << cp;
    ASSERT_EQ(CharacterType::ToLowerCase(unit), l == lower.end() ? cp : l->second) << std::hex << cp;
  }
}

TEST(CharacterTypeUcd, CaseFlagsMarkUnicode50LettersWithAPartner) {
  LOAD_UCD_OR_SKIP(ucd);
  const int kVersion = 50;
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    unsigned char t = CharacterType::charTypes[cp];
    unsigned partner = 0;
    std::string gc = ucd.gc(cp);
    bool hasUpper = ucd.partner(ucd.upper, cp, kVersion, partner);
    bool hasLower = ucd.partner(ucd.lower, cp, kVersion, partner);
    if (t & CharacterType::kLowercase) {
      EXPECT_TRUE(hasUpper && gc != "Lt" && gc != "Mn") << std::hex << cp;
      EXPECT_TRUE(t & CharacterType::kLetter) << std::hex << cp;
    } else if (gc == "Ll") {
      EXPECT_FALSE(hasUpper) << std::hex << cp << " is a lowercase letter with a partner";
    }
    if (t & CharacterType::kUppercase) {
      EXPECT_TRUE(hasLower && gc != "Lt") << std::hex << cp;
      EXPECT_TRUE(t & CharacterType::kLetter) << std::hex << cp;
    } else if (gc == "Lu") {
      EXPECT_FALSE(hasLower) << std::hex << cp << " is an uppercase letter with a partner";
    }
    // Decimal digits are flagged exactly, and only for Unicode 5.0 units.
    bool digit = gc == "Nd" && ucd.assignedBy(cp, kVersion);
    EXPECT_EQ((t & CharacterType::kDigit) != 0, digit) << std::hex << cp;
    if (!ucd.assignedBy(cp, kVersion)) {
      EXPECT_EQ(t & ~CharacterType::kScriptMask, 0) << std::hex << cp;
    }
  }
}

// toUpperCase maps only flagged units: every real pair must be flagged.
TEST(CharacterTypeUcd, EveryRealPairIsReachableThroughItsFlag) {
  for (unsigned i = 0; i < data::kUpperCasePairCount; ++i) {
    const data::CasePair& p = data::kUpperCasePairs[i];
    if (p.from == p.to) continue;
    EXPECT_TRUE(CharacterType::charTypes[p.from] & CharacterType::kLowercase) << std::hex << p.from;
  }
  for (unsigned i = 0; i < data::kLowerCasePairCount; ++i) {
    const data::CasePair& p = data::kLowerCasePairs[i];
    if (p.from == p.to) continue;
    EXPECT_TRUE(CharacterType::charTypes[p.from] & CharacterType::kUppercase) << std::hex << p.from;
  }
}

TEST(CharacterTypeGenerator, CheckedInSourceIsUpToDate) {
  std::string python = KELFONT_PYTHON;
  if (python.empty() || python.find("NOTFOUND") != std::string::npos) {
    GTEST_SKIP() << "python3 not found; cannot run scripts/gen_character_types.py --check";
  }
  std::ifstream probe(std::string(kUcdDir) + "/UnicodeData.txt");
  if (!probe) GTEST_SKIP() << "Unicode Character Database not found in " << kUcdDir;
  std::string command =
      python + " " + KELFONT_TEST_SOURCE_DIR + "/../scripts/gen_character_types.py --check";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

}  // namespace
