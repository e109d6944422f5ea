#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common/font_info/FontInfo.h"
#include "common/registry/StyledFontInfoList.h"

namespace {

using qro_common::FontInfo;
using qro_common::StyledFontInfoList;

std::unique_ptr<FontInfo> face(const char* name, const char* style) {
  std::unique_ptr<FontInfo> info(new FontInfo());
  if (name != nullptr) info->SetFontName(new std::string(name));
  if (style != nullptr) info->SetStyleName(new std::string(style));
  return info;
}

TEST(StyledFontInfoList, ClassifiesStylesBySubstrings) {
  const std::pair<const char*, bool> bold[] = {{"SemiBold", true}, {"bold", true},
                                               {"ExtraBold Italic", true}, {"BOLD", false},
                                               {"Heavy", false}, {"", false}};
  for (const auto& [style, is] : bold) EXPECT_EQ(StyledFontInfoList::IsBoldStyle(style), is) << style;
  const std::pair<const char*, bool> italic[] = {{"italic", true}, {"Bold oblique", true},
                                                 {"ITALIC", false}, {"Slanted", false}};
  for (const auto& [style, is] : italic) {
    EXPECT_EQ(StyledFontInfoList::IsItalicStyle(style), is) << style;
  }
}

TEST(StyledFontInfoList, TheFirstFaceOfEachStyleKeepsItsSlot) {
  auto regular = face("Foo", "Regular"), bold = face("Foo", "Bold"),
       italic = face("Foo", "Oblique"), boldItalic = face("Foo", "bold italic"),
       secondBold = face("Foo", "Semibold"), secondRegular = face("Foo", "Book");
  StyledFontInfoList list(3);
  for (FontInfo* info : {boldItalic.get(), bold.get(), italic.get(), regular.get()}) {
    EXPECT_TRUE(list.InformFontInfo(*info)) << *info->GetStyleName();
  }
  EXPECT_FALSE(list.InformFontInfo(*secondBold));
  EXPECT_FALSE(list.InformFontInfo(*secondRegular));
  EXPECT_EQ(list.GetItalic(), italic.get());
  // Looked up by the style of another face of the same name.
  EXPECT_EQ(list.FindFontInfo(*secondBold), bold.get());
  EXPECT_EQ(list.FindFontInfo(*secondRegular), regular.get());
  EXPECT_EQ(list.FindFontInfo(*face("Foo", "Italic Bold")), boldItalic.get());
  EXPECT_EQ(list.FindFontInfo(*face("Foo", nullptr)), regular.get());
}

TEST(StyledFontInfoList, NamelessAndFontNamedStylesAreRegular) {
  // A face without style name is always taken.
  auto first = face("Foo", nullptr), second = face("Foo", nullptr), named = face("Foo", "Regular");
  StyledFontInfoList list(0);
  EXPECT_TRUE(list.InformFontInfo(*first));
  EXPECT_TRUE(list.InformFontInfo(*second));
  EXPECT_FALSE(list.InformFontInfo(*named));
  EXPECT_EQ(list.GetRegular(), first.get());
  // A style name equal to the font name means regular.
  auto same = face("Bold", "Bold"), other = face("Bold", "Bold Italic");
  StyledFontInfoList bold(0);
  EXPECT_TRUE(bold.InformFontInfo(*same));
  EXPECT_TRUE(bold.InformFontInfo(*other));
  EXPECT_EQ(bold.GetRegular(), same.get());
  EXPECT_EQ(bold.GetBold(), nullptr);
}

TEST(StyledFontInfoList, RobotoTakesOnlyItsRegularWeightAsRegular) {
  auto light = face("Roboto", "Light"), thin = face("Roboto", "Thin Italic"),
       regular = face("Roboto", "Regular"), otherLight = face("Roboto Light", "Light");
  StyledFontInfoList list(0);
  EXPECT_FALSE(list.InformFontInfo(*light));
  EXPECT_TRUE(list.InformFontInfo(*thin));  // an italic, not a regular candidate
  EXPECT_TRUE(list.InformFontInfo(*regular));
  EXPECT_EQ(list.GetRegular(), regular.get());
  StyledFontInfoList other(1);
  EXPECT_TRUE(other.InformFontInfo(*otherLight));
}

TEST(StyledFontInfoList, DefaultIsTheFirstFilledSlot) {
  auto bold = face("Foo", "Bold"), italic = face("Foo", "Italic"), regular = face("Foo", "Regular");
  StyledFontInfoList list(0);
  list.InformFontInfo(*italic);
  list.ConfirmDefaultFontInfo();
  EXPECT_EQ(list.GetDefault(), italic.get());
  list.InformFontInfo(*bold);
  list.ConfirmDefaultFontInfo();
  EXPECT_EQ(list.GetDefault(), bold.get());
  list.InformFontInfo(*regular);
  EXPECT_EQ(list.GetDefault(), bold.get());  // only confirmed on demand
  list.ConfirmDefaultFontInfo();
  EXPECT_EQ(list.GetDefault(), regular.get());
}

}  // namespace
