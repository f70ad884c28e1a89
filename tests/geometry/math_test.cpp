#include <framework_utility/geometry/math.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <set>

namespace FrameworkUtility {
namespace {

using testing::Numbers;

constexpr double pi = std::numbers::pi;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();
constexpr std::int64_t lowestInteger = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highestInteger = std::numeric_limits<std::int64_t>::max();

double stepwise(double value, double min, double max) {
  while (value < min) value += max - min;
  while (value > max) value -= max - min;
  return value;
}

TEST(MathTest, ConvertsAngles) {
  EXPECT_EQ(Math::degreesToRadians(180), pi);
  EXPECT_EQ(Math::degreesToRadians(37), 37 * pi / 180);  // another order differs in the last bit
  EXPECT_EQ(Math::radiansToDegrees(pi), 180);
  EXPECT_EQ(Math::radiansToDegrees(1), 57.29577951308232);
}

TEST(MathTest, NormalizesDegrees) {
  for (const double degrees : {720.0, 360.0, -360.0, 359.995, -0.005, -1e-20, -0.0, -720.0}) {
    EXPECT_EQ(Math::normalizeDegreeAngle(degrees), 0) << degrees;
    EXPECT_FALSE(std::signbit(Math::normalizeDegreeAngle(degrees))) << degrees;
  }
  EXPECT_EQ(Math::normalizeDegreeAngle(359.98), 359.98);
  EXPECT_EQ(Math::normalizeDegreeAngle(0.005), 0.005);
  EXPECT_EQ(Math::normalizeDegreeAngle(-1e20), 80);
}

TEST(MathTest, NormalizesRadiansWithTheBitsOfTheStepsAsLongAsTheseEnd) {
  for (const double radians : {2 * pi, -2 * pi, -0.0}) {
    EXPECT_EQ(Math::normalizeRadianAngle(radians), 0) << radians;
    EXPECT_FALSE(std::signbit(Math::normalizeRadianAngle(radians))) << radians;
  }
  for (const double radians : {-pi, 1e-20, pi}) {
    EXPECT_EQ(Math::normalizeRadianAngle(radians), radians);
  }
  EXPECT_EQ(Math::normalizeRadianAngle(3 * pi), pi);
  EXPECT_EQ(Math::normalizeRadianAngle(-3 * pi), -pi);

  Numbers numbers;
  for (int i = 0; i < 1000; ++i) {
    const double near = numbers.between(-20'000, 20'000);
    EXPECT_EQ(Math::normalizeRadianAngle(near), stepwise(near, -pi, pi)) << near;
    const double far = std::pow(10, numbers.between(6, 308)) * (i % 2 ? 1 : -1);
    EXPECT_EQ(Math::normalizeRadianAngle(far), std::remainder(far, 2 * pi)) << far;
  }
}

TEST(MathTest, MovesValuesByWholePeriods) {
  for (const auto& [value, normalized] :
       {std::pair{10.0, 10.0}, {20, 20}, {20.5, 10.5}, {30, 20}, {9, 19}, {0, 10}, {-10, 10}}) {
    EXPECT_EQ(Math::normalizeValue(value, 10, 20), normalized) << value;
  }
  // Far beyond what steps reach.
  EXPECT_EQ(Math::normalizeValue(1e15 + 3, 10, 20), 13);
  EXPECT_EQ(Math::normalizeValue(-1e15 - 3, 10, 20), 17);
}

TEST(MathTest, NormalizingEndsForEveryInput) {
  constexpr double two53 = 9007199254740992;  // from here on a step of 1 moves nothing
  const double edges[] = {0,         1,       -1,        1e-320, -1e-320, 0.1,
                          two53 - 1, two53,   two53 + 4, -two53, 1e17,    1e300,
                          -1e300,    largest, -largest,  pi,     -pi};
  for (const double value : edges) {
    for (const double min : edges) {
      for (const double max : edges) {
        SCOPED_TRACE(::testing::Message() << value << " in " << min << " to " << max);
        const double moved = Math::normalizeValue(value, min, max);
        if (min < max) {
          EXPECT_TRUE(min <= moved && moved <= max) << moved;
        } else {
          EXPECT_EQ(moved, value);
        }
      }
    }
  }
  for (const double value : {nan, infinity, -infinity}) {
    EXPECT_TRUE(std::isnan(Math::normalizeDegreeAngle(value)));
    EXPECT_TRUE(std::isnan(Math::normalizeRadianAngle(value)));
    EXPECT_TRUE(std::isnan(Math::normalizeValue(value, 0, 1)));
    EXPECT_TRUE(std::isnan(Math::normalizeValue(2, value, 1)));
    EXPECT_TRUE(std::isnan(Math::normalizeValue(-2, -1, value)));
  }
  EXPECT_EQ(Math::normalizeValue(0, 0, infinity), 0);
  EXPECT_EQ(Math::normalizeValue(0, -infinity, 0), 0);
}

TEST(MathTest, LerpGoesOnBeyondTheRange) {
  EXPECT_EQ(Math::lerp(15, 10, 20, 100, 0), 50);
  EXPECT_EQ(Math::lerp(30, 10, 20, 100, 0), -100);
  EXPECT_TRUE(std::isinf(Math::lerp(1, 0, 0, 0, 1)));
}

TEST(MathTest, AnglesOfLines) {
  EXPECT_EQ(Math::angleRadiansOfLineMadeOfPointA({1, 1}, {1, 3}), pi / 2);
  EXPECT_EQ(Math::angleDegreesOfLineMadeOfPointA({1, 1}, {0, 1}), 180);
  // Measured from the y axis, so that a quarter turn clockwise on the screen counts backwards.
  EXPECT_EQ(Math::angleBetweenPointA({1, 0}, {0, 1}, {0, 0}), -pi / 2);
  EXPECT_EQ(Math::angleBetweenPointA({0, 1}, {1, 0}, {0, 0}), pi / 2);
  EXPECT_EQ(Math::angleBetweenPointA({5, 7}, {5, 7}, {1, 2}), 0);
}

TEST(MathTest, PointsOnALine) {
  EXPECT_EQ(Math::pointOnLineFrom({3, 4}, {3, 4}, 100), (Point{3, 4}));
  EXPECT_EQ(Math::pointOnLineFrom({0, 0}, {3, 4}, 10), (Point{6, 8}));
  EXPECT_EQ(Math::pointOnLineFrom({0, 0}, {4, 0}, -2), (Point{-2, 0}));
  EXPECT_EQ(Math::centerPointOfLineFrom({largest, 0}, {largest, 3}), (Point{largest, 1.5}));
  EXPECT_EQ(Math::distanceBetweenPoint({1, 1}, {-2, 5}), 5);
}

TEST(MathTest, IntersectsClosedSegments) {
  struct Case {
    const char* what;
    Point a, b, c, d;
    std::optional<Point> meet;
  };
  for (const auto& [what, a, b, c, d, meet] :
       {Case{"crossing", {0, 0}, {4, 4}, {0, 4}, {4, 0}, Point{2, 2}},
        Case{"shared end", {0, 0}, {1, 2}, {1, 2}, {5, 0}, Point{1, 2}},
        Case{"end on the other's middle", {0, 0}, {4, 0}, {2, 0}, {2, 9}, Point{2, 0}},
        Case{"short of it", {0, 0}, {1, 1}, {0, 4}, {4, 0}, std::nullopt},
        Case{"behind it", {1, 1}, {0, 0}, {0, 4}, {4, 0}, std::nullopt},
        Case{"parallel", {0, 0}, {4, 0}, {0, 1}, {4, 1}, std::nullopt},
        Case{"overlapping", {0, 0}, {4, 0}, {2, 0}, {9, 0}, std::nullopt},
        Case{"a point", {1, 1}, {1, 1}, {0, 0}, {2, 2}, std::nullopt},
        Case{"not a number", {nan, 0}, {4, 4}, {0, 4}, {4, 0}, std::nullopt}}) {
    EXPECT_EQ(Math::intersectionOfLineFrom(a, b, c, d), meet) << what;
    EXPECT_EQ(Math::intersectionOfLineFrom(d, c, b, a), meet) << what << ", the other way";
  }
}

TEST(MathTest, FitsInsideAndOutside) {
  const Rect bound(10, 20, 200, 100);
  struct Case {
    Size aspect;
    Rect inside, outside;  // the bound's origin is not added to what is outside
  };
  for (const auto& [aspect, inside, outside] :
       {Case{{4, 4}, Rect(60, 20, 100, 100), Rect(0, -50, 200, 200)},
        Case{{8, 2}, Rect(10, 45, 200, 50), Rect(-100, 0, 400, 100)}}) {
    EXPECT_EQ(Math::makeSizeWithAspectRatioInsideSize(aspect, bound.size), inside.size);
    EXPECT_EQ(Math::makeRectWithAspectRatioInsideRect(aspect, bound), inside);
    EXPECT_EQ(Math::makeSizeWithAspectRatioOutsideSize(aspect, bound.size), outside.size);
    EXPECT_EQ(Math::makeRectWithAspectRatioOutsideRect(aspect, bound), outside);
  }
  for (const Size& aspect : {Size{0, 5}, Size{5, 0}, Size{-1, 1}}) {
    EXPECT_EQ(Math::makeSizeWithAspectRatioOutsideSize(aspect, {100, 100}), Size{});
    EXPECT_EQ(Math::makeRectWithAspectRatioOutsideRect(aspect, Rect(1, 2, 100, 100)), Rect{});
  }
  EXPECT_EQ(Math::makeRectWithAspectRatioInsideRect({0, 5}, Rect(10, 10, 300, 200)),
            Rect(160, 10, 0, 200));
  const Rect none = Math::makeRectWithAspectRatioInsideRect({0, 0}, Rect(10, 10, 300, 200));
  EXPECT_TRUE(std::isnan(none.origin.x) && std::isnan(none.size.height));
}

TEST(MathTest, RandomNumbersReachAllOfTheRangeButItsEnd) {
  std::set<std::int64_t> seen;
  for (int i = 0; i < 1000; ++i) seen.insert(Math::randomNumberWithMinimum(-2, 3));
  EXPECT_EQ(seen, (std::set<std::int64_t>{-2, -1, 0, 1, 2}));
  EXPECT_EQ(Math::randomNumberWithMinimum(3, 4), 3);
  EXPECT_EQ(Math::randomNumberWithMinimum(lowestInteger, lowestInteger + 1), lowestInteger);
  EXPECT_LT(Math::randomNumberWithMinimum(highestInteger - 0xFFFF'FFFF, highestInteger),
            highestInteger);
}

TEST(MathTest, RandomFloatNumbersGoInHundredths) {
  std::set<double> seen;
  for (int i = 0; i < 2000; ++i) seen.insert(Math::randomFloatNumberWithMinimum(0.5, 0.55));
  EXPECT_EQ(seen, (std::set{0.5, 0.51, 0.52, 0.53, 0.54}));
  EXPECT_EQ(Math::randomFloatNumberWithMinimum(0.5, 0.51), 0.5);
  for (const auto& [min, max] : {std::pair{-1.0, 0.0}, {-5, 0.009}, {-infinity, 0}, {0, 0.0099}}) {
    EXPECT_EQ(Math::randomFloatNumberWithMinimum(min, max), 0) << min << ' ' << max;
  }
}

TEST(MathDeathTest, ImpossibleRandomRangesStop) {
  for (const std::int64_t max : {5L, 4L, 5L + 0x1'0000'0000, lowestInteger, highestInteger}) {
    EXPECT_DEATH(Math::randomNumberWithMinimum(5, max), "randomNumber") << max;
  }
  for (const double max : {0.5, 0.509, 0.4, 42949673.46, infinity, nan}) {
    EXPECT_DEATH(Math::randomFloatNumberWithMinimum(0.5, max), "randomFloatNumber") << max;
  }
  for (const double min : {0.0101, -infinity, nan}) {
    EXPECT_DEATH(Math::randomFloatNumberWithMinimum(min, 0.0199), "randomFloatNumber") << min;
  }
  EXPECT_DEATH(Math::randomFloatNumberWithMinimum(0.015, 0.005), "randomFloatNumber");
}

}  // namespace
}  // namespace FrameworkUtility
