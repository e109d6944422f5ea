#pragma once

#include <string>
#include <vector>

namespace qro_common {

class FontTable;

// Reads a script default fonts list ("FInfo/sf", or its language variant
// "sf_" + language): per Unicode subrange (script number 0 to 127), the
// font to use, as a table of 128 font indexes (-1 for none).
//
// Line rules: a line ends at LF; CR bytes are dropped wherever they stand;
// a last line without LF is ignored. Every digit read sets the current
// script number to the value of the line so far as atoi() reads it (its
// leading number, 0 when it does not start with one), kept as a byte; the
// number carries over to the following lines. A line that is not blank,
// not a comment ("#" first) and is the whole name of an available font
// (known to the table and with a font file) fills the entry of the current
// number when that entry is still -1. So a number line selects the entry
// for the names below it; "12 Arial" is looked up as a whole and finds
// nothing; a name holding a digit changes the number before it is looked up
// (a name ending in " 2" selects 0).
//
// A number of 128 to 255 (or a negative one, which atoi() gives for "-1")
// names no entry: the names under it are ignored rather than written
// outside the table.
class ScriptDefaultFontsReader {
 public:
  static constexpr int kScriptCount = 128;

  // `path` is the full path of the file. Makes sure that path exists as a
  // directory when nothing is there yet (so callers extract the file
  // first); fills the table with -1.
  explicit ScriptDefaultFontsReader(std::string& path);

  bool IsFileExists() const;
  // Fills the table from the file and returns it; it stays valid while the
  // reader lives. Entries already set are kept; a file that cannot be read
  // leaves the table as it was.
  std::vector<int>* Read(FontTable& table);

 private:
  std::string path_;
  std::vector<int> fonts_;
};

}  // namespace qro_common
