// Writes the seed corpora of the fuzz targets with the library's own
// writers, from a folder of font files (the generated test fonts):
//
//   make_seeds FONT_DIR CORPUS_DIR
//
// analyzer/  a copy of each small font below
// ftable/    cache tables of the fonts' records (serializer)
// fdata/     their data files, and one with a compacted range
// fi/        default font information of the fonts
// package/   a package of the above (zip writer), with the lists of the
//            committed seeds lists/chains, lists/groups and lists/scripts
//
// The seeds of lists/ and run/ are written by hand and kept as they are.

#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "base/FileUtils.h"
#include "base/ZipEntry.h"
#include "base/ZipEntryOutputStream.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/DefaultFontInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/SingleCharMetricsRange.h"

namespace {

using qro_common::FontInfo;

const char* const kFonts[] = {"basic.ttf",         "bold.ttf",       "collection.ttc", "symbol.ttf",
                              "supplementary.ttf", "cjk_flag.ttf",   "cff.otf",        "nohead.ttf",
                              "vertical.ttf",      "emoji_name.ttf", "macroman.ttf",   "noos2.ttf",
                              "gpos_kern.ttf"};

std::string readWhole(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool writeWhole(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(out);
}

bool check(bool ok, const std::string& what) {
  if (!ok) std::fprintf(stderr, "make_seeds: %s\n", what.c_str());
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_seeds FONT_DIR CORPUS_DIR\n");
    return 2;
  }
  const std::string fonts = std::string(argv[1]) + "/";
  const std::string corpus = std::string(argv[2]) + "/";
  for (const char* target : {"analyzer", "ftable", "fdata", "fi", "package"}) {
    if (!check(qro_base::confirmFilePathExists((corpus + target).c_str()), corpus + target))
      return 1;
  }
  // The serializer writes under a staging folder; the seeds are copied out.
  const std::string staging = corpus + ".staging/";
  qro_common::FontInfoSerializer serializer(staging);

  std::vector<FontInfo*> infos;
  qro_common::DefaultFontInfo defaults;
  qro_common::FontFileAnalyzer analyzer;
  for (const char* font : kFonts) {
    std::string bytes = readWhole(fonts + font);
    if (!check(!bytes.empty() && writeWhole(corpus + "analyzer/" + font, bytes), font)) return 1;
    for (int face = 0; analyzer.Open((fonts + font).c_str(), face); ++face) {
      FontInfo* info = analyzer.Analyze();
      analyzer.AnalyzeData(*info);
      analyzer.ApplyDefaultFontInfo(static_cast<int>(infos.size()), defaults);
      int faces = analyzer.GetFaceCount();
      analyzer.Close();
      info->SetInfoIndex(static_cast<int>(infos.size()));
      info->SetFilePath(new std::string("/system/fonts/" + std::string(font)));
      infos.push_back(info);
      if (face + 1 >= faces) break;
    }
  }

  // One data file per face that has data, and a compacted one.
  std::vector<std::string> dataSeeds;
  for (FontInfo* info : infos) {
    if (info->GetCharMetricsInfo() == nullptr && info->GetKerningInfo() == nullptr) continue;
    if (!check(serializer.WriteData(*info), "data file")) return 1;
    std::string path;
    serializer.MakeFontInfoDataFilePath(*info, path);
    dataSeeds.push_back(readWhole(path));
  }
  {
    FontInfo zipped;
    zipped.SetInfoIndex(99);
    auto* metrics = new qro_common::CharMetricsInfo();
    auto* latin = new qro_common::SingleCharMetricsRange(0, 127);
    for (unsigned code = 0x20; code < 0x7F; ++code)
      latin->Set(code, new qro_common::CharMetrics(600));
    metrics->SetCharMetricsRange(0, latin);
    metrics->ZipCharMetricsRanges();
    zipped.SetCharMetricsInfo(metrics);
    if (!check(serializer.WriteData(zipped), "compacted data file")) return 1;
    std::string path;
    serializer.MakeFontInfoDataFilePath(zipped, path);
    dataSeeds.push_back(readWhole(path));
  }
  for (size_t i = 0; i < dataSeeds.size(); ++i) {
    writeWhole(corpus + "fdata/data" + std::to_string(i), dataSeeds[i]);
  }

  // Tables: all faces, the first three, and none with twelve directories.
  std::string directory = fonts;
  std::vector<const std::string*> oneDirectory{&directory};
  std::vector<const std::string*> twelve(12, &directory);
  serializer.SetDefaultFontIndexes({0, 1, 2, 0, 0});
  std::vector<FontInfo*> firstThree(infos.begin(), infos.begin() + 3);
  std::vector<FontInfo*> none;
  struct TableSeed {
    const char* name;
    std::vector<FontInfo*>* list;
    std::vector<const std::string*>* directories;
  } tables[] = {{"all", &infos, &oneDirectory},
                {"three", &firstThree, &oneDirectory},
                {"empty", &none, &twelve}};
  std::string packageTable;
  for (const TableSeed& seed : tables) {
    if (!check(serializer.Write(*seed.list, *seed.directories), "table")) return 1;
    std::string bytes = readWhole(serializer.GetTablePath());
    writeWhole(corpus + "ftable/" + seed.name, bytes);
    if (std::string(seed.name) == "three") packageTable = bytes;
  }

  if (!check(serializer.WriteDefaultFontInfo(defaults), "default font information")) return 1;
  std::string fi = readWhole(serializer.GetDefaultFontInfoPath());
  writeWhole(corpus + "fi/fonts", fi);

  std::string fc = readWhole(corpus + "lists/chains");
  std::string df = readWhole(corpus + "lists/groups");
  std::string sf = readWhole(corpus + "lists/scripts");
  for (std::string* list : {&fc, &df, &sf}) list->erase(0, 1);  // the byte that picks the reader
  if (!check(!fc.empty() && !df.empty() && !sf.empty(), "the list seeds")) return 1;

  // The package: table of the first three faces, their data, the lists.
  {
    qro_base::ZipEntryOutputStream zip((corpus + "package/qrfont.zip").c_str());
    std::vector<std::pair<std::string, std::string>> entries = {
        {"Ftable", packageTable}, {"fc", fc}, {"df", df}, {"sf", sf}, {"sf_ko-KR", sf}};
    for (int i = 0; i < 3 && i < static_cast<int>(dataSeeds.size()); ++i) {
      entries.emplace_back("Fdata/" + std::to_string(i), dataSeeds[static_cast<size_t>(i)]);
    }
    for (const auto& [name, bytes] : entries) {
      qro_base::ZipEntry entry(name, static_cast<int64_t>(bytes.size()));
      if (!check(zip.PutNextEntry(entry) &&
                     zip.Write(bytes.data(), static_cast<unsigned>(bytes.size())) &&
                     zip.CloseEntry(),
                 "package entry " + name)) {
        return 1;
      }
    }
    if (!check(zip.Close(), "package")) return 1;
  }

  for (FontInfo* info : infos) delete info;
  std::string cleanup = "rm -rf '" + staging + "'";
  return std::system(cleanup.c_str()) == 0 ? 0 : 1;
}
