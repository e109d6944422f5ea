// Damaged and unusable font files: Open fails, or whatever opens analyses
// without a crash (run under the sanitizer build too).

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <random>
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

TEST_F(FontFileAnalyzerBadInputTest, MissingEmptyAndDirectoryPaths) {
  EXPECT_FALSE(exercise(dir_.file("missing.ttf")));
  EXPECT_EQ(analyzer_.GetFileSize(), 0);
  EXPECT_FALSE(analyzer_.Open(nullptr, 0));
  EXPECT_FALSE(exercise(write("empty.ttf", "")));
  EXPECT_EQ(analyzer_.GetFileSize(), 0);
  ASSERT_EQ(mkdir(dir_.file("x.ttf").c_str(), 0700), 0);
  EXPECT_FALSE(exercise(dir_.file("x.ttf")));
  EXPECT_EQ(analyzer_.GetFileSize(), 0);
}

TEST_F(FontFileAnalyzerBadInputTest, GarbageIsRefused) {
  std::mt19937 random(20240601);
  const std::string heads[] = {"",     std::string("\0\1\0\0", 4),
                               "OTTO", "true",
                               "ttcf", std::string("ttcf\0\1\0\0\0\0\0\1", 12)};
  int n = 0;
  for (const std::string& head : heads) {
    for (std::size_t size : {1u, 11u, 12u, 100u, 4096u}) {
      std::string bytes = head;
      while (bytes.size() < size) bytes += static_cast<char>(random() & 0xFF);
      const std::string name = "garbage" + std::to_string(n++) + ".ttf";
      EXPECT_FALSE(exercise(write(name, bytes))) << name;
    }
  }
}

TEST_F(FontFileAnalyzerBadInputTest, TruncatedFonts) {
  for (const char* file : {"basic.ttf", "cff.otf", "collection.ttc", "longname.ttf"}) {
    const std::string whole = kelfont_test::readFile(testFontPath(file));
    ASSERT_GT(whole.size(), 500u) << file;
    EXPECT_TRUE(exercise(write(std::string("whole_") + file, whole))) << file;
    for (std::size_t size = 1; size < whole.size(); size += 37) {
      exercise(write(std::string("cut_") + file, whole.substr(0, size)));
    }
    EXPECT_FALSE(exercise(write(std::string("short_") + file, whole.substr(0, 11)))) << file;
  }
}

TEST_F(FontFileAnalyzerBadInputTest, DamagedBytes) {
  const std::string whole = kelfont_test::readFile(testFontPath("basic.ttf"));
  ASSERT_FALSE(whole.empty());
  int opened = 0;
  for (std::size_t at = 0; at < whole.size(); at += 23) {
    for (char value : {'\xFF', '\x00', '\x7F'}) {
      std::string bytes = whole;
      bytes[at] = value;
      opened += exercise(write("damaged.ttf", bytes));
    }
  }
  // Most single-byte damage (inside outlines, names, metrics) still opens.
  EXPECT_GT(opened, 0);
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
