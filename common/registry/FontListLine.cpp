#include "common/registry/FontListLine.h"

#include "common/font_info/FontInfo.h"
#include "common/registry/FontTable.h"

namespace qro_common {

bool isBlankListLine(const std::string& line) {
  for (char c : line) {
    if (c != '\t' && c != ' ') return false;
  }
  return true;
}

bool isCommentListLine(const std::string& line) { return !line.empty() && line[0] == '#'; }

int availableFontIndex(const FontTable& table, const std::string& name) {
  int index = table.GetFontIndex(name);
  if (index < 0) return -1;
  const FontInfo* info = table.GetFontInfo(index, false, false, true);
  return info != nullptr && info->GetFilePath() != nullptr ? index : -1;
}

}  // namespace qro_common
