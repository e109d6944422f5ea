#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "base/MathUtil.h"

namespace {

using qro_base::MathUtil;

TEST(MathUtil, ConstantsPiIsTheSinglePrecisionValueButDegreesUseFullPrecision) {
  EXPECT_EQ(MathUtil::s_PI, static_cast<double>(3.141592f));
  EXPECT_DOUBLE_EQ(MathUtil::s_DegreeToRadian, 3.141592653589793 / 180.0);
  EXPECT_DOUBLE_EQ(MathUtil::s_RadianToDegree, 180.0 / 3.141592653589793);
}

TEST(MathUtil, MulDivComputesInSinglePrecision) {
  EXPECT_EQ(MathUtil::MulDiv(1000, 2048, 1000), 2048.0f);
  // 1e40 does not fit a float, so the product already overflows.
  EXPECT_TRUE(std::isinf(MathUtil::MulDiv(1e20f, 1e20f, 1e20f)));
  EXPECT_TRUE(std::isnan(MathUtil::MulDiv(0, 1, 0)));
}

}  // namespace
