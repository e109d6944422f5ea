// Glyph outlines drawn into a recording path, against the glyphs' contours
// as FreeType and the font generator see them.

#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "common/font_info/FontInfo.h"
#include "common/manager/Path.h"
#include "tests/common/manager/ManagerScenario.h"
#include "tests/support/TestFonts.h"

namespace kelfont_test {
namespace {

struct Command {
  char op;  // M, L, Q, C, R (reset)
  std::vector<float> points;
  bool operator==(const Command& o) const { return op == o.op && points == o.points; }
};

std::ostream& operator<<(std::ostream& out, const Command& c) {
  out << c.op;
  for (float p : c.points) out << " " << p;
  return out;
}

class RecordingPath : public qro_graphics::Path {
 public:
  std::vector<Command> commands;
  void reset() override { commands.push_back({'R', {}}); }
  void moveTo(float x, float y) override { commands.push_back({'M', {x, y}}); }
  void lineTo(float x, float y) override { commands.push_back({'L', {x, y}}); }
  void quadTo(float cx, float cy, float x, float y) override {
    commands.push_back({'Q', {cx, cy, x, y}});
  }
  void cubicTo(float ax, float ay, float bx, float by, float x, float y) override {
    commands.push_back({'C', {ax, ay, bx, by, x, y}});
  }
};

// A glyph as FreeType loads it in the test itself at 32 pixels per em
// (grid-fitted): its outline placed at (ox, oy) with y downward, and its
// metrics in 1/64 pixels.
struct Reference {
  std::vector<Command> commands;
  float advance = 0, bearing = 0, width = 0;
};

Reference freetypeGlyph(const std::string& file, unsigned glyph, int ox, int oy) {
  struct Context {
    std::vector<Command> out;
    int ox, oy;
    float x(const FT_Vector* v) const { return static_cast<float>(ox + v->x); }
    float y(const FT_Vector* v) const { return static_cast<float>(oy - v->y); }
  } context{{}, ox, oy};
  FT_Outline_Funcs funcs = {};
  funcs.move_to = [](const FT_Vector* to, void* u) {
    auto* c = static_cast<Context*>(u);
    c->out.push_back({'M', {c->x(to), c->y(to)}});
    return 0;
  };
  funcs.line_to = [](const FT_Vector* to, void* u) {
    auto* c = static_cast<Context*>(u);
    c->out.push_back({'L', {c->x(to), c->y(to)}});
    return 0;
  };
  funcs.conic_to = [](const FT_Vector* a, const FT_Vector* to, void* u) {
    auto* c = static_cast<Context*>(u);
    c->out.push_back({'Q', {c->x(a), c->y(a), c->x(to), c->y(to)}});
    return 0;
  };
  funcs.cubic_to = [](const FT_Vector* a, const FT_Vector* b, const FT_Vector* to, void* u) {
    auto* c = static_cast<Context*>(u);
    c->out.push_back({'C', {c->x(a), c->y(a), c->x(b), c->y(b), c->x(to), c->y(to)}});
    return 0;
  };
  FT_Library library;
  FT_Face face;
  EXPECT_EQ(FT_Init_FreeType(&library), 0);
  EXPECT_EQ(FT_New_Face(library, testFontPath(file).c_str(), 0, &face), 0);
  FT_Set_Pixel_Sizes(face, 0, 32);
  EXPECT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_DEFAULT), 0);
  FT_Outline_Decompose(&face->glyph->outline, &funcs, &context);
  const FT_Glyph_Metrics& m = face->glyph->metrics;
  Reference reference{context.out, float(m.horiAdvance), float(m.horiBearingX), float(m.width)};
  FT_Done_Face(face);
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
  int glyphOf(unsigned ch) const { return basic.chars.at(ch).glyph; }
  float advanceOf(unsigned ch) const {
    return static_cast<float>(basic.glyphs[glyphOf(ch)].advance);
  }

  ExpectedFace basic;
  qro_common::FontInfo info;
  TestFontManager manager{nullptr, "", {}};
  RecordingPath path;
};

TEST_F(FontManagerOutlineTest, TriangleIsDrawnFromTheTruncatedPenWithYFlipped) {
  float x = 100.7f, y = 50.2f;
  ASSERT_EQ(manager.OutlineToPath(&info, 'A', x, y, &path), 0);
  Reference reference = freetypeGlyph("basic.ttf", glyphOf('A'), 100, 50);
  EXPECT_EQ(path.commands, reference.commands);
  EXPECT_FLOAT_EQ(x, 100.7f + reference.advance);
  EXPECT_FLOAT_EQ(y, 50.2f);
  // At 2048 units per em (basic.ttf's own) path units are font units, up
  // to the grid fitting of one pixel (64 units).
  EXPECT_NEAR(reference.advance, advanceOf('A'), 64);
  const auto& contour = basic.outlines.at(glyphOf('A')).at(0);
  ASSERT_EQ(path.commands.size(), contour.size() + 1);  // closed by a line
  for (std::size_t i = 0; i < path.commands.size(); ++i) {
    const ExpectedPoint& p = contour[i % contour.size()];
    EXPECT_EQ(path.commands[i].op, i == 0 ? 'M' : 'L');
    EXPECT_NEAR(path.commands[i].points[0], 100 + p.x, 64) << i;
    EXPECT_NEAR(path.commands[i].points[1], 50 - p.y, 64) << i;
  }
}

TEST_F(FontManagerOutlineTest, CurvesAndContoursMatchFreeType) {
  for (unsigned ch : {'O', 'o'}) {
    RecordingPath drawn;
    float x = -20.9f, y = 300.0f;
    ASSERT_EQ(manager.OutlineToPath(&info, ch, x, y, &drawn), 0);
    EXPECT_EQ(drawn.commands, freetypeGlyph("basic.ttf", glyphOf(ch), -20, 300).commands) << ch;
    EXPECT_FALSE(drawn.commands.empty());
  }
  RecordingPath o;
  float x = 0, y = 0;
  manager.OutlineToPath(&info, 'o', x, y, &o);
  EXPECT_TRUE(std::any_of(o.commands.begin(), o.commands.end(),
                          [](const Command& c) { return c.op == 'Q'; }));
}

TEST_F(FontManagerOutlineTest, SpaceDrawsNothingAndAdvances) {
  float x = 10.0f, y = 0.0f;
  ASSERT_EQ(manager.OutlineToPath(&info, ' ', x, y, &path), 0);
  EXPECT_TRUE(path.commands.empty());
  float advance = freetypeGlyph("basic.ttf", glyphOf(' '), 10, 0).advance;
  EXPECT_FLOAT_EQ(x, 10.0f + advance);
  EXPECT_NEAR(advance, advanceOf(' '), 64);
}

TEST_F(FontManagerOutlineTest, GlyphIndexMovesThePenByTheSideBearing) {
  float x = 100.7f, y = 50.2f;
  unsigned glyph = static_cast<unsigned>(glyphOf('A'));
  ASSERT_EQ(manager.GlyphOutlineToPath(&info, glyph, x, y, &path), 0);
  Reference reference = freetypeGlyph("basic.ttf", glyph, 100, 50);
  EXPECT_EQ(path.commands, reference.commands);  // drawn from the pen itself
  ASSERT_LT(reference.width, reference.advance);
  EXPECT_FLOAT_EQ(x, 100.7f + reference.bearing + reference.advance);
}

TEST_F(FontManagerOutlineTest, MissingFaceFails) {
  qro_common::FontInfo missing;
  missing.SetFilePath(new std::string("/nonexistent/font.ttf"));
  missing.SetInfoIndex(7);
  float x = 5, y = 5;
  EXPECT_EQ(manager.OutlineToPath(&missing, 'A', x, y, &path), -1);
  EXPECT_EQ(manager.OutlineToPath(nullptr, 'A', x, y, &path), -1);
  EXPECT_FLOAT_EQ(x, 5);
  EXPECT_TRUE(path.commands.empty());
}

}  // namespace
}  // namespace kelfont_test
