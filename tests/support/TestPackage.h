#pragma once
// Builds a default font-data package ("qrfont.zip") the way the library
// reads it: the cache table "Ftable", per-face data files "Fdata/N" and the
// text lists ("fc", "df", "sf", "sf_" + language).

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qro_common {
class FontInfo;
}

namespace kelfont_test {

class TestPackage {
 public:
  // Adds or replaces an entry.
  void add(const std::string& name, const std::string& bytes);
  // Adds "Ftable" with one record per face, numbered by position (which
  // becomes each face's info index), and "Fdata/N" for every face that has
  // per-character data. False when the cache could not be written.
  bool addFontTable(const std::vector<qro_common::FontInfo*>& infos);
  // Writes directory + "/qrfont.zip".
  bool write(const std::string& directory) const;

 private:
  std::map<std::string, std::string> entries_;
};

// One analysed face of a font file with its per-character data; null when
// the file cannot be opened.
std::unique_ptr<qro_common::FontInfo> analyzeFontFile(const std::string& path, int face = 0);

// The bytes of the data file ("Fdata/N") of a face.
std::string dataFileBytes(qro_common::FontInfo& info);

}  // namespace kelfont_test
