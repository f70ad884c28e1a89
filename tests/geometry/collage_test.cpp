#include <framework_utility/geometry/collage_shape_side.h>
#include <framework_utility/geometry/math.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <sstream>
#include <string>
#include <type_traits>

namespace FrameworkUtility {
namespace {

using testing::Numbers;

constexpr double pi = std::numbers::pi;
constexpr double epsilon = std::numeric_limits<double>::epsilon();

static_assert(!std::is_default_constructible_v<KvCollageSegment>);
static_assert(!std::is_default_constructible_v<KvCollageShapeSide>);

KvCollageSegment verticalAt(double x) { return KvCollageSegment::withVertical(true, 0, 0, x); }

KvCollageSegment sloped(double a, double b) {
  return KvCollageSegment::withVertical(false, a, b, 0);
}

/// The y of a line that is not vertical.
double yAt(const KvCollageSegment& line, double x) {
  return line.intersectionPointWithSegment(verticalAt(x)).value().y;
}

double slope(const KvCollageSegment& line) { return yAt(line, 1) - yAt(line, 0); }

TEST(KvCollageSegmentTest, IsVerticalBelowATenMillionth) {
  for (const auto& [x, isVertical] :
       {std::pair{1e-7, false}, {std::nextafter(1e-7, 0), true}, {-2e-7, false}, {-5e-8, true}}) {
    EXPECT_EQ(KvCollageSegment({x, 0}, {0, 50}).isVertical, isVertical) << x;
  }
  const KvCollageSegment point({3, 4}, {3, 4});
  EXPECT_TRUE(point.isVertical);
  EXPECT_EQ(point.length, 0);
  EXPECT_EQ(point.intersectionPointWithSegment(sloped(2, 1)), (Point{3, 7}));
}

TEST(KvCollageSegmentTest, ParallelLinesDoNotMeet) {
  EXPECT_FALSE(verticalAt(3).intersectionPointWithSegment(verticalAt(4)));
  EXPECT_FALSE(verticalAt(3).intersectionPointWithSegment(verticalAt(3)));
  EXPECT_FALSE(sloped(2, 1).intersectionPointWithSegment(sloped(2, 1)));
  // A difference of exactly the machine epsilon is parallel still.
  EXPECT_FALSE(sloped(1, 0).intersectionPointWithSegment(sloped(1 + epsilon, 1)));
  EXPECT_TRUE(sloped(1, 0).intersectionPointWithSegment(sloped(1 + 2 * epsilon, 1)));
}

TEST(KvCollageSegmentTest, ParallelAndPerpendicularLinesGoThroughThePoint) {
  Numbers numbers;
  for (int i = 0; i < 1000; ++i) {
    const KvCollageSegment line(numbers.point(), numbers.point());
    const Point through = numbers.point();
    const double tolerance = 1e-9 * (1 + std::abs(slope(line)) + 1 / std::abs(slope(line)));
    const KvCollageSegment parallel = line.parallele(through);
    const KvCollageSegment perpendicular = line.perpandiculaire(through);
    EXPECT_FALSE(line.intersectionPointWithSegment(parallel));
    EXPECT_NEAR(slope(line) * slope(perpendicular), -1, tolerance);
    for (const KvCollageSegment& made : {parallel, perpendicular}) {
      EXPECT_NEAR(yAt(made, through.x), through.y, tolerance);
      EXPECT_EQ(made.length, 0);
    }
  }
  const std::pair<KvCollageSegment, std::string> cases[] = {
      {verticalAt(7).parallele({3, 4}), "a 0.0, b 0.0, c 3.0, isVertical 1"},
      {KvCollageSegment::withVertical(false, 2, 1, 7).parallele({0, 9}),
       "a 2.0, b 9.0, c 7.0, isVertical 0"},
      {verticalAt(7).perpandiculaire({3, 4}), "a 0.0, b 4.0, c 0.0, isVertical 0"},
      {sloped(0, 1).perpandiculaire({3, 4}), "a 0.0, b 0.0, c 3.0, isVertical 1"},
      {sloped(epsilon / 2, 1).perpandiculaire({3, 4}), "a 0.0, b 0.0, c 3.0, isVertical 1"}};
  for (const auto& [line, text] : cases) {
    EXPECT_EQ(line.description(), "KvCollageSegment: " + text + '.');
  }
  // A slope of exactly the machine epsilon is not horizontal.
  EXPECT_FALSE(sloped(epsilon, 1).perpandiculaire({3, 4}).isVertical);
}

TEST(KvCollageSegmentTest, ContainsOnlyWhatIsComputedOnTheLine) {
  EXPECT_TRUE(sloped(0, 0.5).containsPoint({9, std::nextafter(0.5, 1)}));  // half an epsilon off
  EXPECT_FALSE(sloped(0, 1).containsPoint({9, std::nextafter(1, 2)}));     // a whole one
  EXPECT_TRUE(verticalAt(0.5).containsPoint({std::nextafter(0.5, 0), 9}));
  EXPECT_FALSE(verticalAt(1).containsPoint({std::nextafter(1, 2), 9}));
  EXPECT_TRUE(KvCollageSegment({0, 0}, {3, 1}).containsPoint({7, 1.0 / 3 * 7}));
}

TEST(KvCollageSegmentTest, LocatesFromEitherEnd) {
  Numbers numbers;
  for (int i = 0; i < 1000; ++i) {
    const Point p1 = numbers.point(), p2 = numbers.pointBeside(p1);
    const KvCollageSegment segment(p1, p2);
    const double distance = numbers.between(-3000, 3000);
    const Point expected = Math::pointOnLineFrom(p1, p2, distance);
    for (const Point at : {segment.locatePointOnStart(distance),
                           segment.locatePointOnEndWithD(segment.length - distance)}) {
      EXPECT_NEAR(Math::distanceBetweenPoint(at, expected), 0, 1e-8);
    }
  }

  // A vertical line of length 0 goes up from its start, and down to its end.
  const KvCollageSegment point({1, 1}, {1, 1});
  EXPECT_EQ(point.locatePointOnStart(5), (Point{1, -4}));
  EXPECT_EQ(point.locatePointOnEndWithD(5), (Point{1, 6}));
  // Made from coefficients, its points are not even on it.
  EXPECT_EQ(verticalAt(7).locatePointOnStart(5), (Point{0, -5}));
  EXPECT_TRUE(std::isnan(sloped(1, 1).locatePointOnStart(5).x));
}

TEST(KvCollageSegmentTest, SettingAPointRecomputesNothing) {
  KvCollageSegment segment({0, 0}, {4, 0});
  segment.p2 = {4, 8};
  EXPECT_EQ(segment.length, 4);
  EXPECT_EQ(segment.locatePointOnStart(2), (Point{2, 4}));  // new points, old length
  EXPECT_EQ(yAt(segment, 100), 0);
  segment.p1 = {4, 0};
  EXPECT_FALSE(segment.isVertical);
}

TEST(KvCollageSegmentTest, DescribesPointsCoefficientsOrBoth) {
  const std::string vertical =
      "KvCollageSegment: p1 [0.0, 0.0], p2 [0.0, 5.0], isVertical 1, Length 5.0.";
  const std::pair<KvCollageSegment, std::string> cases[] = {
      {KvCollageSegment({0, 0}, {0, 5}), vertical},
      {KvCollageSegment({4, 0}, {4, 0}),
       "KvCollageSegment: p1 [4.0, 0.0], p2 [4.0, 0.0], a 0.0, b 0.0, c 4.0, isVertical 1, "
       "Length 0.0."},
      {verticalAt(-7.25), "KvCollageSegment: a 0.0, b 0.0, c -7.2, isVertical 1."},
      // From left to right a horizontal line's slope is 0 over a negative difference.
      {KvCollageSegment({0, 2}, {1, 2}),
       "KvCollageSegment: p1 [0.0, 2.0], p2 [1.0, 2.0], a -0.0, b 2.0, c 0.0, isVertical 0, "
       "Length 1.0."},
      {sloped(0, 0), "KvCollageSegment: p1 [0.0, 0.0], p2 [0.0, 0.0], isVertical 0, Length 0.0."},
      {sloped(epsilon, 0),
       "KvCollageSegment: p1 [0.0, 0.0], p2 [0.0, 0.0], isVertical 0, Length 0.0."},
      {sloped(2 * epsilon, 0), "KvCollageSegment: a 0.0, b 0.0, c 0.0, isVertical 0."}};
  for (const auto& [segment, text] : cases) EXPECT_EQ(segment.description(), text);

  std::ostringstream out;
  out << KvCollageSegment({0, 0}, {0, 5});
  EXPECT_EQ(out.str(), vertical);
}

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
