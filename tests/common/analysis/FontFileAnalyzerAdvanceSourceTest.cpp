// The two advance sources of the analyzer write byte-identical data files
// for every face of every installed real font: the horizontal metrics read
// in one FT_Get_Advances call, and every glyph loaded unscaled.

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
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

// Analyses every face of the files in `folders` both ways and compares;
// returns the number of faces compared.
int compareFaces(const std::vector<std::string>& folders) {
  kelfont_test::TempDir fromMetrics;
  kelfont_test::TempDir fromGlyphs;
  FontFileAnalyzer analyzer;
  int faces = 0;
  for (const std::string& folder : folders) {
    for (const std::string& path : fontFilesIn(folder)) {
      int faceCount = 1;
      for (int face = 0; face < faceCount; ++face) {
        const std::string slow =
            dataFile(analyzer, Source::kGlyphs, path, face, fromGlyphs.path() + "/");
        faceCount = analyzer.GetFaceCount();
        const std::string fast =
            dataFile(analyzer, Source::kMetrics, path, face, fromMetrics.path() + "/");
        // 128 range type bytes at least, and real ranges behind them.
        EXPECT_GT(slow.size(), 128u) << path << " face " << face;
        EXPECT_TRUE(fast == slow) << path << " face " << face << ": " << fast.size() << " vs "
                                  << slow.size() << " bytes";
        ++faces;
      }
    }
  }
  return faces;
}

TEST(FontFileAnalyzerAdvanceSourceTest, MetricsAndLoadedGlyphsGiveIdenticalDataFiles) {
  // DejaVu, Liberation and Nanum are installed by scripts/install-deps.sh;
  // the generated fonts hold the composites and broken glyphs real fonts
  // rarely have.
  EXPECT_GE(compareFaces({"/usr/share/fonts/truetype/dejavu",
                          "/usr/share/fonts/truetype/liberation", "/usr/share/fonts/truetype/nanum",
                          "/usr/share/fonts/opentype/noto", KELFONT_TEST_FONT_DIR "/metrics"}),
            40);
}

// The generated composites against their hand-computed loaded advances (0:
// the glyph does not load), so that the comparison above is not vacuous.
TEST(FontFileAnalyzerAdvanceSourceTest, CompositesAdvanceByTheirMetricsComponent) {
  FontFileAnalyzer analyzer;
  ASSERT_TRUE(analyzer.Open(KELFONT_TEST_FONT_DIR "/metrics/composites.ttf", 0));
  FontInfo info;
  analyzer.AnalyzeCharMetricsInfo(info);
  ASSERT_NE(info.GetCharMetricsInfo(), nullptr);
  const int expected[] = {700, 500, 700, 700, 500, 700, 333, 0, 0, 250};  // A..J
  for (unsigned c = 'A'; c <= 'J'; ++c) {
    const qro_common::CharMetrics* metrics = info.GetCharMetricsInfo()->GetCharMetrics(c);
    EXPECT_EQ(metrics == nullptr ? 0 : metrics->GetAdvance(), expected[c - 'A']) << char(c);
  }
}

TEST(FontFileAnalyzerAdvanceSourceTest, AndroidFontsGiveIdenticalDataFiles) {
  const char* folder = std::getenv("KELFONT_ANDROID_FONTS");
  if (folder == nullptr || *folder == '\0') {
    GTEST_SKIP() << "KELFONT_ANDROID_FONTS is not set (scripts/android-fonts.sh DIR makes the set)";
  }
  EXPECT_GE(compareFaces({folder}), 300);
}

}  // namespace
