// Kerning from GPOS: the generated font against fontTools' reading of it,
// and real fonts against HarfBuzz's shaping of every printable-ASCII pair
// (or, for faces with `kern` pairs, against FreeType's `kern` values).

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H

#include <dirent.h>

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
#include "common/font_info/FontInfo.h"
#include "common/font_info/KerningInfo.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestFonts.h"

#if KELFONT_HARFBUZZ
#include <hb.h>
#endif

namespace {

using qro_common::FontFileAnalyzer;
using qro_common::FontInfo;
using qro_common::KerningInfo;

using Pairs = std::map<std::pair<int, int>, int>;

// The kerning the analyzer gives face `face` of `path` (empty when none).
Pairs analyzedPairs(const std::string& path, int face, bool* opened = nullptr) {
  FontFileAnalyzer analyzer;
  Pairs pairs;
  const bool open = analyzer.Open(path.c_str(), face);
  if (opened != nullptr) *opened = open;
  if (!open) return pairs;
  FontInfo info;
  analyzer.AnalyzeKerningInfo(info);
  const KerningInfo* kerning = info.GetKerningInfo();
  for (int l = 32; kerning != nullptr && l < 127; ++l) {
    for (int r = 32; r < 127; ++r) {
      if (kerning->GetDelta(l, r) != 0) pairs[{l, r}] = kerning->GetDelta(l, r);
    }
  }
  if (kerning != nullptr) {
    EXPECT_EQ(kerning->GetCount(), static_cast<int>(pairs.size())) << path;
  }
  return pairs;
}

TEST(GposKerning, GlyphAndClassPairsAsFontToolsReadsThem) {
  Pairs want;
  std::ifstream in(kelfont_test::testFontPath("expected_gpos_kern.txt"));
  for (int l, r, v; in >> l >> r >> v;) want[{l, r}] = v;
  ASSERT_EQ(want.size(), 59u);
  ASSERT_EQ(want.at({'O', 'V'}), -7);  // a glyph pair over its classes' -40
  const Pairs got = analyzedPairs(kelfont_test::testFontPath("gpos_kern.ttf"), 0);
  EXPECT_EQ(got, qro_common::hasGposKerning() ? want : Pairs());
}

TEST(GposKerning, DamagedTableGivesNoPairsAndALogLine) {
  kelfont_test::LogCapture log;
  EXPECT_TRUE(analyzedPairs(kelfont_test::testFontPath("gpos_damaged.ttf"), 0).empty());
  std::vector<std::string> want;
  if (qro_common::hasGposKerning()) {
    want.push_back(
        "Kerning: the GPOS table of KelTest Gpos Regular is damaged, no kerning is read from it");
  }
  EXPECT_EQ(log.messages(), want);
}

#if KELFONT_HARFBUZZ

// Today's pairs, FreeType's `kern` values; empty for a face without them.
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

// The reference: HarfBuzz shapes each pair on its own (the file read by
// HarfBuzz itself), ligatures and contextual alternates off.
Pairs shapedPairs(const std::string& path, int faceIndex) {
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
  Pairs pairs;
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
  return pairs;
}

std::vector<std::string> fontFiles(const std::string& dir) {
  std::vector<std::string> files;
  if (DIR* d = opendir(dir.c_str())) {
    while (dirent* e = readdir(d)) {
      const std::string name = e->d_name;
      const std::string ext = name.size() > 4 ? name.substr(name.size() - 4) : "";
      if (ext == ".ttf" || ext == ".otf" || ext == ".ttc") files.push_back(dir + "/" + name);
    }
    closedir(d);
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Every face of `files` with all printable ASCII: the analyzer's pairs
// equal the `kern` table's where it has some, HarfBuzz's otherwise. Prints
// a line per face with kerning.
void checkFaces(const std::vector<std::string>& files) {
  FT_Library library = nullptr;
  ASSERT_EQ(FT_Init_FreeType(&library), 0);
  int faces = 0, kernFaces = 0, gposFaces = 0;
  for (const std::string& path : files) {
    FT_Face face = nullptr;
    for (int index = 0; FT_New_Face(library, path.c_str(), index, &face) == 0; ++index) {
      const int count = static_cast<int>(face->num_faces);
      FT_UInt glyphs[95];
      bool complete = true;
      for (int c = 0; c < 95; ++c)
        complete = (glyphs[c] = FT_Get_Char_Index(face, 32u + c)) != 0 && complete;
      const Pairs kern = complete ? kernTablePairs(face, glyphs) : Pairs();
      FT_Done_Face(face);
      bool opened = false;
      const Pairs got = analyzedPairs(path, index, &opened);
      if (opened && complete) {
        ++faces;
        const Pairs want = kern.empty() ? shapedPairs(path, index) : kern;
        EXPECT_EQ(got, want) << path << " face " << index;
        if (!got.empty()) {
          ++(kern.empty() ? gposFaces : kernFaces);
          std::printf("  %s#%d: %zu pairs from %s, %s\n", path.c_str(), index, got.size(),
                      kern.empty() ? "GPOS" : "kern", got == want ? "all 9025 match" : "MISMATCH");
        }
      } else {
        EXPECT_TRUE(got.empty()) << path << " face " << index;
      }
      if (index + 1 >= count) break;
    }
  }
  FT_Done_FreeType(library);
  std::printf("%d faces with every printable ASCII character: %d kerned by kern, %d by GPOS\n",
              faces, kernFaces, gposFaces);
}

TEST(GposKerning, DesktopFontsMatchHarfBuzzShaping) {
  std::vector<std::string> files{kelfont_test::testFontPath("gpos_kern.ttf")};
  for (const char* dir : {"dejavu", "liberation", "nanum"}) {
    for (const std::string& file : fontFiles(std::string("/usr/share/fonts/truetype/") + dir)) {
      files.push_back(file);
    }
  }
  checkFaces(files);
}

TEST(GposKerning, AndroidFontsMatchHarfBuzzShaping) {
  const char* dir = std::getenv("KELFONT_ANDROID_FONTS");
  if (dir == nullptr || *dir == '\0')
    GTEST_SKIP() << "KELFONT_ANDROID_FONTS is not set (scripts/android-fonts.sh)";
  const std::vector<std::string> files = fontFiles(dir);
  ASSERT_FALSE(files.empty()) << dir;
  checkFaces(files);
}

#endif

}  // namespace
