#include <framework_utility/geometry/collage_shape_side.h>
#include <framework_utility/geometry/math.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <type_traits>

namespace FrameworkUtility {

namespace {

using testing::Numbers;

constexpr double pi = std::numbers::pi;

static_assert(!std::is_default_constructible_v<KvCollageShapeSide>);

KvCollageShapeSide sideWithBorder(Point p1, Point p2, Point average, double thickness) {
  KvCollageShapeSide side(p1, p2);
  side.averagePoint = average;
  side.calculateBorderWithThickness(thickness);
  return side;
}

/// How far `point` is from the line through both others, positive on its right on the screen.
double signedDistance(Point p1, Point p2, Point point) {
  return ((p2.x - p1.x) * (point.y - p1.y) - (p2.y - p1.y) * (point.x - p1.x)) /
         Math::distanceBetweenPoint(p1, p2);
}

/// Of a horizontal side, 5 wide.
std::string borderTowards(Point average) {
  return sideWithBorder({0, 0}, {100, 0}, average, 5).parallele->description();
}

TEST(KvCollageShapeSideTest, BordersOfHorizontalSides) {
  EXPECT_EQ(borderTowards({50, 50}), "KvCollageSegment: a -0.0, b 5.0, c 0.0, isVertical 0.");
  // With the average point on the side the line moves up, whatever is inside.
  EXPECT_EQ(borderTowards({50, 0}), "KvCollageSegment: a -0.0, b -5.0, c 0.0, isVertical 0.");
}

TEST(KvCollageShapeSideTest, TheBorderKeepsItsDistanceOnTheInnerSide) {
  Numbers numbers;
  for (int i = 0; i < 2000; ++i) {
    const Point p1 = numbers.point(), p2 = numbers.pointBeside(p1), average = numbers.point();
    const double thickness = numbers.between(-50, 50);
    const double inward = signedDistance(p1, p2, average);
    const KvCollageSegment border = *sideWithBorder(p1, p2, average, thickness).parallele;

    ASSERT_FALSE(border.intersectionPointWithSegment(KvCollageSegment(p1, p2)));
    // Where it crosses a line through the average point that is not along it.
    const Point ahead{average.x + (p1.y - p2.y), average.y + (p2.x - p1.x)};
    const Point onBorder =
        border.intersectionPointWithSegment(KvCollageSegment(average, ahead)).value();
    EXPECT_NEAR(signedDistance(p1, p2, onBorder), std::copysign(1, inward) * thickness,
                1e-8 * (1 + 100 / std::abs(inward)));
  }
}

TEST(KvCollageShapeSideTest, TheBisectorHalvesTheCorner) {
  Numbers numbers;
  for (int i = 0; i < 2000; ++i) {
    const Point corner = numbers.point();
    const double direction = numbers.between(-pi, pi);
    const double angle = numbers.between(0.02, 3.1);
    const auto away = [&](double turn, double distance) {
      return Point{corner.x + distance * std::cos(turn), corner.y + distance * std::sin(turn)};
    };
    const Point next = away(direction, numbers.between(1, 500));
    const Point before = away(direction + angle, numbers.between(1, 500));
    KvCollageShapeSide side(corner, next);
    side.calculateBissectrice(KvCollageShapeSide(before, corner));

    EXPECT_NEAR(side.bissectriceAngle, angle / 2, 1e-8);
    EXPECT_EQ(side.bissectrice->p1, corner);
    const Point inside = side.bissectrice->p2;
    EXPECT_NEAR(
        Math::distanceBetweenPoint(inside, away(direction + angle / 2, 0.5 * std::cos(angle / 2))),
        0, 1e-9);
  }
}

TEST(KvCollageShapeSideTest, StraightCornersInEveryDirectionHaveAHalfAngle) {
  Numbers numbers;
  for (int i = 0; i < 5000; ++i) {
    const Point before = numbers.point(), next = numbers.point();
    const Point corner = Math::centerPointOfLineFrom(before, next);
    KvCollageShapeSide side(corner, next);
    side.calculateBissectrice(KvCollageShapeSide(before, corner));
    ASSERT_NEAR(side.bissectriceAngle, pi / 2, 1e-5);
  }
  // Sides that share no corner have no angle.
  KvCollageShapeSide side({0, 0}, {10, 0});
  side.calculateBissectrice(KvCollageShapeSide({-12, 0}, {-0.001, 0}));
  EXPECT_TRUE(std::isnan(side.bissectriceAngle));
}

TEST(KvCollageShapeSideTest, WithoutALineNothingHappens) {
  const KvCollageShapeSide previous({0, 10}, {0, 0});
  KvCollageShapeSide side = sideWithBorder({0, 0}, {10, 0}, {5, 5}, 1);
  side.calculateBissectrice(previous);
  EXPECT_NEAR(side.bissectriceAngle, pi / 4, 1e-15);
  const KvCollageShapeSide whole = side;

  side.segment.reset();
  side.averagePoint = {7, 7};
  side.calculateBorderWithThickness(3);
  side.calculateBissectrice(KvCollageShapeSide({10, 10}, {0, 0}));
  EXPECT_EQ(side.parallele->description(), whole.parallele->description());
  EXPECT_EQ(side.bissectrice->description(), whole.bissectrice->description());

  KvCollageShapeSide another({0, 0}, {10, 0});
  another.calculateBissectrice(side);
  EXPECT_FALSE(another.bissectrice);
  EXPECT_EQ(another.bissectriceAngle, 0);
}

TEST(KvCollageShapeSideTest, TheBisectorStartsAtTheSidesOwnStart) {
  auto fromCoefficients = KvCollageShapeSide::withVertical(true, 0, 0, 30);
  fromCoefficients.calculateBissectrice(KvCollageShapeSide({10, 0}, {0, 0}));
  EXPECT_EQ(fromCoefficients.bissectrice->p1, Point{});

  // Another line moves the chord, not the start.
  KvCollageShapeSide side({0, 0}, {10, 0});
  side.segment = KvCollageSegment({0, -1e-20}, {0, 10});
  side.calculateBissectrice(KvCollageShapeSide({-10, 0}, {0, 0}));
  EXPECT_EQ(side.bissectrice->p1, Point{});
  EXPECT_NEAR(side.bissectriceAngle, pi / 4, 1e-15);
}

}  // namespace
}  // namespace FrameworkUtility
