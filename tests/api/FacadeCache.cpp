#include "tests/api/FacadeCache.h"

#include <memory>

#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "tests/common/font_info/TableBuilders.h"
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
  // Both ends of every band of the correction, worked out by hand.
  static const std::vector<BoldBand> bands = {
      {0, -4},     {280, 276},   {281, 276},   {330, 325},   {331, 325},    {385, 379},
      {386, 379},  {433, 426},   {434, 426},   {488, 480},   {489, 480},    {538, 529},
      {539, 529},  {588, 578},   {589, 578},   {640, 629},   {641, 629},    {690, 678},
      {691, 678},  {750, 737},   {751, 737},   {800, 786},   {801, 786},    {850, 835},
      {851, 835},  {900, 884},   {901, 884},   {950, 933},   {951, 933},    {1000, 982},
      {1001, 982}, {1024, 1005}, {1050, 1031}, {1051, 1031}, {65535, 65515}};
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

std::vector<Face> standardFaces() {
  std::vector<Face> faces;
  const std::map<int, std::string> basicNames = {{0x0409, "KelTest Basic"},
                                                 {0x0412, "켈테스트 기본"}};
  const char* basicFiles[][2] = {{"basic.ttf", "Regular"},
                                 {"bold.ttf", "Bold"},
                                 {"italic.ttf", "Italic"},
                                 {"bolditalic.ttf", "Bold Italic"}};
  for (const auto& file : basicFiles) {
    faces.push_back(generatedFace(file[0], "KelTest Basic", file[1]));
    faces.back().localizedNames = basicNames;
  }

  Face gulim;
  gulim.fontName = "Gulim";
  gulim.styleName = "Regular";
  gulim.localizedNames = {{0x0409, "Gulim"}, {0x0412, "굴림"}};
  gulim.unitsPerEm = 1024;
  for (size_t i = 0; i < boldBands().size(); ++i) {
    gulim.advances[static_cast<unsigned>(0x21 + i)] = boldBands()[i].advance;
  }
  faces.push_back(gulim);

  Face dotum;
  dotum.fontName = "돋움";
  dotum.styleName = "Regular";
  dotum.unitsPerEm = 1024;
  dotum.advances = {{'A', 1024}};
  faces.push_back(dotum);
  dotum.styleName = "Bold";
  dotum.advances = {{'A', 1051}};
  faces.push_back(dotum);

  Face plain;
  plain.fontName = "KelTest NoMetrics";
  plain.advances = {{'A', 500}};
  faces.push_back(plain);
  plain.unitsPerEm = 1000;
  plain.fontName = "KelTest NoData";
  plain.dataFile = DataFile::kMissing;
  faces.push_back(plain);
  plain.fontName = "KelTest Truncated";
  plain.dataFile = DataFile::kTruncated;
  faces.push_back(plain);
  plain.fontName = "KelTest Damaged";
  plain.dataFile = DataFile::kDamaged;
  faces.push_back(plain);

  Face roboto;
  roboto.fontName = "Roboto";
  roboto.styleName = "Light";
  roboto.unitsPerEm = 2048;
  roboto.advances = {{'A', 1200}};
  faces.push_back(roboto);

  Face kerningOnly;
  kerningOnly.fontName = "KelTest KerningOnly";
  kerningOnly.unitsPerEm = 1000;
  kerningOnly.emptyAdvanceTable = true;
  kerningOnly.kerning = {std::make_tuple('A', 'V', static_cast<short>(-77))};
  faces.push_back(kerningOnly);

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

bool writeData(FontInfoSerializer& serializer, FontInfo& info, DataFile kind) {
  std::string path =
      serializer.GetBasePath() + "FInfo/Fdata/" + std::to_string(info.GetInfoIndex());
  switch (kind) {
    case DataFile::kMissing:
      return true;
    case DataFile::kWritten:
      return serializer.WriteData(info);
    case DataFile::kTruncated: {
      if (!serializer.WriteData(info)) return false;
      std::string bytes = kelfont_test::readFile(path);
      return kelfont_test::writeFile(path, bytes.substr(0, bytes.size() / 2));
    }
    case DataFile::kDamaged:
      // Slot 0 holds a single range from 0x7F down to 0x20.
      return kelfont_test::writeFile(
          path,
          std::string("\x01\x7F\x00\x00\x00\x20\x00\x00\x00\x00\x00", 11) + std::string(127, '\0'));
  }
  return false;
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
