#pragma once
// Builds a default font-data package, "qrfont.zip": the cache table
// "Ftable", data files "Fdata/N" and the lists "fc", "df", "sf", "sf_...".

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
  void add(const std::string& name, const std::string& bytes);
  // "Ftable" with one record per face, numbered by position (which becomes
  // each face's info index), and "Fdata/N" for each face with advances.
  bool addFontTable(const std::vector<qro_common::FontInfo*>& infos);
  // Writes directory + "/qrfont.zip".
  bool write(const std::string& directory) const;

 private:
  std::map<std::string, std::string> entries_;
};

// One face of a font file, analysed with its advances; null when unreadable.
std::unique_ptr<qro_common::FontInfo> analyzeFontFile(const std::string& path, int face = 0);
// The bytes of a face's data file.
std::string dataFileBytes(qro_common::FontInfo& info);

}  // namespace kelfont_test
