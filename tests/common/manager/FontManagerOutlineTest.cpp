// Glyph outlines drawn into a recording path, against the glyphs as FreeType
// (called here directly) and the font generator see them; fonts rewritten
// while they are open.

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <unistd.h>

#include <memory>

#include "common/analysis/FontFileAnalyzer.h"
#include "common/font_info/CharMetrics.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

using Commands = std::vector<float>;  // as RecordingPath writes them

// A glyph of basic.ttf loaded by FreeType at 32 pixels per em (grid-fitted):
// its outline placed at (ox, oy) with y downward, and its metrics.
struct Reference {
  Commands commands;
  FT_Glyph_Metrics metrics;
};

Reference freetypeGlyph(unsigned glyph, int ox, int oy) {
  struct Context {
    Commands out;
    int ox, oy;
    void add(char op, std::initializer_list<const FT_Vector*> points) {
      out.push_back(float(op));
      for (const FT_Vector* p : points) out.insert(out.end(), {float(ox + p->x), float(oy - p->y)});
    }
  } c{{}, ox, oy};
  FT_Outline_Funcs funcs = {};
  funcs.move_to = [](const FT_Vector* p, void* u) {
    return static_cast<Context*>(u)->add('M', {p}), 0;
  };
  funcs.line_to = [](const FT_Vector* p, void* u) {
    return static_cast<Context*>(u)->add('L', {p}), 0;
  };
  funcs.conic_to = [](const FT_Vector* a, const FT_Vector* p, void* u) {
    return static_cast<Context*>(u)->add('Q', {a, p}), 0;
  };
  funcs.cubic_to = [](const FT_Vector* a, const FT_Vector* b, const FT_Vector* p, void* u) {
    return static_cast<Context*>(u)->add('C', {a, b, p}), 0;
  };
  FT_Library library;
  FT_Face face;
  FT_Init_FreeType(&library);
  EXPECT_EQ(FT_New_Face(library, testFontPath("basic.ttf").c_str(), 0, &face), 0);
  FT_Set_Pixel_Sizes(face, 0, 32);
  EXPECT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_DEFAULT), 0);
  FT_Outline_Decompose(&face->glyph->outline, &funcs, &c);
  Reference reference{c.out, face->glyph->metrics};
  FT_Done_FreeType(library);
  return reference;
}

class FontManagerOutlineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(loadExpectedFace("basic.ttf", 0, &basic));
    info.SetFilePath(new std::string(testFontPath("basic.ttf")));
    info.SetInfoIndex(0);
  }
  unsigned glyphOf(unsigned ch) const { return unsigned(basic.chars.at(ch).glyph); }

  ExpectedFace basic;
  qro_common::FontInfo info;
  TestFontManager manager{nullptr, "", {}};
  RecordingPath path;
};

TEST_F(FontManagerOutlineTest, GlyphsAreDrawnFromTheTruncatedPenWithYFlipped) {
  for (unsigned ch : {'A', 'O', 'o', ' '}) {
    RecordingPath drawn;
    float x = 100.7f, y = 50.2f;
    ASSERT_EQ(manager.OutlineToPath(&info, ch, x, y, &drawn), 0);
    Reference reference = freetypeGlyph(glyphOf(ch), 100, 50);
    EXPECT_EQ(drawn.out, reference.commands) << ch;
    EXPECT_EQ(drawn.out.empty(), ch == ' ');  // a space draws nothing
    EXPECT_FLOAT_EQ(x, 100.7f + float(reference.metrics.horiAdvance)) << ch;
    EXPECT_FLOAT_EQ(y, 50.2f);
    // 2048 units per em, basic.ttf's own: up to the grid fitting of one
    // pixel (64 units), path units are font units.
    EXPECT_NEAR(reference.metrics.horiAdvance, basic.chars.at(ch).advance, 64);
  }
}

TEST_F(FontManagerOutlineTest, GlyphIndexMovesOnlyThePenByTheSideBearing) {
  float x = 100.7f, y = 50.2f;
  ASSERT_EQ(manager.GlyphOutlineToPath(&info, glyphOf('A'), x, y, &path), 0);
  Reference reference = freetypeGlyph(glyphOf('A'), 100, 50);
  EXPECT_EQ(path.out, reference.commands);
  ASSERT_LT(reference.metrics.width, reference.metrics.horiAdvance);
  EXPECT_FLOAT_EQ(x,
                  100.7f + float(reference.metrics.horiBearingX + reference.metrics.horiAdvance));

  qro_common::FontInfo missing;
  missing.SetFilePath(new std::string("/nonexistent/font.ttf"));
  missing.SetInfoIndex(7);
  RecordingPath untouched;
  x = 5;
  EXPECT_EQ(manager.OutlineToPath(&missing, 'A', x, y, &untouched), -1);
  EXPECT_EQ(manager.GlyphOutlineToPath(nullptr, 1, x, y, &untouched), -1);
  EXPECT_FLOAT_EQ(x, 5);
  EXPECT_TRUE(untouched.out.empty());
}

// A font rewritten in place (as a copy over it does) while it is open: the
// analysis goes on with the file as it was opened; a face kept open for
// outlines fails its next glyph instead of faulting.
TEST_F(FontManagerOutlineTest, AFontRewrittenInPlaceWhileOpen) {
  TempDir dir;
  const std::string replaced = dir.file("replaced.ttf");
  ASSERT_TRUE(writeFile(replaced, readFile(testFontPath("basic.ttf"))));
  qro_common::FontFileAnalyzer analyzer;
  ASSERT_TRUE(analyzer.Open(replaced.c_str(), 0));
  ASSERT_EQ(truncate(replaced.c_str(), 0), 0);
  ASSERT_TRUE(writeFile(replaced, std::string(300, 'x')));
  std::unique_ptr<qro_common::FontInfo> analyzed(analyzer.Analyze());
  ASSERT_NE(analyzed, nullptr);
  analyzer.AnalyzeData(*analyzed);
  analyzer.Close();
  ASSERT_NE(analyzed->GetCharMetricsInfo(), nullptr);
  for (unsigned code : {0x41u, 0x7Eu, 0xAC00u}) {
    const qro_common::CharMetrics* metrics = analyzed->GetCharMetricsInfo()->GetCharMetrics(code);
    ASSERT_NE(metrics, nullptr) << code;
    EXPECT_EQ(metrics->GetAdvance(), basic.chars.at(code).advance) << code;
  }
  // A large font, so that the glyph asked for after the change was never
  // read before it.
  const std::string large = dir.file("large.ttf");
  ASSERT_TRUE(writeFile(large, readFile("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf")));
  info.SetFilePath(new std::string(large));
  float x = 0, y = 0;
  ASSERT_EQ(manager.OutlineToPath(&info, 'A', x, y, &path), 0);
  ASSERT_EQ(truncate(large.c_str(), 0), 0);
  EXPECT_EQ(manager.OutlineToPath(&info, 0x416, x, y, &path), -1);  // Cyrillic Zhe
}

}  // namespace
}  // namespace kelfont_test
