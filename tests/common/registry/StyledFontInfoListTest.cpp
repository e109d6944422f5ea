// The style slots of a font against tests/data/styled_lists.tsv: faces
// informed in order ("name/style", "-" for no style), "!" confirming the
// default, "=" the default as it stands, "?name/style" looking a face up; then the slots. Faces are
// told by their position.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <vector>

#include "common/font_info/FontInfo.h"
#include "common/registry/StyledFontInfoList.h"
#include "tests/support/Cases.h"

namespace {

using qro_common::FontInfo;

TEST(StyledFontInfoList, Table) {
  for (const kelfont_test::Case& c : kelfont_test::cases("styled_lists.tsv")) {
    std::vector<std::unique_ptr<FontInfo>> faces;
    auto make = [&faces](const std::string& text) {
      faces.emplace_back(new FontInfo());
      faces.back()->SetFontName(new std::string(text.substr(0, text.find('/'))));
      std::string style = text.substr(text.find('/') + 1);
      if (style != "-") faces.back()->SetStyleName(new std::string(style));
      return faces.back().get();
    };
    auto which = [&faces](const FontInfo* info) {
      for (size_t i = 0; i < faces.size(); ++i) {
        if (faces[i].get() == info) return std::to_string(i);
      }
      return std::string("-");
    };
    qro_common::StyledFontInfoList list(static_cast<int>(c.num(0)));
    std::istringstream steps(c[1]);
    std::string said;
    for (std::string step; std::getline(steps, step, '|');) {
      if (step == "!") {
        list.ConfirmDefaultFontInfo();
        said += "!" + which(list.GetDefault()) + " ";
      } else if (step == "=") {
        said += "=" + which(list.GetDefault()) + " ";
      } else if (step[0] == '?') {
        said += "?" + which(list.FindFontInfo(*make(step.substr(1)))) + " ";
      } else {
        said += std::to_string(list.InformFontInfo(*make(step))) + " ";
      }
    }
    said += "R" + which(list.GetRegular()) + " B" + which(list.GetBold()) + " I" +
            which(list.GetItalic()) + " BI" + which(list.GetBoldItalic()) + " D" +
            which(list.GetDefault());
    EXPECT_EQ(said, c[2]) << c.line;
  }
}

TEST(StyledFontInfoList, ClassifiesStylesBySubstrings) {
  for (const char* style : {"SemiBold", "bold", "ExtraBold Italic"})
    EXPECT_TRUE(qro_common::StyledFontInfoList::IsBoldStyle(style)) << style;
  for (const char* style : {"BOLD", "Heavy", ""})
    EXPECT_FALSE(qro_common::StyledFontInfoList::IsBoldStyle(style)) << style;
  for (const char* style : {"italic", "Bold oblique"})
    EXPECT_TRUE(qro_common::StyledFontInfoList::IsItalicStyle(style)) << style;
  for (const char* style : {"ITALIC", "Slanted"})
    EXPECT_FALSE(qro_common::StyledFontInfoList::IsItalicStyle(style)) << style;
}

}  // namespace
