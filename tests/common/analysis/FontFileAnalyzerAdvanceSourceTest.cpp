// The two advance sources of the analyzer write byte-identical data files
// for every face of every installed real font: the horizontal metrics read
// in one FT_Get_Advances call, and every glyph loaded unscaled.

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/registry/DataFileNames.h"
#include "tests/support/TempDir.h"

namespace {

using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using Source = FontFileAnalyzer::AdvanceSource;

std::vector<std::string> fontFilesIn(const std::string& folder) {
  std::vector<std::string> files;
  DIR* dir = opendir(folder.c_str());
  if (dir == nullptr) return files;
  while (dirent* entry = readdir(dir)) {
    const std::string name = entry->d_name;
    if (qro_common::isFontFile(name)) files.push_back(folder + "/" + name);
  }
  closedir(dir);
  return files;
}

// The data file of one face analysed with `source`; empty when the face
// does not open.
std::string dataFile(FontFileAnalyzer& analyzer, Source source, const std::string& path, int face,
                     const std::string& storage) {
  analyzer.SetAdvanceSource(source);
  if (!analyzer.Open(path.c_str(), face)) return std::string();
  FontInfo info;
  info.SetInfoIndex(0);
  analyzer.AnalyzeData(info);
  analyzer.Close();
  qro_common::FontInfoSerializer serializer(storage);
  if (!serializer.WriteData(info)) return std::string();
  std::string file;
  serializer.MakeFontInfoDataFilePath(info, file);
  return kelfont_test::readFile(file);
}

TEST(FontFileAnalyzerAdvanceSourceTest, MetricsAndLoadedGlyphsGiveIdenticalDataFiles) {
  kelfont_test::TempDir fromMetrics;
  kelfont_test::TempDir fromGlyphs;
  FontFileAnalyzer analyzer;
  int faces = 0;
  for (const char* folder :
       {"/usr/share/fonts/truetype/dejavu", "/usr/share/fonts/truetype/liberation",
        "/usr/share/fonts/truetype/nanum", "/usr/share/fonts/opentype/noto"}) {
    for (const std::string& path : fontFilesIn(folder)) {
      int faceCount = 1;
      for (int face = 0; face < faceCount; ++face) {
        const std::string slow =
            dataFile(analyzer, Source::kGlyphs, path, face, fromGlyphs.path() + "/");
        faceCount = analyzer.GetFaceCount();
        const std::string fast =
            dataFile(analyzer, Source::kMetrics, path, face, fromMetrics.path() + "/");
        // 128 range type bytes at least, and real ranges behind them.
        ASSERT_GT(slow.size(), 128u) << path << " face " << face;
        EXPECT_TRUE(fast == slow) << path << " face " << face << ": " << fast.size() << " vs "
                                  << slow.size() << " bytes";
        ++faces;
      }
    }
  }
  // DejaVu, Liberation and Nanum are installed by scripts/install-deps.sh.
  EXPECT_GE(faces, 40);
}

}  // namespace
