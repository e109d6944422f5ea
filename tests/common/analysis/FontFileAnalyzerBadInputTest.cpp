// Unusable font files: Open fails and nothing is analysed. Damaged fonts
// that still open are the analyzer fuzz target's business.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace {

using kelfont_test::TempDir;
using kelfont_test::testFontPath;
using qro_common::DefaultFontInfo;
using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;

class FontFileAnalyzerBadInputTest : public ::testing::Test {
 protected:
  // Runs every operation on the face when it opens; whether it opened.
  bool exercise(const std::string& path, int faceIndex = 0) {
    if (!analyzer_.Open(path.c_str(), faceIndex)) {
      EXPECT_FALSE(analyzer_.IsOpen());
      EXPECT_EQ(analyzer_.Analyze(), nullptr);
      return false;
    }
    std::unique_ptr<FontInfo> info(analyzer_.Analyze());
    EXPECT_NE(info, nullptr);
    if (info != nullptr) analyzer_.AnalyzeData(*info);
    DefaultFontInfo defaults;
    analyzer_.ApplyDefaultFontInfo(0, defaults);
    analyzer_.GetGlyphAdvance(1);
    analyzer_.Close();
    return true;
  }

  // Writes `bytes` as a font file in the temporary directory.
  std::string write(const std::string& name, const std::string& bytes) {
    const std::string path = dir_.file(name);
    EXPECT_TRUE(kelfont_test::writeFile(path, bytes));
    return path;
  }

  TempDir dir_;
  FontFileAnalyzer analyzer_;
};

TEST_F(FontFileAnalyzerBadInputTest, MissingEmptyDirectoryAndGarbageAreRefused) {
  EXPECT_FALSE(exercise(dir_.file("missing.ttf")));
  EXPECT_EQ(analyzer_.GetFileSize(), 0);
  EXPECT_FALSE(analyzer_.Open(nullptr, 0));
  ASSERT_EQ(mkdir(dir_.file("x.ttf").c_str(), 0700), 0);
  EXPECT_FALSE(exercise(dir_.file("x.ttf")));
  // Sfnt heads without tables behind them; mutated fonts: the fuzz target.
  const std::string heads[] = {"", std::string("\0\1\0\0", 4) + std::string(96, '\x55'),
                               "OTTO", std::string("ttcf\0\1\0\0\0\0\0\1", 12)};
  for (const std::string& head : heads) EXPECT_FALSE(exercise(write("garbage.ttf", head))) << head;
  const std::string basic = kelfont_test::readFile(testFontPath("basic.ttf"));
  EXPECT_FALSE(exercise(write("short.ttf", basic.substr(0, 11))));
}

TEST_F(FontFileAnalyzerBadInputTest, CollectionClaimingMoreFacesThanItHas) {
  std::string bytes = kelfont_test::readFile(testFontPath("collection.ttc"));
  ASSERT_EQ(bytes.substr(0, 4), "ttcf");
  ASSERT_EQ(bytes.substr(8, 4), std::string("\0\0\0\3", 4));
  bytes[11] = 5;
  const std::string five = write("five.ttc", bytes);
  ASSERT_TRUE(analyzer_.Open(five.c_str(), 0));
  EXPECT_EQ(analyzer_.GetFaceCount(), 5);
  analyzer_.Close();
  EXPECT_TRUE(exercise(five, 2));
  EXPECT_FALSE(exercise(five, 3));
  EXPECT_FALSE(exercise(five, 4));
  EXPECT_FALSE(exercise(five, 5));

  bytes[8] = '\x7F';
  bytes[11] = '\xFF';
  const std::string many = write("many.ttc", bytes);
  for (int face : {0, 3, 1000}) EXPECT_FALSE(exercise(many, face)) << face;
}

}  // namespace
