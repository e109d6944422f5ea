#include "common/registry/StyledFontInfoList.h"

#include "common/font_info/FontInfo.h"

namespace qro_common {

namespace {

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

StyledFontInfoList::StyledFontInfoList(int fontIndex) : fontIndex_(fontIndex) {}

bool StyledFontInfoList::IsBoldStyle(const std::string& styleName) {
  return contains(styleName, "Bold") || contains(styleName, "bold");
}

bool StyledFontInfoList::IsItalicStyle(const std::string& styleName) {
  return contains(styleName, "Italic") || contains(styleName, "italic") ||
         contains(styleName, "Oblique") || contains(styleName, "oblique");
}

bool StyledFontInfoList::Fill(FontInfo*& slot, FontInfo& info) {
  if (slot != nullptr) return false;
  slot = &info;
  return true;
}

bool StyledFontInfoList::InformFontInfo(FontInfo& info) {
  const std::string* style = info.GetStyleName();
  if (style == nullptr) {
    if (regular_ == nullptr) regular_ = &info;
    return true;
  }
  const std::string* name = info.GetFontName();
  if (name == nullptr || *name != *style) {
    bool bold = IsBoldStyle(*style);
    bool italic = IsItalicStyle(*style);
    if (bold && !italic) return Fill(bold_, info);
    if (bold && italic) return Fill(boldItalic_, info);
    if (italic) return Fill(italic_, info);
  }
  if (regular_ != nullptr) return false;
  // Light, thin, medium and the other weights of this family must not
  // become its regular face.
  if (name != nullptr && *name == "Roboto" && !contains(*style, "Regular")) return false;
  regular_ = &info;
  return true;
}

FontInfo* StyledFontInfoList::FindFontInfo(FontInfo& info) const {
  const std::string* style = info.GetStyleName();
  if (style == nullptr) return regular_;
  bool bold = IsBoldStyle(*style);
  bool italic = IsItalicStyle(*style);
  if (bold) return italic ? boldItalic_ : bold_;
  return italic ? italic_ : regular_;
}

void StyledFontInfoList::ConfirmDefaultFontInfo() {
  default_ = regular_ != nullptr  ? regular_
             : bold_ != nullptr   ? bold_
             : italic_ != nullptr ? italic_
                                  : boldItalic_;
}

}  // namespace qro_common
