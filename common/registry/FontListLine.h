#pragma once
// Line rules shared by the font list readers (font chain, default fonts,
// script default fonts). Lines are byte strings without their LF; no
// character-set conversion is made.

#include <string>

namespace qro_common {

class FontTable;

// Empty, or only TAB and SPACE bytes.
bool isBlankListLine(const std::string& line);
// Not blank and starting with "#".
bool isCommentListLine(const std::string& line);
// The font index of `name` when the table knows the name and the font's
// regular face (or its stand-in) has a file path; -1 otherwise.
int availableFontIndex(const FontTable& table, const std::string& name);

}  // namespace qro_common
