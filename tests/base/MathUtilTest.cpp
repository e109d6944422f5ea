#include "base/MathUtil.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace {

using qro_base::MathUtil;

TEST(MathUtilConstants, PiIsTheSinglePrecisionValueWidened) {
  EXPECT_EQ(MathUtil::s_PI, 3.141592025756836);
  EXPECT_EQ(MathUtil::s_PI, static_cast<double>(3.141592f));
  EXPECT_NE(MathUtil::s_PI, 3.141592653589793);
}

TEST(MathUtilConstants, DegreeConversionsUseFullPrecisionPi) {
  EXPECT_EQ(MathUtil::s_DegreeToRadian, 0.017453292519943295);
  EXPECT_EQ(MathUtil::s_RadianToDegree, 57.29577951308232);
  EXPECT_DOUBLE_EQ(MathUtil::s_DegreeToRadian, 3.141592653589793 / 180.0);
  EXPECT_DOUBLE_EQ(MathUtil::s_RadianToDegree, 180.0 / 3.141592653589793);
}

TEST(MathUtilRounding, RoundGoesHalfAwayFromZero) {
  EXPECT_EQ(MathUtil::Round(2.5), 3);
  EXPECT_EQ(MathUtil::Round(-2.5), -3);
  EXPECT_EQ(MathUtil::Round(-0.5), -1);
  EXPECT_EQ(MathUtil::Round(0.49), 0);
  EXPECT_EQ(MathUtil::Round(-0.49), 0);
  EXPECT_EQ(MathUtil::Round(0.5), 1);
  EXPECT_EQ(MathUtil::Round(1.4999), 1);
  EXPECT_EQ(MathUtil::Round(-1.5), -2);
  EXPECT_EQ(MathUtil::Round(0.0), 0);
  EXPECT_EQ(MathUtil::Round(1234567.5), 1234568);
}

TEST(MathUtilRounding, CeilAndFloor) {
  EXPECT_EQ(MathUtil::Ceil(1.1), 2);
  EXPECT_EQ(MathUtil::Ceil(-1.1), -1);
  EXPECT_EQ(MathUtil::Ceil(2.0), 2);
  EXPECT_EQ(MathUtil::Floor(1.9), 1);
  EXPECT_EQ(MathUtil::Floor(-1.1), -2);
  EXPECT_EQ(MathUtil::Floor(-3.0), -3);
}

TEST(MathUtilRounding, OutOfRangeValuesSaturate) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(MathUtil::Round(1e10), INT_MAX);
  EXPECT_EQ(MathUtil::Round(-1e10), INT_MIN);
  EXPECT_EQ(MathUtil::Ceil(inf), INT_MAX);
  EXPECT_EQ(MathUtil::Floor(-inf), INT_MIN);
  EXPECT_EQ(MathUtil::Round(nan), 0);
  EXPECT_EQ(MathUtil::Round(2147483646.6), INT_MAX);
  EXPECT_EQ(MathUtil::Floor(-2147483648.5), INT_MIN);
}

TEST(MathUtilMulDiv, ComputesInSinglePrecision) {
  EXPECT_EQ(MathUtil::MulDiv(3, 4, 2), 6.0f);
  EXPECT_EQ(MathUtil::MulDiv(1000, 2048, 1000), 2048.0f);
  // 1e40 does not fit a float, so the product already overflows.
  EXPECT_TRUE(std::isinf(MathUtil::MulDiv(1e20f, 1e20f, 1e20f)));
  EXPECT_TRUE(std::isinf(MathUtil::MulDiv(1, 1, 0)));
  EXPECT_TRUE(std::isnan(MathUtil::MulDiv(0, 1, 0)));
}

TEST(MathUtilArcTan, AxesAndOrigin) {
  EXPECT_EQ(MathUtil::ArcTan(0, 0), 90.0f);
  EXPECT_EQ(MathUtil::ArcTan(0, 5), 90.0f);
  EXPECT_EQ(MathUtil::ArcTan(0, -5), 270.0f);
  EXPECT_EQ(MathUtil::ArcTan(3, 0), 0.0f);
  EXPECT_EQ(MathUtil::ArcTan(-3, 0), 180.0f);
}

TEST(MathUtilArcTan, QuadrantsKeepTheirAsymmetry) {
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(1, 1), 45.0f);
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(-1, 1), 135.0f);
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(-1, -1), 225.0f);
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(1, -1), -45.0f);
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(1, std::sqrt(3.0f)), 60.0f);
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(-std::sqrt(3.0f), -1), 210.0f);
  EXPECT_FLOAT_EQ(MathUtil::ArcTan(std::sqrt(3.0f), -1), -30.0f);
}

TEST(MathUtilNormalizeDegree, FollowsTheRangeRules) {
  const struct {
    float in;
    float out;
  } cases[] = {{0, 0},         {359.5f, 359.5f}, {360, 0},      {-360, 360},
               {-720, 360},    {-0.5f, 359.5f},  {725.25f, 5.25f}, {720, 0},
               {-30, 330},     {-390, 330},      {361, 1},      {1e20f, 272}};
  for (const auto& c : cases) {
    float degree = c.in;
    MathUtil::NormalizeDegree(degree);
    EXPECT_EQ(degree, c.out) << c.in;
    EXPECT_EQ(MathUtil::GetNormalizedDegree(c.in), c.out) << c.in;
  }
}

TEST(MathUtilNormalizeDegree, LeavesNonFiniteValuesAlone) {
  float inf = std::numeric_limits<float>::infinity();
  MathUtil::NormalizeDegree(inf);
  EXPECT_TRUE(std::isinf(inf));
  EXPECT_TRUE(std::isnan(MathUtil::GetNormalizedDegree(std::nanf(""))));
}

TEST(MathUtilNormalizeDegree, CopyLeavesTheArgument) {
  float degree = -90;
  EXPECT_EQ(MathUtil::GetNormalizedDegree(degree), 270.0f);
  EXPECT_EQ(degree, -90.0f);
}

}  // namespace
