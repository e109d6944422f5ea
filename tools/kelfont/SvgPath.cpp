#include "tools/kelfont/SvgPath.h"

#include <cstdio>

namespace kelfont_tool {

void SvgPath::reset() { data_.clear(); }

void SvgPath::moveTo(float x, float y) {
  if (!data_.empty()) data_ += "Z";
  Add('M', {x, y});
}

void SvgPath::lineTo(float x, float y) { Add('L', {x, y}); }

void SvgPath::quadTo(float cx, float cy, float x, float y) { Add('Q', {cx, cy, x, y}); }

void SvgPath::cubicTo(float c1x, float c1y, float c2x, float c2y, float x, float y) {
  Add('C', {c1x, c1y, c2x, c2y, x, y});
}

std::string SvgPath::Data() const { return data_.empty() ? data_ : data_ + "Z"; }

void SvgPath::Add(char command, std::initializer_list<float> values) {
  data_ += command;
  bool first = true;
  for (float value : values) {
    char number[32];
    std::snprintf(number, sizeof number, "%.7g", static_cast<double>(value));
    if (!first) data_ += ' ';
    data_ += number;
    first = false;
  }
}

}  // namespace kelfont_tool
