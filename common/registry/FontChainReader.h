#pragma once

#include <map>
#include <string>
#include <vector>

namespace qro_common {

class FontTable;

// Reads the font chain list <data directory>"FInfo/fc": blocks of font
// names separated by blank lines. The first name of a block is the font the
// chain belongs to, the following ones are its fallbacks, in order.
//
// Line rules: a line ends at LF; CR is kept as part of the name, so the file
// must use bare LF line ends. A blank line (empty or only TAB and SPACE)
// ends a block; a line starting with "#" is a comment and neither adds a
// name nor ends a block. Every other line is a font name, taken whole.
//
// A block takes effect only when a blank line follows it: the last block of
// a file without a final blank line is dropped. A block of a single name
// gives no chain, and the first block for a font wins. A name the table
// does not know is registered as a font without file (a face that carries
// only the name), so that it has a font index.
class FontChainReader {
 public:
  // Keeps a reference to the path, which must outlive the reader; it ends
  // in a path separator.
  explicit FontChainReader(std::string& dataDirectory);
  FontChainReader(const FontChainReader&) = delete;
  FontChainReader& operator=(const FontChainReader&) = delete;
  ~FontChainReader();

  // Makes sure the data directory exists, then adds the chains of the file
  // to `chains` (font index -> fallback font indexes; the map owns the new
  // vectors, and keys already present are left alone). False when the file
  // does not exist; true otherwise, also when it cannot be read.
  bool Read(FontTable& table, std::map<int, std::vector<int>*>& chains);

  // Handles one line (without its LF) during Read(): a comment does
  // nothing, a name joins the open block (opening one), a blank line
  // closes the open block. Comment and name lines are emptied. Outside
  // Read() it does nothing.
  void BuildFontChain(std::string& line);

 private:
  void CloseBlock();

  std::string& dataDirectory_;
  FontTable* table_ = nullptr;
  std::map<int, std::vector<int>*>* chains_ = nullptr;
  std::vector<int>* block_ = nullptr;
};

}  // namespace qro_common
