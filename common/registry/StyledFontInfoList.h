#pragma once

#include <string>

namespace qro_common {

class FontInfo;

// The faces of one font name, one per style (regular, bold, italic, bold
// italic), and the face that stands in for a missing style. The list points
// at faces owned by the font table.
//
// A face's style comes from its style name: bold when it contains "Bold" or
// "bold", italic when it contains "Italic", "italic", "Oblique" or
// "oblique". A face whose style name equals its font name, or has neither
// mark, is a regular face. The first face of a style keeps the slot.
class StyledFontInfoList {
 public:
  explicit StyledFontInfoList(int fontIndex);
  virtual ~StyledFontInfoList() = default;
  StyledFontInfoList(const StyledFontInfoList&) = delete;
  StyledFontInfoList& operator=(const StyledFontInfoList&) = delete;

  static bool IsBoldStyle(const std::string& styleName);
  static bool IsItalicStyle(const std::string& styleName);

  // Offers a face to the list; whether it was taken. A face without a style
  // name counts as taken even when the regular slot was already filled (it
  // is then not stored). A face of a filled slot is refused, and so is a
  // "Roboto" face offered as regular whose style name lacks "Regular".
  bool InformFontInfo(FontInfo& info);
  // The face stored in the slot that `info`'s style name selects (the
  // regular slot without a style name); null when that slot is empty.
  FontInfo* FindFontInfo(FontInfo& info) const;
  // The default becomes the first filled of regular, bold, italic, bold
  // italic; null when all are empty.
  void ConfirmDefaultFontInfo();

  int GetFontIndex() const { return fontIndex_; }
  FontInfo* GetRegular() const { return regular_; }
  FontInfo* GetBold() const { return bold_; }
  FontInfo* GetItalic() const { return italic_; }
  FontInfo* GetBoldItalic() const { return boldItalic_; }
  FontInfo* GetDefault() const { return default_; }

 private:
  // Stores `info` in `slot` unless it is filled.
  static bool Fill(FontInfo*& slot, FontInfo& info);

  int fontIndex_;
  FontInfo* regular_ = nullptr;
  FontInfo* bold_ = nullptr;
  FontInfo* italic_ = nullptr;
  FontInfo* boldItalic_ = nullptr;
  FontInfo* default_ = nullptr;
};

}  // namespace qro_common
