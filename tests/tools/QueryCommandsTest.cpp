// measure --json and render against the library's own answers and the
// generated fonts' own tables.

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/kelfont/ToolFontManager.h"

namespace {

using kelfont_test::TempDir;

TEST(Measure, JsonGivesTheLibrarysAnswersPerCharacter) {
  TempDir dir;
  const std::string zip = kelfont_test::packTestFonts(dir);
  ASSERT_FALSE(zip.empty());
  const std::string fonts = kelfont_test::testFontDir();
  // "A", "V", U+B098 (only in KelTest CJK, the chain's next font), U+E000.
  const std::vector<unsigned> text{'A', 'V', 0xB098, 0xE000};
  std::string out, err;
  ASSERT_EQ(kelfont_test::runTool(
                {"measure", "--json", "--storage", dir.file("tool"), "--package", zip, "--fonts",
                 fonts, "--font", "KelTest Basic", "AV\xEB\x82\x98\xEE\x80\x80"},
                &out, &err),
            0)
      << err;

  qro_ni::DefaultFontInfoFileExtracter extracter(dir.file("own/"), dir.path() + "/");
  kelfont_tool::ToolFontManager manager(&extracter, dir.file("own/"), {fonts});
  manager.Initialize();
  const int basic = manager.GetFontIndex("KelTest Basic");
  ASSERT_GE(basic, 0);
  EXPECT_NE(
      out.find("\"font\": {\"index\": " + std::to_string(basic) + ", \"name\": \"KelTest Basic\"}"),
      std::string::npos)
      << out;

  const std::regex entry(
      "\\{\"code\": (\\d+), \"char\": \"[^\"]*\", \"font\": (-?\\d+), \"fontName\": \"[^\"]*\", "
      "\"shownCode\": (\\d+), \"substituted\": (true|false), \"ratio\": ([^,]+), "
      "\"units\": (-?\\d+), \"unitsPerEm\": (\\d+), \"kerning\": (-?\\d+), "
      "\"kerningRatio\": ([^}]+)\\}");
  const std::vector<std::smatch> chars(std::sregex_iterator(out.begin(), out.end(), entry),
                                       std::sregex_iterator());
  ASSERT_EQ(chars.size(), text.size()) << out;
  double total = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    SCOPED_TRACE(text[i]);
    const std::smatch& c = chars[i];
    int font = basic;
    unsigned shown = text[i];
    const bool substituted = manager.ConfirmVisibleChar(font, shown, false, false);
    EXPECT_EQ(std::stoul(c[1]), text[i]);
    EXPECT_EQ(std::stoi(c[2]), font);
    EXPECT_EQ(std::stoul(c[3]), shown);
    EXPECT_EQ(c[4] == "true", substituted);
    const float ratio = std::strtof(c[5].str().c_str(), nullptr);
    EXPECT_EQ(ratio, manager.GetCharAdvanceRatio(basic, text[i], false, false));
    const int kerning =
        i == 0 ? 0 : manager.GetKerningWidth(basic, false, false, text[i - 1], text[i]);
    EXPECT_EQ(std::stoi(c[8]), kerning);
    total += ratio + std::strtof(c[9].str().c_str(), nullptr);
  }
  // The chain's next font draws U+B098: the numbers are its own.
  const kelfont_test::ExpectedFace cjkFace = kelfont_test::expectedFace("cjk_flag.ttf");
  EXPECT_EQ(std::stoi(chars[2][6]), cjkFace.chars.at(0xB098).advance);
  EXPECT_EQ(std::stoi(chars[2][7]), cjkFace.unitsPerEm);
  std::smatch totals;
  ASSERT_TRUE(std::regex_search(out, totals, std::regex("\"totalEm\": ([^,]+),")));
  EXPECT_NEAR(std::strtod(totals[1].str().c_str(), nullptr), total, 1e-6);
}

TEST(Render, DrawsTheGlyphOutlineAtThePenOnTheBaseline) {
  TempDir dir;
  const std::string svg = dir.file("a.svg");
  std::string out, err;
  ASSERT_EQ(kelfont_test::runTool(
                {"render", "--storage", dir.file("s"), "--fonts", kelfont_test::testFontDir(),
                 "--font", "KelTest Basic", "-o", svg, "A"},
                &out, &err),
            0)
      << err;
  const std::string wrote = "wrote " + svg + ": 1 glyphs, ";
  EXPECT_EQ(out.compare(0, wrote.size(), wrote), 0) << out;
  const std::string text = kelfont_test::readFile(svg);
  std::smatch baseline;
  ASSERT_TRUE(std::regex_search(text, baseline, std::regex("<line x1=\"0\" y1=\"(\\d+)\\.")));
  // The outline itself is checked on the library; here the tool's part:
  // the first point of "A" at the 256-unit margin, y growing downward.
  const kelfont_test::ExpectedFace face = kelfont_test::expectedFace("basic.ttf");
  const kelfont_test::ExpectedPoint first = face.outlines.at(face.chars.at('A').glyph).at(0).at(0);
  std::smatch start;
  ASSERT_TRUE(std::regex_search(text, start, std::regex("<path d=\"M(-?\\d+) (-?\\d+)")));
  EXPECT_EQ(std::stoi(start[1]), 256 + first.x);
  EXPECT_NEAR(std::stoi(baseline[1]) - std::stoi(start[2]), first.y, 64);  // hinted at 32 px
}

}  // namespace
