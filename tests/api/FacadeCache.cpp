#include "tests/api/FacadeCache.h"

#include <memory>
#include <sstream>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/Cases.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace facade_test {

using qro_common::CharMetricsInfo;
using qro_common::FontInfo;
using qro_common::FontInfoSerializer;
using qro_common::FontMetrics;
using qro_common::KerningInfo;

namespace {

// The face of a generated test font as the font generator read it back.
Face generatedFace(const std::string& fontFile, const std::string& fontName,
                   const std::string& styleName) {
  kelfont_test::ExpectedFace expected;
  Face face;
  face.fontName = fontName;
  face.styleName = styleName;
  if (!kelfont_test::loadExpectedFace(fontFile, 0, &expected)) return face;
  face.unitsPerEm = expected.unitsPerEm;
  for (const auto& entry : expected.chars) {
    face.advances[entry.first] = static_cast<unsigned short>(entry.second.advance);
  }
  for (const auto& entry : expected.kerning) {
    face.kerning.emplace_back(static_cast<int>(entry.first.first),
                              static_cast<int>(entry.first.second),
                              static_cast<short>(entry.second));
  }
  return face;
}

}  // namespace

const std::vector<BoldBand>& boldBands() {
  // Both ends of every band of the correction, worked out by hand: "advance bold" pairs.
  static const std::vector<BoldBand> bands = [] {
    std::vector<BoldBand> out;
    for (const kelfont_test::Case& c : kelfont_test::cases("bold_bands.tsv")) {
      out.push_back({static_cast<unsigned short>(c.num(0)), static_cast<int>(c.num(1))});
    }
    return out;
  }();
  return bands;
}

Face evictFace(int i) {
  Face face;
  face.fontName = "KelTest Evict " + std::string(i < 10 ? "0" : "") + std::to_string(i);
  face.unitsPerEm = 1000;
  face.advances = {{'A', static_cast<unsigned short>(100 + i)},
                   {'B', static_cast<unsigned short>(200 + i)},
                   {'C', static_cast<unsigned short>(300 + i)}};
  return face;
}

// The faces of tests/data/facade_faces.tsv, then the eviction faces.
std::vector<Face> standardFaces() {
  std::vector<Face> faces;
  for (const kelfont_test::Case& c : kelfont_test::cases("facade_faces.tsv")) {
    Face face = c[2].empty() ? Face() : generatedFace(c[2], c[0], c[1]);
    face.fontName = c[0];
    face.styleName = c[1];
    if (!c[3].empty()) face.unitsPerEm = static_cast<int>(c.num(3));
    std::istringstream words(c[4]);
    for (std::string word; std::getline(words, word, ';');) {
      size_t eq = word.find('=');
      std::string key = word.substr(0, eq),
                  value = eq == std::string::npos ? "" : word.substr(eq + 1);
      if (key == "bands") {
        for (size_t b = 0; b < boldBands().size(); ++b)
          face.advances[0x21 + b] = boldBands()[b].advance;
      } else if (key.rfind("U+", 0) == 0) {
        face.advances[std::stoul(key.substr(2), nullptr, 16)] =
            static_cast<unsigned short>(std::stoi(value));
      } else if (key == "kern") {
        face.kerning.emplace_back(value[0], value[2],
                                  static_cast<short>(std::stoi(value.substr(4))));
      } else if (key == "empty") {
        face.emptyAdvanceTable = true;
      } else if (key == "missing" || key == "truncated" || key == "damaged") {
        face.dataFile = key;
      } else {
        face.localizedNames[std::stoi(key, nullptr, 16)] = value;
      }
    }
    faces.push_back(face);
  }
  for (int i = 0; i < 22; ++i) faces.push_back(evictFace(i));
  return faces;
}

namespace {

std::unique_ptr<FontInfo> makeInfo(const Face& face, int infoIndex) {
  std::unique_ptr<FontInfo> info(new FontInfo());
  info->SetInfoIndex(infoIndex);
  info->SetFontName(new std::string(face.fontName));
  info->SetFamilyName(new std::string(face.fontName));
  if (!face.styleName.empty()) info->SetStyleName(new std::string(face.styleName));
  info->SetFilePath(new std::string("/fonts/" + face.fontName + ".ttf"));
  for (const auto& entry : face.localizedNames) info->AddLocalizedName(entry.first, entry.second);
  if (face.unitsPerEm > 0) {
    info->SetFontMetrics(
        new FontMetrics(800, -200, 0, static_cast<unsigned short>(face.unitsPerEm)));
  }
  if (!face.advances.empty() || face.emptyAdvanceTable) {
    auto* metrics = new CharMetricsInfo();
    for (const auto& entry : face.advances)
      font_info_test::addAdvance(*metrics, entry.first, entry.second);
    info->SetCharMetricsInfo(metrics);
  }
  if (!face.kerning.empty()) {
    auto* kerning = new KerningInfo();
    for (const auto& pair : face.kerning) {
      kerning->Register(std::get<0>(pair), std::get<1>(pair), std::get<2>(pair));
    }
    info->SetKerningInfo(kerning);
  }
  return info;
}

bool writeData(FontInfoSerializer& serializer, FontInfo& info, const std::string& kind) {
  std::string path =
      serializer.GetBasePath() + "FInfo/Fdata/" + std::to_string(info.GetInfoIndex());
  if (kind == "missing") return true;
  if (kind == "damaged") {  // slot 0 holds a single range from 0x7F down to 0x20
    return kelfont_test::writeFile(
        path,
        std::string("\x01\x7F\x00\x00\x00\x20\x00\x00\x00\x00\x00", 11) + std::string(127, '\0'));
  }
  if (!serializer.WriteData(info)) return false;
  const std::string bytes = kelfont_test::readFile(path);
  return kind != "truncated" || kelfont_test::writeFile(path, bytes.substr(0, bytes.size() / 2));
}

}  // namespace

bool writeCache(const std::string& base, const std::vector<Face>& faces) {
  FontInfoSerializer serializer(base);
  std::vector<std::unique_ptr<FontInfo>> infos;
  std::vector<FontInfo*> list;
  for (size_t i = 0; i < faces.size(); ++i) {
    infos.push_back(makeInfo(faces[i], static_cast<int>(i)));
    list.push_back(infos.back().get());
  }
  std::vector<const std::string*> directories;
  if (!serializer.Write(list, directories)) return false;
  for (size_t i = 0; i < faces.size(); ++i) {
    if (!writeData(serializer, *infos[i], faces[i].dataFile)) return false;
  }
  return true;
}

bool writeDataFile(const std::string& base, int infoIndex, const Face& face) {
  FontInfoSerializer serializer(base);
  return serializer.WriteData(*makeInfo(face, infoIndex));
}

}  // namespace facade_test
