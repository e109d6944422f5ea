#pragma once

#include <string>

#include "common/manager/Path.h"

namespace kelfont_tool {

// A path that writes SVG path data ("M x y L x y Q ... C ... Z"). Every
// contour is closed, since glyph outlines are closed shapes.
class SvgPath : public qro_graphics::Path {
 public:
  void reset() override;
  void moveTo(float x, float y) override;
  void lineTo(float x, float y) override;
  void quadTo(float cx, float cy, float x, float y) override;
  void cubicTo(float c1x, float c1y, float c2x, float c2y, float x, float y) override;

  // The path data; empty when nothing was drawn.
  std::string Data() const;

 private:
  void Add(char command, std::initializer_list<float> values);

  std::string data_;
};

}  // namespace kelfont_tool
