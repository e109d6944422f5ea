#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include "base/CharacterType.h"
#include "base/CharacterTypeData.h"

namespace {

using qro_base::CharacterType;
namespace data = qro_base::character_type_data;

const char* const kUcdDir = "/usr/share/unicode";

// ---------------------------------------------------------------------------
// Examples and documented edges.

TEST(CharacterTypeFlags, WhiteSpaceIsExactlyTheUnicodeSet) {
  auto isSpace = [](unsigned cp) {
    return (cp >= 0x09 && cp <= 0x0D) || cp == 0x20 || cp == 0x85 || cp == 0xA0 || cp == 0x1680 ||
           (cp >= 0x2000 && cp <= 0x200A) || cp == 0x2028 || cp == 0x2029 || cp == 0x202F ||
           cp == 0x205F || cp == 0x3000;
  };
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    EXPECT_EQ((CharacterType::charTypes[cp] & CharacterType::kSpace) != 0, isSpace(cp))
        << std::hex << cp;
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
