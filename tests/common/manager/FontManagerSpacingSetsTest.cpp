// The fixed font sets and the bold correction bands of the font manager,
// against tests/data/spacing_bands.tsv.

#include <gtest/gtest.h>

#include <map>

#include "common/font_info/FontInfo.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/Cases.h"

namespace kelfont_test {
namespace {

TEST(FontManagerSpacingSetsTest, BoldBandsOfTheAdvanceRatioAdjustFonts) {
  TempDir storage;
  TestFontManager manager(nullptr, storage.path() + "/", {});
  manager.Initialize();
  // Faces named in English and Korean; "Unknown" is not registered.
  std::map<std::string, int> fonts{{"Unknown", -1}};
  for (auto [english, korean] :
       {std::pair{"GulimChe", "굴림체"}, {"Dotum", "돋움"}, {"Other", "다른글꼴"}}) {
    auto* info = new qro_common::FontInfo();
    info->SetFontName(new std::string(english));
    info->AddLocalizedName(0x0409, english);
    info->AddLocalizedName(0x0412, korean);
    fonts[english] = manager.Register(info);
  }
  manager.InitializeAdvanceRatioAdjustFontSet();
  manager.InitializeAdjustSpacingFontSet();
  for (const Case& c : cases("spacing_bands.tsv")) {
    EXPECT_FLOAT_EQ(manager.AdjustAdvanceRatio(fonts.at(c[0]), float(c.num(1))), float(c.num(2)))
        << c.line;
  }
  EXPECT_TRUE(manager.IsAdjustSpacingFont(fonts["Dotum"]));
  EXPECT_TRUE(manager.IsAdjustSpacingFont(fonts["GulimChe"]));
  EXPECT_FALSE(manager.IsAdjustSpacingFont(fonts["Other"]));
  EXPECT_TRUE(manager.IsAdjustSpacingFont(-1));
  EXPECT_TRUE(manager.IsCJKExceptFont(-1));
}

}  // namespace
}  // namespace kelfont_test
