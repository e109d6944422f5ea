#include "base/CharacterType.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "base/CharacterTypeData.h"

namespace {

using qro_base::CharacterType;
namespace data = qro_base::character_type_data;

const char* const kUcdDir = "/usr/share/unicode";

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

// ---------------------------------------------------------------------------
// Examples and documented edges.

TEST(CharacterTypeCase, Examples) {
  const unsigned upper[][2] = {{'a', 'A'},       {0x00FF, 0x0178}, {0x00B5, 0x039C},
                               {0x00DF, 0x00DF}, {0x1F80, 0x1F88}, {0x0131, 'I'},
                               {0xFF41, 0xFF21}, {0x2C30, 0x2C30}, {0xD800, 0xD800}};
  for (const auto& c : upper) {
    EXPECT_EQ(CharacterType::ToUpperCase(static_cast<unsigned short>(c[0])), c[1]) << std::hex << c[0];
  }
  // U+1F88 is titlecase, U+2132 cased only since Unicode 5.0: not keys.
  const unsigned lower[][2] = {{'A', 'a'},       {0x212A, 'k'},    {0x0130, 'i'},
                               {0x10A0, 0x10A0}, {0x1F88, 0x1F88}, {0x2132, 0x2132}};
  for (const auto& c : lower) {
    EXPECT_EQ(CharacterType::ToLowerCase(static_cast<unsigned short>(c[0])), c[1]) << std::hex << c[0];
  }
}

TEST(CharacterTypeFlags, ByteValuesOfCommonUnits) {
  const unsigned cases[][2] = {
      {'a', 0xA0},    {'A', 0x60},    {'7', 0x08},    {'\t', 0x10},  {'!', 0x00},
      {0x00E9, 0xA4}, {0x00A0, 0x14}, {0x00AA, 0x24}, {0x0660, 0x0D}, {0x0627, 0x25},
      {0x3000, 0x17}, {0x4E00, 0x27}, {0xAC00, 0x21}, {0x3042, 0x26}, {0xFF41, 0xA7},
      {0x1E9E, CharacterType::kScriptOther},  // capital sharp s, Unicode 5.1: class only
  };
  for (const auto& c : cases) EXPECT_EQ(CharacterType::charTypes[c[0]], c[1]) << std::hex << c[0];
  // Cased letter numbers and symbols count; titlecase letters and U+0345 do not.
  const int kCase = CharacterType::kLowercase | CharacterType::kUppercase;
  EXPECT_TRUE(CharacterType::charTypes[0x2170] & CharacterType::kLowercase);
  EXPECT_TRUE(CharacterType::charTypes[0x24B6] & CharacterType::kUppercase);
  for (unsigned unit : {0x01C5u, 0x1F88u, 0x0345u, 0x00DFu}) {
    EXPECT_FALSE(CharacterType::charTypes[unit] & kCase) << std::hex << unit;
  }
}

TEST(CharacterTypeFlags, WhiteSpaceIsExactlyTheUnicodeSet) {
  auto isSpace = [](unsigned cp) {
    return (cp >= 0x09 && cp <= 0x0D) || cp == 0x20 || cp == 0x85 || cp == 0xA0 || cp == 0x1680 ||
           (cp >= 0x2000 && cp <= 0x200A) || cp == 0x2028 || cp == 0x2029 || cp == 0x202F ||
           cp == 0x205F || cp == 0x3000;
  };
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    EXPECT_EQ((CharacterType::charTypes[cp] & CharacterType::kSpace) != 0, isSpace(cp)) << std::hex << cp;
  }
}

// ---------------------------------------------------------------------------
// Cross-check against the Unicode Character Database.

// Every mapping the functions make is the simple mapping; which letters are
// keys is fixed by the generator check below and by the reference counts.
TEST(CharacterTypeUcd, EveryMappingIsTheSimpleMapping) {
  LOAD_UCD_OR_SKIP(ucd);
  const struct {
    const data::CasePair* pairs;
    unsigned count;
    const std::map<unsigned, unsigned>* mapping;
    unsigned identities;
    unsigned char flag;
  } tables[] = {
      {data::kUpperCasePairs, data::kUpperCasePairCount, &ucd.upper, 198, CharacterType::kLowercase},
      {data::kLowerCasePairs, data::kLowerCasePairCount, &ucd.lower, 66, CharacterType::kUppercase},
  };
  EXPECT_EQ(data::kLowerCasePairCount, 685u);  // the reference size of the lowercase table
  for (const auto& table : tables) {
    unsigned identities = 0;
    for (unsigned i = 0; i < table.count; ++i) {
      const data::CasePair& p = table.pairs[i];
      if (i > 0) {
        ASSERT_LT(table.pairs[i - 1].from, p.from) << "not sorted at " << i;
      }
      if (p.from == p.to) {
        ++identities;
        continue;
      }
      EXPECT_EQ(p.to, table.mapping->at(p.from)) << std::hex << p.from;
      // toUpperCase/toLowerCase map only flagged units.
      EXPECT_TRUE(CharacterType::charTypes[p.from] & table.flag) << std::hex << p.from;
    }
    EXPECT_EQ(identities, table.identities);
  }
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    auto unit = static_cast<unsigned short>(cp);
    unsigned upper = CharacterType::ToUpperCase(unit);
    unsigned lower = CharacterType::ToLowerCase(unit);
    if (upper != cp) {
      ASSERT_EQ(upper, ucd.upper.at(cp)) << std::hex << cp;
    }
    if (lower != cp) {
      ASSERT_EQ(lower, ucd.lower.at(cp)) << std::hex << cp;
    }
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
