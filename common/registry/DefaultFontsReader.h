#pragma once

#include <string>
#include <vector>

namespace qro_common {

class FontTable;

// Reads the default fonts list <data directory>"FInfo/df": up to five
// groups of candidate font names separated by blank lines, each group in
// order of preference. The result holds, per group, the font index of its
// first available candidate (known to the table and with a font file); a
// group without one adds nothing, so later groups move up.
//
// Line rules: a line ends at LF; CR bytes are dropped wherever they stand.
// A blank line (empty or only TAB and SPACE) ends a group, and so does one
// at the very start of the file (ending an empty first group); blank lines
// in a row end one group. Reading stops at the fifth group end. A line
// starting with "#" is a comment; every other line is a name, taken whole.
class DefaultFontsReader {
 public:
  // Makes sure the data directory exists; the directory ends in a path
  // separator.
  explicit DefaultFontsReader(std::string& dataDirectory);

  bool IsFileExists() const;
  // The chosen font indexes, in group order; a new vector owned by the
  // caller. Null when the file does not exist, empty when it cannot be read.
  std::vector<int>* Read(FontTable& table);

 private:
  std::string path_;
};

}  // namespace qro_common
