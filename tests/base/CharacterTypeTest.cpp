#include "base/CharacterType.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include "base/CharacterTypeData.h"

namespace {

using qro_base::CharacterType;
namespace data = qro_base::character_type_data;

const char* const kUcdDir = "/usr/share/unicode";

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

// The tables themselves are the generator's output from the Unicode
// Character Database (checked below): every key maps to its value, only
// flagged units are keys, and every other unit maps to itself.
TEST(CharacterTypeCase, EveryTableKeyAndNothingElseIsMapped) {
  const struct {
    const data::CasePair* pairs;
    unsigned count;
    unsigned short (*map)(unsigned short);
    unsigned char flag;
  } tables[] = {
      {data::kUpperCasePairs, data::kUpperCasePairCount, CharacterType::ToUpperCase,
       CharacterType::kLowercase},
      {data::kLowerCasePairs, data::kLowerCasePairCount, CharacterType::ToLowerCase,
       CharacterType::kUppercase},
  };
  EXPECT_EQ(data::kLowerCasePairCount, 685u);  // the reference size of the lowercase table
  for (const auto& table : tables) {
    std::map<unsigned, unsigned> keys;
    for (unsigned i = 0; i < table.count; ++i) keys[table.pairs[i].from] = table.pairs[i].to;
    ASSERT_EQ(keys.size(), table.count);
    for (unsigned cp = 0; cp < 0x10000; ++cp) {
      auto it = keys.find(cp);
      ASSERT_EQ(table.map(static_cast<unsigned short>(cp)), it == keys.end() ? cp : it->second)
          << std::hex << cp;
      if (it != keys.end() && it->second != cp) {
        EXPECT_TRUE(CharacterType::charTypes[cp] & table.flag) << std::hex << cp;
      }
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
