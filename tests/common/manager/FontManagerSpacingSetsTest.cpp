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

  // Both ends of every band, worked out by hand; 539..541 fall between the
  // bands of 538 and 588 and take the 850 band's 15.
  const float dotumBands[][2] = {
      {0, -4},     {280, 276},  {281, 276},  {330, 325},   {331, 325},   {385, 379},
      {386, 379},  {433, 426},  {434, 426},  {488, 480},   {489, 480},   {538, 529},
      {539, 524},  {540, 525},  {541, 531},  {588, 578},   {589, 578},   {640, 629},
      {641, 629},  {690, 678},  {691, 678},  {750, 737},   {751, 737},   {800, 786},
      {801, 786},  {850, 835},  {851, 835},  {900, 884},   {901, 884},   {950, 933},
      {951, 933},  {1000, 982}, {1001, 982}, {1024, 1005}, {1050, 1031}, {1051, 1031}};
  for (const auto& band : dotumBands) {
    EXPECT_FLOAT_EQ(manager.AdjustAdvanceRatio(dotum, band[0]), band[1]) << band[0];
  }
  // GulimChe widens exactly 1024; other fonts are left alone.
  const float gulimCheBands[][2] = {{1024, 1025}, {1023, 1004}, {1025, 1006}};
  for (const auto& band : gulimCheBands) {
    EXPECT_FLOAT_EQ(manager.AdjustAdvanceRatio(gulimChe, band[0]), band[1]) << band[0];
  }
  EXPECT_FLOAT_EQ(manager.AdjustAdvanceRatio(other, 539), 539);
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
