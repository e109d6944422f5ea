#pragma once

namespace qro_graphics {

// A drawing path that the host implements; glyph outlines are drawn into it
// (FontManager::OutlineToPath). Coordinates grow to the right and down.
class Path {
 public:
  virtual ~Path() = default;

  // Discards everything built so far.
  virtual void reset() = 0;
  // Starts a new contour at (x, y).
  virtual void moveTo(float x, float y) = 0;
  // A straight segment to (x, y).
  virtual void lineTo(float x, float y) = 0;
  // A quadratic segment with control point (cx, cy) to (x, y).
  virtual void quadTo(float cx, float cy, float x, float y) = 0;
  // A cubic segment with control points (c1x, c1y), (c2x, c2y) to (x, y).
  virtual void cubicTo(float c1x, float c1y, float c2x, float c2y, float x, float y) = 0;
};

// Creates the host's paths. The host installs its factory in `instance`;
// the library itself never reads it.
class PathFactory {
 public:
  virtual ~PathFactory() = default;

  // A new, empty path owned by the caller.
  virtual Path* createPath() = 0;

  static PathFactory* instance;
};

}  // namespace qro_graphics
