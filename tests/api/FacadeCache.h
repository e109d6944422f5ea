#pragma once
// Font information caches for the facade tests, written with the library's
// own serializer: a table of faces and their data files.

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace facade_test {

struct Face {
  std::string fontName;
  std::string styleName;                      // empty: none
  std::map<int, std::string> localizedNames;  // language code -> name
  int unitsPerEm = 0;                         // 0: no metrics record
  std::map<unsigned, unsigned short> advances;
  std::vector<std::tuple<int, int, short>> kerning;
  bool emptyAdvanceTable = false;  // write 128 empty slots when no advances
  // The data file: written (""), "missing", "truncated" (cut in half) or
  // "damaged" (a range whose bounds are reversed).
  std::string dataFile;
};

// Font indexes of the standard cache (registration order of the names).
enum StandardFont {
  kBasic = 0,  // "KelTest Basic" (also "켈테스트 기본"): basic, bold, italic, bolditalic.ttf
  kGulim,      // "Gulim" / "굴림": regular only, advances of kBoldBands
  kDotum,      // "돋움": regular 'A' 1024, bold 'A' 1051
  kNoMetrics,  // "KelTest NoMetrics": no metrics record, 'A' 500
  kNoData,     // "KelTest NoData": no data file
  kTruncated,  // "KelTest Truncated": data file cut short
  kDamaged,    // "KelTest Damaged": damaged data file
  kRobotoLight,  // "Roboto" with style "Light" only: the font has no face to offer
  kKerningOnly,  // "KelTest KerningOnly": kerning A-V -77, no advances
  kFirstEvict,   // "KelTest Evict 00" .. "21": 'A' 100 + i, 'B' 200 + i, 'C' 300 + i
  kFontCount = kFirstEvict + 22
};
constexpr int kFirstEvictInfo = 13;  // data file number of "KelTest Evict 00"

// One bold correction: the stored advance and the bold answer.
struct BoldBand {
  unsigned short advance;
  int bold;
};
// The advances of Gulim: character 0x21 + i has kBoldBands[i].advance.
const std::vector<BoldBand>& boldBands();

std::vector<Face> standardFaces();
// Face i of the eviction fonts.
Face evictFace(int i);

// Writes the table and the data files of `faces` under `base` (a folder
// path ending in "/"); record i is faces[i]. False when something could not
// be written.
bool writeCache(const std::string& base, const std::vector<Face>& faces);
// Rewrites the data file of info `infoIndex` from `face`.
bool writeDataFile(const std::string& base, int infoIndex, const Face& face);

}  // namespace facade_test
