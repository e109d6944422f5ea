#include "base/MathUtil.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace {

using qro_base::MathUtil;

TEST(MathUtil, ConstantsPiIsTheSinglePrecisionValueButDegreesUseFullPrecision) {
  EXPECT_EQ(MathUtil::s_PI, static_cast<double>(3.141592f));
  EXPECT_DOUBLE_EQ(MathUtil::s_DegreeToRadian, 3.141592653589793 / 180.0);
  EXPECT_DOUBLE_EQ(MathUtil::s_RadianToDegree, 180.0 / 3.141592653589793);
}

TEST(MathUtil, RoundingHalfAwayFromZeroAndSaturating) {
  const double inf = std::numeric_limits<double>::infinity();
  const struct {
    double in;
    int round, ceil, floor;
  } cases[] = {
      {2.5, 3, 3, 2},           {-2.5, -3, -2, -3},        {-0.49, 0, 0, -1},
      {1.4999, 1, 2, 1},        {-3.0, -3, -3, -3},        {1e10, INT_MAX, INT_MAX, INT_MAX},
      {-inf, INT_MIN, INT_MIN, INT_MIN},                   {2147483646.6, INT_MAX, INT_MAX, 2147483646},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MathUtil::Round(c.in), c.round) << c.in;
    EXPECT_EQ(MathUtil::Ceil(c.in), c.ceil) << c.in;
    EXPECT_EQ(MathUtil::Floor(c.in), c.floor) << c.in;
  }
  EXPECT_EQ(MathUtil::Round(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(MathUtil, MulDivComputesInSinglePrecision) {
  EXPECT_EQ(MathUtil::MulDiv(1000, 2048, 1000), 2048.0f);
  // 1e40 does not fit a float, so the product already overflows.
  EXPECT_TRUE(std::isinf(MathUtil::MulDiv(1e20f, 1e20f, 1e20f)));
  EXPECT_TRUE(std::isnan(MathUtil::MulDiv(0, 1, 0)));
}

TEST(MathUtil, ArcTanQuadrantsKeepTheirAsymmetry) {
  const float cases[][3] = {{0, 0, 90},   {0, -5, 270},  {-3, 0, 180}, {1, 1, 45},
                            {-1, 1, 135}, {-1, -1, 225}, {1, -1, -45}};
  for (const auto& c : cases) EXPECT_FLOAT_EQ(MathUtil::ArcTan(c[0], c[1]), c[2]) << c[0] << " " << c[1];
}

TEST(MathUtil, NormalizeDegree) {
  const float cases[][2] = {{359.5f, 359.5f}, {360, 0},     {-360, 360}, {-720, 360},
                            {-0.5f, 359.5f},  {725.25f, 5.25f}, {-390, 330}, {1e20f, 272}};
  for (const auto& c : cases) {
    float degree = c[0];
    MathUtil::NormalizeDegree(degree);
    EXPECT_EQ(degree, c[1]) << c[0];
    EXPECT_EQ(MathUtil::GetNormalizedDegree(c[0]), c[1]) << c[0];
  }
  float inf = std::numeric_limits<float>::infinity();
  MathUtil::NormalizeDegree(inf);
  EXPECT_TRUE(std::isinf(inf));
}

}  // namespace
