#include "base/MathUtil.h"

#include <climits>
#include <cmath>
#include <cstdint>

namespace qro_base {
namespace {

// Truncates toward zero like a cast, but saturates instead of overflowing.
int toInt(double x) {
  if (std::isnan(x)) return 0;
  if (x >= 2147483648.0) return INT_MAX;
  if (x <= -2147483649.0) return INT_MIN;
  return static_cast<int>(x);
}

}  // namespace

int MathUtil::Round(double x) { return x >= 0 ? toInt(x + 0.5) : toInt(x - 0.5); }

int MathUtil::Ceil(double x) { return toInt(std::ceil(x)); }

int MathUtil::Floor(double x) { return toInt(std::floor(x)); }

float MathUtil::MulDiv(float a, float b, float c) { return a * b / c; }

float MathUtil::ArcTan(float dx, float dy) {
  if (dx == 0) return dy >= 0 ? 90.0f : 270.0f;
  if (dy == 0) return dx > 0 ? 0.0f : 180.0f;
  double a = std::atan(static_cast<double>(std::fabs(dy / dx))) * s_RadianToDegree;
  if (dx < 0) return static_cast<float>(dy > 0 ? 180.0 - a : 180.0 + a);
  return static_cast<float>(dy > 0 ? a : -a);
}

void MathUtil::NormalizeDegree(float& degree) {
  if (degree >= 0 && degree < 360) return;
  if (!std::isfinite(degree)) return;
  float rest;
  // 2^63: below it the truncated value fits a 64-bit integer; at and above
  // it every float is a whole number and fmod gives the remainder exactly.
  if (std::fabs(degree) < 9223372036854775808.0f) {
    std::int64_t whole = static_cast<std::int64_t>(degree);
    rest = static_cast<float>(whole % 360) + (degree - static_cast<float>(whole));
  } else {
    rest = std::fmod(degree, 360.0f);
  }
  if (degree < 0) {
    degree = rest + 360;
  } else if (degree > 360) {
    degree = rest;
  } else {
    degree = 0;
  }
}

float MathUtil::GetNormalizedDegree(float degree) {
  NormalizeDegree(degree);
  return degree;
}

}  // namespace qro_base
