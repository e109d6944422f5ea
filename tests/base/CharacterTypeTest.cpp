#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "base/CharacterType.h"
#include "base/CharacterTypeData.h"

namespace {

using qro_base::CharacterType;
namespace data = qro_base::character_type_data;

const char* const kUcdDir = "/usr/share/unicode";

// ---------------------------------------------------------------------------
// Examples and documented edges.

// The space flag against PropList.txt's White_Space, read here.
TEST(CharacterTypeFlags, WhiteSpaceIsExactlyTheUnicodeSet) {
  std::ifstream props(std::string(kUcdDir) + "/PropList.txt");
  if (!props) GTEST_SKIP() << "Unicode Character Database not found in " << kUcdDir;
  std::vector<bool> space(0x10000, false);
  for (std::string line; std::getline(props, line);) {
    unsigned first = 0, last = 0;
    char name[32] = {};
    const int n = std::sscanf(line.c_str(), "%x..%x ; %31s", &first, &last, name);
    if (n < 2 && std::sscanf(line.c_str(), "%x ; %31s", &first, name) == 2) last = first;
    if (std::string(name) != "White_Space") continue;
    for (unsigned cp = first; cp <= last && cp < 0x10000; ++cp) space[cp] = true;
  }
  EXPECT_EQ(std::count(space.begin(), space.end(), true), 25);
  for (unsigned cp = 0; cp < 0x10000; ++cp) {
    EXPECT_EQ((CharacterType::charTypes[cp] & CharacterType::kSpace) != 0, space[cp])
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
