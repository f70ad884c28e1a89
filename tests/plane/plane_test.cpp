#include <framework_utility/plane/affine_transform.h>
#include <framework_utility/plane/corner_mask.h>
#include <framework_utility/plane/edge_insets.h>
#include <framework_utility/plane/rect.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <numbers>
#include <sstream>

namespace FrameworkUtility {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(SizeTest, RoundsHalvesAwayFromZero) {
  struct Case {
    double value, rounded, ceiled, floored;
  };
  for (const Case& c :
       {Case{0.5, 1, 1, 0}, Case{-0.5, -1, -0.0, -1}, Case{2.5, 3, 3, 2}, Case{-2.5, -3, -2, -3},
        Case{0.49999999999999994, 0, 1, 0},
        Case{2251799813685249.5, 2251799813685250, 2251799813685250, 2251799813685249}}) {
    SCOPED_TRACE(c.value);
    const Size size{c.value, -c.value};
    EXPECT_EQ(size.rounded(), (Size{c.rounded, -c.rounded}));
    EXPECT_EQ(size.ceiled(), (Size{c.ceiled, -c.floored}));
    EXPECT_EQ(size.floored(), (Size{c.floored, -c.ceiled}));
  }
}

TEST(SizeTest, ArithmeticClampsNothing) {
  constexpr Size size{6, -8};
  EXPECT_EQ(size.minus(7), (Size{-1, -15}));
  EXPECT_EQ(size.multiplyBy(-2), (Size{-12, 16}));
  EXPECT_EQ(size.center(), (Point{3, -4}));
  EXPECT_EQ(size.diagonalLenght(), 5);  // not 10, on purpose
  EXPECT_EQ(size.inverted(), (Size{-8, 6}));
  EXPECT_EQ(size.rect(), Rect(0, 0, 6, -8));
  EXPECT_EQ(Size::one, (Size{1, 1}));
  constexpr double largest = std::numeric_limits<double>::max();
  EXPECT_EQ(Size::infinite, (Size{largest, largest}));
}

TEST(RectTest, NegativeSidesReadAsTheStandardisedRect) {
  constexpr Rect rect(10, 20, -4, -6), standardised(6, 14, 4, 6);
  for (const auto read : {&Rect::minX, &Rect::midX, &Rect::maxX, &Rect::width, &Rect::minY,
                          &Rect::midY, &Rect::maxY, &Rect::height}) {
    EXPECT_EQ((rect.*read)(), (standardised.*read)());
  }
}

TEST(RectTest, NearEdgesBelongToItAndFarOnesDoNot) {
  const double below1 = std::nextafter(1, 0);
  for (const Rect& rect : {Rect(-1, -2, 2, 3), Rect(1, 1, -2, -3)}) {
    for (const Point p : {Point{-1, -2}, {0.5, -2}, {-1, 0}, {below1, below1}}) {
      EXPECT_TRUE(rect.contains(p)) << p;
    }
    for (const Point p : {Point{1, 0}, {0, 1}, {-1.1, 0}, {0, -2.1}, {nan, 0}, {0, nan}}) {
      EXPECT_FALSE(rect.contains(p)) << p;
    }
  }
}

TEST(RectTest, OnlyAZeroSideIsEmpty) {
  EXPECT_TRUE(Rect(0, 0, 0, 5).isEmpty() && Rect(0, 0, 5, -0.0).isEmpty());
  EXPECT_FALSE(Rect(0, 0, -5, 5).isEmpty());
}

TEST(RectTest, RoundedKeepsTheStoredOriginAndTakesAbsoluteSides) {
  EXPECT_EQ(Rect(-2.5, 2.5, -3.5, 0.4).rounded(), Rect(-3, 3, 4, 0));
}

TEST(RectTest, SpannedByTwoPointsInAnyOrder) {
  constexpr Point topLeft{1, 2}, topRight{4, 2}, bottomRight{4, 8}, bottomLeft{1, 8};
  for (const auto& [a, b] : {std::pair{topLeft, bottomRight}, {topRight, bottomLeft}}) {
    EXPECT_EQ(Rect::rect(a, b), Rect(1, 2, 3, 6));
    EXPECT_EQ(Rect::rect(b, a), Rect(1, 2, 3, 6));
  }
}

TEST(AffineTransformTest, ScalesPairTheColumnsAsStored) {
  const AffineTransform skewed{.a = 2, .b = 0, .c = 3, .d = 1};
  EXPECT_EQ(skewed.scaleX(), std::sqrt(13));
  // A quarter turn after unequal scales: the mixed values are meant.
  const AffineTransform turned{.a = 0, .b = 2, .c = -5, .d = 0};
  EXPECT_EQ(turned.angle(), std::numbers::pi / 2);
  EXPECT_EQ(turned.scaleX(), 5);
  EXPECT_EQ(turned.scaleY(), 2);
}

TEST(PrintingTest, PlaneValuesAreWrittenAsThePlatformDoes) {
  const auto printed = [](const auto& value) {
    std::ostringstream out;
    out << std::left << std::setw(9) << std::setprecision(1) << value;
    return out.str();
  };
  EXPECT_EQ(printed(Point{-1.5, 2}), "{-1.5, 2}");
  EXPECT_EQ(printed(Point{0, nan}), "{0, nan} ");
  EXPECT_EQ(printed(Size{0.1 + 0.2, 1e300}), "{0.30000000000000004, 1e+300}");
  EXPECT_EQ(printed(Rect(0.1, 0, 30, -4)), "{{0.1, 0}, {30, -4}}");
  EXPECT_EQ(printed(EdgeInsets{1, 2, 3.25, 4}), "{1, 2, 3.25, 4}");
  EXPECT_EQ(printed(AffineTransform{.tx = -7}), "[1, 0, 0, 1, -7, 0]");
}

TEST(CornerMaskTest, MapsEveryCornerAndDropsOtherBits) {
  for (std::uint64_t bits = 0; bits < 64; ++bits) {
    EXPECT_EQ(static_cast<std::uint64_t>(rectCorner(CACornerMask{bits})), bits % 16) << bits;
  }
  EXPECT_EQ(rectCorner(CACornerMask::layerMinXMaxYCorner | CACornerMask::layerMaxXMinYCorner),
            UIRectCorner::bottomLeft | UIRectCorner::topRight);
}

}  // namespace
}  // namespace FrameworkUtility
