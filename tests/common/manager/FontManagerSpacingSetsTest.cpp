// The fixed font sets and the bold correction bands of the font manager.

#include <gtest/gtest.h>

#include "common/font_info/FontInfo.h"
#include "tests/common/manager/ManagerScenario.h"

namespace kelfont_test {
namespace {

// Registers a face named `english` whose Korean name is `korean`.
int registerFont(qro_common::FontManager& manager, const char* english, const char* korean) {
  auto* info = new qro_common::FontInfo();
  info->SetFontName(new std::string(english));
  info->AddLocalizedName(0x0409, english);
  info->AddLocalizedName(0x0412, korean);
  return manager.Register(info);
}

TEST(FontManagerSpacingSetsTest, BoldBandsOfTheAdvanceRatioAdjustFonts) {
  TempDir storage;
  TestFontManager manager(nullptr, storage.path() + "/", {});
  manager.Initialize();
  int gulimChe = registerFont(manager, "GulimChe", "굴림체");
  int dotum = registerFont(manager, "Dotum", "돋움");
  int other = registerFont(manager, "Other", "다른글꼴");
  manager.InitializeAdvanceRatioAdjustFontSet();
  manager.InitializeAdjustSpacingFontSet();

  struct Row {
    int font;
    float advance, expected;
  } rows[] = {
      {gulimChe, 1024, 1025}, {gulimChe, 1023, 1004}, {gulimChe, 1025, 1006}, {dotum, 1024, 1005},
      {dotum, 539, 524},      {dotum, 540, 525},      {dotum, 541, 531},      {dotum, 588, 578},
      {dotum, 589, 578},      {dotum, 280, 276},      {dotum, 281, 276},      {dotum, 0, -4},
      {dotum, 850, 835},      {dotum, 1000, 982},     {dotum, 1050, 1031},    {dotum, 1100, 1080},
      {other, 1024, 1024},    {other, 539, 539},
  };
  for (const Row& row : rows) {
    EXPECT_FLOAT_EQ(manager.AdjustAdvanceRatio(row.font, row.advance), row.expected)
        << manager.GetFontName(row.font) << " " << row.advance;
  }
  EXPECT_TRUE(manager.IsAdjustSpacingFont(dotum));
  EXPECT_TRUE(manager.IsAdjustSpacingFont(gulimChe));
  EXPECT_FALSE(manager.IsAdjustSpacingFont(other));
  // Names the table does not know stand in the sets as -1.
  EXPECT_TRUE(manager.IsAdjustSpacingFont(-1));
  EXPECT_TRUE(manager.IsCJKExceptFont(-1));
  EXPECT_FLOAT_EQ(manager.AdjustAdvanceRatio(-1, 700), 687);
}

}  // namespace
}  // namespace kelfont_test
