#include "tests/api/FacadeCache.h"

#include <map>
#include <memory>
#include <sstream>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "tests/common/font_info/TableBuilders.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace facade_test {

using kelfont_test::Case;
using qro_common::FontInfo;

namespace {

// The face of line `c`; `dataFile` gets the kind of data file it asks for.
std::unique_ptr<FontInfo> makeInfo(const Case& c, int index, std::string* dataFile) {
  std::unique_ptr<FontInfo> info(new FontInfo());
  info->SetInfoIndex(index);
  info->SetFontName(new std::string(c[0]));
  info->SetFamilyName(new std::string(c[0]));
  if (!c[1].empty()) info->SetStyleName(new std::string(c[1]));
  info->SetFilePath(new std::string("/fonts/" + c[0] + ".ttf"));
  std::map<unsigned, int> advances;
  std::unique_ptr<qro_common::KerningInfo> kerning(new qro_common::KerningInfo());
  int units = 0, plus = 0;
  bool emptyTable = false;
  if (!c[2].empty()) {  // a generated font as the font generator read it back
    const kelfont_test::ExpectedFace face = kelfont_test::expectedFace(c[2]);
    units = face.unitsPerEm;
    for (const auto& [code, ch] : face.chars) advances[code] = ch.advance;
    for (const auto& [pair, delta] : face.kerning)
      kerning->Register(int(pair.first), int(pair.second), short(delta));
  }
  if (!c[3].empty()) units = static_cast<int>(c.num(3));
  std::istringstream words(c[4]);
  for (std::string word; std::getline(words, word, ';');) {
    const size_t eq = word.find('=');
    const std::string key = word.substr(0, eq), value = word.substr(eq + 1);
    if (key == "bands") {
      unsigned code = 0x21;
      for (const Case& band : kelfont_test::cases("bold_bands.tsv"))
        advances[code++] = static_cast<int>(band.num(0));
    } else if (key.rfind("U+", 0) == 0) {
      advances[std::stoul(key.substr(2), nullptr, 16)] = std::stoi(value);
    } else if (key == "kern") {
      kerning->Register(value[0], value[2], static_cast<short>(std::stoi(value.substr(4))));
    } else if (key == "plus") {
      plus = std::stoi(value);
    } else if (key == "empty") {
      emptyTable = true;
    } else if (key == "missing" || key == "truncated" || key == "damaged") {
      *dataFile = key;
    } else {
      info->AddLocalizedName(std::stoi(key, nullptr, 16), value);
    }
  }
  if (units > 0)
    info->SetFontMetrics(
        new qro_common::FontMetrics(800, -200, 0, static_cast<unsigned short>(units)));
  if (!advances.empty() || emptyTable) {
    auto* metrics = new qro_common::CharMetricsInfo();
    for (const auto& [code, advance] : advances)
      font_info_test::addAdvance(*metrics, code, static_cast<unsigned short>(advance + plus));
    info->SetCharMetricsInfo(metrics);
  }
  if (kerning->GetCount() > 0) info->SetKerningInfo(kerning.release());
  return info;
}

bool writeData(qro_common::FontInfoSerializer& serializer, FontInfo& info,
               const std::string& kind) {
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

bool writeCache(const std::string& base, const std::vector<Case>& faces) {
  qro_common::FontInfoSerializer serializer(base);
  std::vector<std::unique_ptr<FontInfo>> infos;
  std::vector<FontInfo*> list;
  std::vector<std::string> dataFiles(faces.size());
  for (size_t i = 0; i < faces.size(); ++i) {
    infos.push_back(makeInfo(faces[i], static_cast<int>(i), &dataFiles[i]));
    list.push_back(infos.back().get());
  }
  std::vector<const std::string*> directories;
  if (!serializer.Write(list, directories)) return false;
  for (size_t i = 0; i < faces.size(); ++i) {
    if (!writeData(serializer, *infos[i], dataFiles[i])) return false;
  }
  return true;
}

bool writeDataFile(const std::string& base, int index, const std::string& words) {
  Case face = kelfont_test::cases("facade_faces.tsv").at(static_cast<size_t>(index));
  face.fields.resize(5);
  face.fields[4] += ";" + words;
  std::string dataFile;
  qro_common::FontInfoSerializer serializer(base);
  return serializer.WriteData(*makeInfo(face, index, &dataFile));
}

}  // namespace facade_test
