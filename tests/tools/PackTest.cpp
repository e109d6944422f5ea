// The package written by `kelfont pack`: a manager on it alone answers as
// one that scanned the fonts. The lists it carries: DefaultListsTest.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/registry/FontTable.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/kelfont/ToolFontManager.h"

namespace {

using kelfont_test::TempDir;

// A manager that knows the generated fonts only from the package (no font
// folder) hands out the same font indexes and answers the same advances and
// kerning as one that scanned the font files, for every character a font
// has itself.
TEST(Pack, ManagerOnThePackageAloneAnswersAsOneThatScannedTheFonts) {
  TempDir dir;
  const std::string zip = kelfont_test::packTestFonts(dir);
  ASSERT_FALSE(zip.empty());
  qro_ni::DefaultFontInfoFileExtracter scanExtracter(dir.file("scan/"), dir.file("none/"));
  kelfont_tool::ToolFontManager scanned(&scanExtracter, dir.file("scan/"),
                                        {kelfont_test::testFontDir()});
  scanned.Initialize();
  qro_ni::DefaultFontInfoFileExtracter packageExtracter(dir.file("package/"), dir.path() + "/");
  kelfont_tool::ToolFontManager packaged(&packageExtracter, dir.file("package/"), {});
  packaged.Initialize();

  std::vector<unsigned> codes;
  int facesWithOs2 = 0;
  for (const std::string& file : kelfont_test::testFontFiles()) {
    for (int face = 0; face < kelfont_test::expectedFaceCount(file); ++face) {
      kelfont_test::ExpectedFace expected;
      ASSERT_TRUE(kelfont_test::loadExpectedFace(file, face, &expected));
      for (const auto& entry : expected.chars) codes.push_back(entry.first);
      facesWithOs2 += expected.hasOs2;
    }
  }
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());

  const int fonts = scanned.GetFontTable()->GetFontCount();
  ASSERT_GE(fonts, facesWithOs2 - 3);  // the styles of KelTest Basic share one font
  int compared = 0;
  for (int font = 0; font < fonts; ++font) {
    const std::string name = scanned.GetFontName(font);
    // Names over 255 bytes are cut to what the table holds.
    ASSERT_EQ(packaged.GetFontName(font), name.substr(0, name.size() <= 255 ? 255 : 252)) << font;
    for (int style = 0; style < 4; ++style) {
      const bool bold = style & 1;
      const bool italic = style & 2;
      for (unsigned code : codes) {
        if (scanned.GetCharMetrics(font, code, bold, italic) == nullptr) continue;
        ASSERT_EQ(packaged.GetCharAdvanceRatio(font, code, bold, italic),
                  scanned.GetCharAdvanceRatio(font, code, bold, italic))
            << scanned.GetFontName(font) << " " << code;
        ++compared;
      }
      EXPECT_EQ(packaged.GetKerningWidth(font, bold, italic, 'A', 'V'),
                scanned.GetKerningWidth(font, bold, italic, 'A', 'V'));
    }
  }
  EXPECT_GT(compared, 1000);
  const int basic = packaged.GetFontIndex("KelTest Basic");
  EXPECT_EQ(packaged.GetCharAdvanceRatio(basic, 'A', false, false), 740.0f / 2048.0f);
  // Kerning comes with the per-character data, which the loop above may
  // have evicted (the answer above came from the advance cache).
  packaged.ReadFontInfoData(*packaged.GetFontInfo(basic, false, false), basic);
  EXPECT_EQ(packaged.GetKerningWidth(basic, false, false, 'A', 'V'), -150);
}

}  // namespace
