// Grapheme clusters against the Unicode data's own break tests, and the
// word cache's bound.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "common/manager/GraphemeBreaker.h"
#include "common/manager/WordCache.h"

namespace {

using qro_common::GraphemeBreaker;

// Every line of GraphemeBreakTest.txt: "÷" before a code point where a
// cluster begins, "×" where it does not.
TEST(GraphemeBreaker, FollowsUnicodeBreakTests) {
  std::ifstream in("/usr/share/unicode/auxiliary/GraphemeBreakTest.txt");
  if (!in) GTEST_SKIP() << "needs the unicode-data package";
  int cases = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream tokens(line.substr(0, line.find('#')));
    std::u32string codes;
    std::vector<std::uint8_t> expected;
    bool breaks = false;
    for (std::string token; tokens >> token;) {
      if (token == "\xC3\xB7" || token == "\xC3\x97") {
        breaks = token == "\xC3\xB7";
      } else {
        codes += static_cast<char32_t>(std::stoul(token, nullptr, 16));
        expected.push_back(breaks ? 1 : 0);
      }
    }
    if (codes.empty()) continue;
    std::vector<std::uint8_t> starts(codes.size());
    GraphemeBreaker::MarkClusterStarts(codes.data(), codes.size(), starts.data());
    EXPECT_EQ(starts, expected) << line;
    ++cases;
  }
  EXPECT_GT(cases, 500);
  // The generated table is the generator's output for this database.
  const std::string command = std::string(KELFONT_PYTHON) + " -B " + KELFONT_TEST_SOURCE_DIR +
                              "/../scripts/gen_grapheme_breaks.py --check";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

// Entries beyond the capacity push out the least recently used.
TEST(WordCache, KeepsTheRecentlyUsedWithinItsCapacity) {
  qro_common::WordCache cache(4096);
  qro_common::RunMeasure m{1.5f, {1.5f, 0}, {7, 7}, {1, 0}};
  const std::u16string first = u"ab";
  cache.Insert(3, false, false, first.data(), 2, m);
  float total = 0;
  float advances[2];
  int fonts[2];
  std::uint8_t starts[2];
  for (int i = 0; i < 100; ++i) {
    const std::u16string word = u"w" + std::u16string(1, static_cast<char16_t>(u'0' + i));
    cache.Insert(3, false, false, word.data(), 2, m);
    ASSERT_TRUE(cache.Find(3, false, false, first.data(), 2, total, advances, fonts, starts));
    EXPECT_LE(cache.GetSize(), 4096u);
  }
  EXPECT_EQ(total, 1.5f);
  EXPECT_EQ(fonts[1], 7);
  EXPECT_EQ(starts[1], 0);
  EXPECT_FALSE(cache.Find(3, true, false, first.data(), 2, total, nullptr, nullptr, nullptr));
  const std::u16string oldest = u"w0";
  EXPECT_FALSE(cache.Find(3, false, false, oldest.data(), 2, total, nullptr, nullptr, nullptr));
  EXPECT_LT(cache.GetEntryCount(), 100u);
}

}  // namespace
