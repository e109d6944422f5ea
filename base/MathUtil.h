#pragma once
// Rounding, degree and angle helpers.

namespace qro_base {

class MathUtil {
 public:
  // The single-precision 3.141592 widened to double, not full-precision pi;
  // results elsewhere depend on this exact value.
  static constexpr double s_PI = 3.141592025756836;
  static constexpr double s_DegreeToRadian = 0.017453292519943295;
  static constexpr double s_RadianToDegree = 57.29577951308232;

  // Half away from zero: 2.5 gives 3, -2.5 gives -3. Like Ceil and Floor,
  // values beyond the int range saturate and NaN gives 0.
  static int Round(double x);
  static int Ceil(double x);
  static int Floor(double x);

  // a * b / c in single precision; no check for c == 0.
  static float MulDiv(float a, float b, float c);

  // Direction of (dx, dy) in degrees: 0 along +x, 90 along +y (also for
  // (0, 0)), 180 along -x, 270 along -y. The second and third quadrants
  // give 90..270, the first 0..90, the fourth -90..0 (negative on purpose;
  // callers normalize when they need 0..360).
  static float ArcTan(float dx, float dy);

  // Brings a degree into range in place: [0, 360) is kept; 360 gives 0,
  // larger values their remainder, negative values remainder + 360, so
  // -360 and -720 give 360. Infinities and NaN are left as they are.
  static void NormalizeDegree(float& degree);
  static float GetNormalizedDegree(float degree);
};

}  // namespace qro_base
