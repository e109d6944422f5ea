// Every face of the installed real fonts (and of the Android set, when
// KELFONT_ANDROID_FONTS names it) against independent readers: the two
// advance sources of the analyzer (the horizontal metrics in one
// FT_Get_Advances call, every glyph loaded unscaled) write byte-identical
// data files, and the kerning equals FreeType's `kern` values where the
// face has some, else HarfBuzz's shaping of every printable-ASCII pair. The
// generated GPOS font against fontTools' reading of it.

#include <dirent.h>
#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/GposKerning.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/DataFileNames.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestPackage.h"
#include "tests/support/TestFonts.h"

#if KELFONT_HARFBUZZ
#include <hb.h>
#endif

namespace {

using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using Source = FontFileAnalyzer::AdvanceSource;
using Pairs = std::map<std::pair<int, int>, int>;

std::vector<std::string> fontFilesIn(const std::string& folder) {
  std::vector<std::string> files;
  if (DIR* dir = opendir(folder.c_str())) {
    while (dirent* entry = readdir(dir)) {
      if (qro_common::isFontFile(entry->d_name)) files.push_back(folder + "/" + entry->d_name);
    }
    closedir(dir);
  }
  std::sort(files.begin(), files.end());
  return files;
}

// The data file of one face analysed with `source`; empty when the face
// does not open. With `pairs`, the printable-ASCII pairs it kerns.
std::string dataFile(Source source, const std::string& path, int face, Pairs* pairs = nullptr) {
  FontFileAnalyzer analyzer;
  analyzer.SetAdvanceSource(source);
  if (!analyzer.Open(path.c_str(), face)) return std::string();
  FontInfo info;
  info.SetInfoIndex(0);
  analyzer.AnalyzeData(info);
  analyzer.Close();
  const qro_common::KerningInfo* kerning = info.GetKerningInfo();
  for (int l = 32; pairs != nullptr && kerning != nullptr && l < 127; ++l) {
    for (int r = 32; r < 127; ++r) {
      if (kerning->GetDelta(l, r) != 0) (*pairs)[{l, r}] = kerning->GetDelta(l, r);
    }
  }
  if (pairs != nullptr && kerning != nullptr) {
    EXPECT_EQ(kerning->GetCount(), static_cast<int>(pairs->size())) << path;
  }
  return kelfont_test::dataFileBytes(info);
}

// FreeType's `kern` values between printable-ASCII glyphs.
Pairs kernTablePairs(FT_Face face, const FT_UInt* glyphs) {
  Pairs pairs;
  for (int l = 0; FT_HAS_KERNING(face) && l < 95; ++l) {
    for (int r = 0; r < 95; ++r) {
      FT_Vector delta{};
      if (FT_Get_Kerning(face, glyphs[l], glyphs[r], FT_KERNING_UNSCALED, &delta) == 0 &&
          delta.x != 0) {
        pairs[{32 + l, 32 + r}] = static_cast<short>(delta.x);
      }
    }
  }
  return pairs;
}

// HarfBuzz shapes each pair on its own (the file read by HarfBuzz itself),
// ligatures and contextual alternates off. Without HarfBuzz: no pairs.
Pairs shapedPairs(const std::string& path, int faceIndex) {
  Pairs pairs;
#if KELFONT_HARFBUZZ
  hb_blob_t* blob = hb_blob_create_from_file(path.c_str());
  hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(faceIndex));
  hb_font_t* font = hb_font_create(face);
  const int upem = static_cast<int>(hb_face_get_upem(face));
  hb_font_set_scale(font, upem, upem);
  hb_buffer_t* buffer = hb_buffer_create();
  hb_feature_t off[5];
  const char* names[] = {"liga=0", "clig=0", "calt=0", "dlig=0", "rlig=0"};
  for (int i = 0; i < 5; ++i) hb_feature_from_string(names[i], -1, &off[i]);
  auto firstAdvance = [&](std::vector<hb_codepoint_t> text) {
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_codepoints(buffer, text.data(), static_cast<int>(text.size()), 0, -1);
    hb_buffer_guess_segment_properties(buffer);
    hb_shape(font, buffer, off, 5);
    return hb_buffer_get_glyph_positions(buffer, nullptr)[0].x_advance;
  };
  for (hb_codepoint_t l = 32; l < 127; ++l) {
    const int alone = firstAdvance({l});
    for (hb_codepoint_t r = 32; r < 127; ++r) {
      const int value = static_cast<short>(firstAdvance({l, r}) - alone);
      if (value != 0) pairs[{static_cast<int>(l), static_cast<int>(r)}] = value;
    }
  }
  hb_buffer_destroy(buffer);
  hb_font_destroy(font);
  hb_face_destroy(face);
  hb_blob_destroy(blob);
#else
  (void)path, (void)faceIndex;
#endif
  return pairs;
}

// Checks every face of `files` (kerning too when `kerning`); prints a line
// per kerned face and returns the number of faces.
int checkFaces(const std::vector<std::string>& files, bool kerning) {
  FT_Library library = nullptr;
  EXPECT_EQ(FT_Init_FreeType(&library), 0);
  int faces = 0;
  for (const std::string& path : files) {
    FT_Face face = nullptr;
    for (int index = 0; FT_New_Face(library, path.c_str(), index, &face) == 0; ++index) {
      ++faces;
      const int count = static_cast<int>(face->num_faces);
      FT_UInt glyphs[95];
      bool complete = true;
      for (int c = 0; c < 95; ++c)
        complete = (glyphs[c] = FT_Get_Char_Index(face, 32u + c)) != 0 && complete;
      const Pairs kern = complete ? kernTablePairs(face, glyphs) : Pairs();
      FT_Done_Face(face);
      Pairs got;
      const std::string slow = dataFile(Source::kGlyphs, path, index);
      const std::string fast = dataFile(Source::kMetrics, path, index, &got);
      // 128 range type bytes at least, and real ranges behind them.
      EXPECT_GT(slow.size(), 128u) << path << " face " << index;
      EXPECT_TRUE(fast == slow) << path << " face " << index << ": " << fast.size() << " vs "
                                << slow.size() << " bytes";
      if (kerning) {
        const Pairs want = !complete ? Pairs() : kern.empty() ? shapedPairs(path, index) : kern;
        EXPECT_EQ(got, want) << path << " face " << index;
        if (!got.empty()) {
          std::printf("  %s#%d: %zu pairs from %s, %s\n", path.c_str(), index, got.size(),
                      kern.empty() ? "GPOS" : "kern", got == want ? "all 9025 match" : "MISMATCH");
        }
      }
      if (index + 1 >= count) break;
    }
  }
  FT_Done_FreeType(library);
  return faces;
}

// DejaVu, Liberation, Nanum and Noto CJK are installed by
// scripts/install-deps.sh; the generated fonts hold the composites, broken
// glyphs and GPOS pairs real fonts rarely have. Noto CJK's kerning is
// checked with the Android set.
TEST(FontFileAnalyzerRealFonts, DesktopFonts) {
  std::vector<std::string> files = fontFilesIn(KELFONT_TEST_FONT_DIR "/metrics");
  files.push_back(KELFONT_TEST_FONT_DIR "/gpos_kern.ttf");
  for (const char* dir : {"dejavu", "liberation", "nanum"}) {
    for (const std::string& file : fontFilesIn(std::string("/usr/share/fonts/truetype/") + dir))
      files.push_back(file);
  }
  EXPECT_GE(checkFaces(files, true) + checkFaces(fontFilesIn("/usr/share/fonts/opentype/noto"),
                                                 false),
            40);
}

TEST(FontFileAnalyzerRealFonts, AndroidFonts) {
  const char* folder = std::getenv("KELFONT_ANDROID_FONTS");
  if (folder == nullptr || *folder == '\0') {
    GTEST_SKIP() << "KELFONT_ANDROID_FONTS is not set (scripts/android-fonts.sh DIR makes the set)";
  }
  EXPECT_GE(checkFaces(fontFilesIn(folder), true), 300);
}

// The generated composites against their hand-computed loaded advances (0:
// the glyph does not load), so that the comparison above is not vacuous.
TEST(FontFileAnalyzerRealFonts, CompositesAdvanceByTheirMetricsComponent) {
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

TEST(GposKerning, GlyphAndClassPairsAsFontToolsReadsThem) {
  Pairs want, got;
  std::ifstream in(kelfont_test::testFontPath("expected_gpos_kern.txt"));
  for (int l, r, v; in >> l >> r >> v;) want[{l, r}] = v;
  ASSERT_EQ(want.size(), 59u);
  ASSERT_EQ(want.at({'O', 'V'}), -7);  // a glyph pair over its classes' -40
  dataFile(Source::kMetrics, kelfont_test::testFontPath("gpos_kern.ttf"), 0, &got);
  EXPECT_EQ(got, qro_common::hasGposKerning() ? want : Pairs());
}

TEST(GposKerning, DamagedTableGivesNoPairsAndALogLine) {
  kelfont_test::LogCapture log;
  Pairs got;
  dataFile(Source::kMetrics, kelfont_test::testFontPath("gpos_damaged.ttf"), 0, &got);
  EXPECT_TRUE(got.empty());
  std::vector<std::string> want;
  if (qro_common::hasGposKerning()) {
    want.push_back(
        "Kerning: the GPOS table of KelTest Gpos Regular is damaged, no kerning is read from it");
  }
  EXPECT_EQ(log.messages(), want);
}

}  // namespace
