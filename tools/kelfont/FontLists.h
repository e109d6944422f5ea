#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kelfont_tool {

// The list files of a package, read from a folder and checked for the
// mistakes that the library's readers would silently misread:
//
//   fc   CR bytes (the chain reader keeps them as part of the names) are
//        an error; a last block without the empty line that ends it is a
//        warning (the reader drops it);
//   df   a group without a font name (the groups after it move up) and
//        more than five groups (the rest is not read) are warnings;
//   sf, sf_<language>
//        a number line outside 0..127, a number and a name on one line, a
//        font name holding a digit (it would select a range number) or a
//        name right under a comment holding digits (the reader takes those
//        for range 0) is an error; a last line without a line feed is a
//        warning (it is ignored).
//
// "fc", "df" and "sf" must exist and be non-empty; "sf_<language>" files
// are optional, the language being letters, digits, "-" and "_".
class FontLists {
 public:
  bool Read(const std::string& directory);

  // Entry name and bytes, in package order: fc, df, sf, then the language
  // variants sorted by name.
  const std::vector<std::pair<std::string, std::string>>& GetEntries() const {
    return entries_;
  }
  // Every font name a list mentions, with the list it is in.
  const std::vector<std::pair<std::string, std::string>>& GetNames() const { return names_; }

  const std::vector<std::string>& GetWarnings() const { return warnings_; }
  const std::string& GetError() const { return error_; }

 private:
  bool Add(const std::string& directory, const std::string& name, bool required);
  bool CheckChain(const std::string& name, const std::string& bytes);
  void CheckDefaults(const std::string& name, const std::string& bytes);
  bool CheckScripts(const std::string& name, const std::string& bytes);
  bool Fail(const std::string& message);

  std::vector<std::pair<std::string, std::string>> entries_;
  std::vector<std::pair<std::string, std::string>> names_;
  std::vector<std::string> warnings_;
  std::string error_;
};

}  // namespace kelfont_tool
