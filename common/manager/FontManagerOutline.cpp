// Glyph outlines drawn into host paths.

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "common/font_info/FontInfo.h"
#include "common/manager/FontManager.h"
#include "common/manager/Path.h"

namespace qro_common {

namespace {

// 32 points at 72 dpi: outline coordinates (26.6) come out at 2048 units
// per em.
constexpr FT_F26Dot6 kCharHeight = 2048;
constexpr FT_UInt kResolution = 72;

// What the outline callbacks draw into: the host's path and the pen origin
// of this call, so that outlines may be drawn on several threads at once.
struct Target {
  qro_graphics::Path* path;
  int originX;
  int originY;
};

// x truncated toward zero; 0 when it does not fit an int (or is NaN).
int truncateToInt(float x) {
  if (!(x > -2147483648.0f && x < 2147483648.0f)) return 0;
  return static_cast<int>(x);
}

// A FreeType point on the path: moved to the origin, y flipped (the path's
// y grows downward).
float pathX(const Target& target, const FT_Vector* point) {
  return static_cast<float>(target.originX + point->x);
}
float pathY(const Target& target, const FT_Vector* point) {
  return static_cast<float>(target.originY - point->y);
}

int moveTo(const FT_Vector* to, void* user) {
  const Target& t = *static_cast<const Target*>(user);
  t.path->moveTo(pathX(t, to), pathY(t, to));
  return 0;
}

int lineTo(const FT_Vector* to, void* user) {
  const Target& t = *static_cast<const Target*>(user);
  t.path->lineTo(pathX(t, to), pathY(t, to));
  return 0;
}

int conicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
  const Target& t = *static_cast<const Target*>(user);
  t.path->quadTo(pathX(t, control), pathY(t, control), pathX(t, to), pathY(t, to));
  return 0;
}

int cubicTo(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* user) {
  const Target& t = *static_cast<const Target*>(user);
  t.path->cubicTo(pathX(t, control1), pathY(t, control1), pathX(t, control2), pathY(t, control2),
                  pathX(t, to), pathY(t, to));
  return 0;
}

const FT_Outline_Funcs kOutlineFuncs = {moveTo, lineTo, conicTo, cubicTo, 0, 0};

// Loads `glyph` at 2048 units per em and draws it from the origin. On
// success x moves on by the advance (after the side-bearing correction when
// asked) and 0 is returned.
int drawGlyph(FT_Face face, FT_UInt glyph, bool bearingCorrection, float& x, Target& target) {
  FT_Set_Char_Size(face, 0, kCharHeight, kResolution, kResolution);
  if (FT_Load_Glyph(face, glyph, FT_LOAD_DEFAULT) != 0) return -1;
  const FT_GlyphSlot slot = face->glyph;
  if (bearingCorrection) {
    // Moves only the returned pen, and before the outline is drawn: it
    // stays when drawing fails. The outline is drawn from the origin.
    float bearing = static_cast<float>(slot->metrics.horiBearingX);
    x += slot->metrics.width > slot->metrics.horiAdvance ? -bearing : bearing;
  }
  if (FT_Outline_Decompose(&slot->outline, &kOutlineFuncs, &target) != 0) {
    target.path->reset();
    return -1;
  }
  x += static_cast<float>(slot->metrics.horiAdvance);
  return 0;
}

}  // namespace

int FontManager::OutlineToPath(const FontInfo* info, unsigned ch, float& x, float& y,
                               qro_graphics::Path* path) {
  return DrawOutline(info, ch, false, x, y, path);
}

int FontManager::GlyphOutlineToPath(const FontInfo* info, unsigned glyphIndex, float& x, float& y,
                                    qro_graphics::Path* path) {
  return DrawOutline(info, glyphIndex, true, x, y, path);
}

int FontManager::DrawOutline(const FontInfo* info, unsigned code, bool isGlyphIndex, float& x,
                             float& y, qro_graphics::Path* path) {
  Target target{path, truncateToInt(x), truncateToInt(y)};
  if (info == nullptr || path == nullptr) return -1;
  std::lock_guard<std::mutex> lock(faceMutex_);
  FT_Face face = FontFace(*info);
  if (face == nullptr) return -1;
  // A glyph index gets the side-bearing correction, a character does not.
  const FT_UInt glyph = isGlyphIndex ? code : FT_Get_Char_Index(face, code);
  return drawGlyph(face, glyph, isGlyphIndex, x, target);
}

}  // namespace qro_common
