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
  ASSERT_EQ(kelfont_test::runTool({"measure", "--json", "--storage", dir.file("tool"), "--package",
                                   zip, "--fonts", fonts, "--font", "KelTest Basic",
                                   "AV\xEB\x82\x98\xEE\x80\x80"},
                                  &out, &err),
            0)
      << err;

  qro_ni::DefaultFontInfoFileExtracter extracter(dir.file("own/"), dir.path() + "/");
  kelfont_tool::ToolFontManager manager(&extracter, dir.file("own/"), {fonts});
  manager.Initialize();
  const int basic = manager.GetFontIndex("KelTest Basic");
  ASSERT_GE(basic, 0);
  EXPECT_NE(out.find("\"font\": {\"index\": " + std::to_string(basic) +
                     ", \"name\": \"KelTest Basic\"}"),
            std::string::npos)
      << out;

  const std::regex entry(
      "\\{\"code\": (\\d+), \"char\": \"[^\"]*\", \"font\": (-?\\d+), \"fontName\": \"[^\"]*\", "
      "\"shownCode\": (\\d+), \"substituted\": (true|false), \"ratio\": ([^,]+), "
      "\"units\": (-?\\d+), \"unitsPerEm\": (\\d+), \"kerning\": (-?\\d+), "
      "\"kerningRatio\": ([^}]+)\\}");
  std::vector<std::smatch> chars;
  for (auto it = std::sregex_iterator(out.begin(), out.end(), entry); it != std::sregex_iterator();
       ++it) {
    chars.push_back(*it);
  }
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
    const int kerning = i == 0 ? 0 : manager.GetKerningWidth(basic, false, false, text[i - 1], text[i]);
    EXPECT_EQ(std::stoi(c[8]), kerning);
    total += ratio + std::strtof(c[9].str().c_str(), nullptr);
  }
  // The same values from the fonts' own tables (read by fontTools).
  kelfont_test::ExpectedFace basicFace, cjkFace;
  ASSERT_TRUE(kelfont_test::loadExpectedFace("basic.ttf", 0, &basicFace));
  ASSERT_TRUE(kelfont_test::loadExpectedFace("cjk_flag.ttf", 0, &cjkFace));
  EXPECT_EQ(std::stoi(chars[0][6]), basicFace.chars.at('A').advance);
  EXPECT_EQ(std::stoi(chars[1][8]), basicFace.kerning.at({'A', 'V'}));
  EXPECT_EQ(chars[2][4], "true");
  EXPECT_EQ(std::stoi(chars[2][6]), cjkFace.chars.at(0xB098).advance);
  EXPECT_EQ(std::stoi(chars[2][7]), cjkFace.unitsPerEm);
  EXPECT_EQ(std::stoi(chars[3][6]), basicFace.chars.at(0xE000).advance);
  std::smatch totals;
  ASSERT_TRUE(std::regex_search(out, totals, std::regex("\"totalEm\": ([^,]+),")));
  EXPECT_NEAR(std::strtod(totals[1].str().c_str(), nullptr), total, 1e-6);
}

TEST(Render, DrawsTheGlyphOutlineAtThePenOnTheBaseline) {
  TempDir dir;
  const std::string svg = dir.file("a.svg");
  std::string out, err;
  ASSERT_EQ(kelfont_test::runTool({"render", "--storage", dir.file("s"), "--fonts",
                                   kelfont_test::testFontDir(), "--font", "KelTest Basic", "-o",
                                   svg, "A"},
                                  &out, &err),
            0)
      << err;
  const std::string wrote = "wrote " + svg + ": 1 glyphs, ";
  EXPECT_EQ(out.compare(0, wrote.size(), wrote), 0) << out;
  const std::string text = kelfont_test::readFile(svg);
  std::smatch baseline;
  ASSERT_TRUE(std::regex_search(text, baseline, std::regex("<line x1=\"0\" y1=\"(\\d+)\\.")));
  // Glyph of "A": one contour of on-curve points, drawn from the origin
  // (pen at the 256-unit margin, the baseline) with y growing downward and
  // closed by a line back to its first point. Outlines come hinted at
  // 32 px: x exactly, y within a pixel (64 units) and 0 on the baseline.
  kelfont_test::ExpectedFace face;
  ASSERT_TRUE(kelfont_test::loadExpectedFace("basic.ttf", 0, &face));
  const auto& contours = face.outlines.at(face.chars.at('A').glyph);
  ASSERT_EQ(contours.size(), 1u);
  std::vector<kelfont_test::ExpectedPoint> points = contours[0];
  points.push_back(points.front());
  std::smatch path;
  ASSERT_TRUE(std::regex_search(text, path, std::regex("<path d=\"([^\"]+)Z\">")));
  const std::string data = path[1];
  const std::regex point("([ML])(-?\\d+) (-?\\d+)");
  std::size_t i = 0;
  const int y0 = std::stoi(baseline[1]);
  for (auto it = std::sregex_iterator(data.begin(), data.end(), point);
       it != std::sregex_iterator(); ++it, ++i) {
    ASSERT_LT(i, points.size()) << data;
    EXPECT_EQ((*it)[1], i == 0 ? "M" : "L");
    EXPECT_EQ(std::stoi((*it)[2]), 256 + points[i].x) << data;
    const int y = y0 - std::stoi((*it)[3]);
    if (points[i].y == 0) {
      EXPECT_EQ(y, 0) << data;
    } else {
      EXPECT_NEAR(y, points[i].y, 64) << data;
    }
  }
  EXPECT_EQ(i, points.size()) << data;
}

}  // namespace
