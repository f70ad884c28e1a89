#include <framework_utility/geometry/rectangle.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <sstream>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

using testing::Numbers;

static_assert(!std::is_default_constructible_v<KvRectangle>);
// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<KvRectangle>().points())>);

using Corners = std::array<Point, 4>;

TEST(KvRectangleTest, TheCornersGoClockwiseFromTheTopLeft) {
  EXPECT_EQ(KvRectangle(Size{30, 40}).points(), (Corners{{{0, 0}, {30, 0}, {30, 40}, {0, 40}}}));
  const Rect rect(10, 20, 30, 40);
  EXPECT_EQ(KvRectangle(rect).points(), (Corners{{{10, 20}, {40, 20}, {40, 60}, {10, 60}}}));
  EXPECT_EQ(KvRectangle(rect).bounds(), rect);
  EXPECT_EQ(KvRectangle(Rect(10, 20, -3, -4)).p3(), (Point{7, 16}));  // sides as stored

  const KvRectangle turned({100, 50}, std::numbers::pi / 2);
  const Corners expected{{{75, -25}, {75, 75}, {25, 75}, {25, -25}}};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(turned.points()[i].x, expected[i].x, 1e-13);
    EXPECT_NEAR(turned.points()[i].y, expected[i].y, 1e-13);
    EXPECT_EQ(turned.segments()[i].p1, turned.points()[i]);
    EXPECT_EQ(turned.segments()[i].p2, turned.points()[(i + 1) % 4]);
  }
  EXPECT_NEAR(turned.size().width, 100, 1e-13);
  EXPECT_NEAR(turned.bounds().width(), 50, 1e-13);
}

TEST(KvRectangleTest, MovesAndDividesInPlace) {
  KvRectangle shape(Rect(10, 20, 30, 40));
  KvRectangle& same = shape.translateBy({-10, 5}).divideBy({10, 5});
  EXPECT_EQ(&same, &shape);
  EXPECT_EQ(shape.points(), (Corners{{{0, 5}, {3, 5}, {3, 13}, {0, 13}}}));
}

TEST(KvRectangleTest, DescribesItsCorners) {
  std::ostringstream out;
  out << KvRectangle({0, -0.0}, {10, 0.1}, {1e20, 1e-5}, {1.0 / 3, 1e15});
  EXPECT_EQ(out.str(),
            "KvRectangle : p1 0.0, -0.0, p2 10.0, 0.1, p3 1e+20, 1e-05, "
            "p4 0.3333333333333333, 1000000000000000.0");
}

TEST(KvRectangleTest, TheNearBordersAreInsideTheFarOnesAreNot) {
  const KvRectangle square(Size{100, 100});
  for (const Point p : {Point{50, 50}, {0, 0}, {30, 0}, {0, 30}}) {
    EXPECT_TRUE(square.isPointInside(p)) << p;
  }
  for (const Point p : {Point{150, 50}, {100, 0}, {100, 100}, {0, 100}, {30, 100}, {100, 30}}) {
    EXPECT_FALSE(square.isPointInside(p)) << p;
  }
}

// What comes of the fixed point that the probe goes to, and of counting one crossing exactly.
TEST(KvRectangleTest, OddlyInsideOnPurpose) {
  const KvRectangle shape(Rect(10, 0, 10, 10));
  EXPECT_TRUE(shape.isPointInside({0, 0}));  // grazes p4
  EXPECT_TRUE(shape.isPointInside({5, 5}));
  EXPECT_TRUE(KvRectangle(Rect(0, 10, 10, 10)).isPointInside({5, 5}));  // grazes p2

  // Inside of a shape that is not convex, but the probe leaves it twice.
  EXPECT_FALSE(KvRectangle({10, -10}, {-10, 110}, {110, 90}, {20, 80}).isPointInside({10, 10}));

  // At the far point's x the probe is vertical. Beyond it the probe leads away from the far point:
  // to the right still, but up here, where only crossings below count on vertical sides.
  const KvRectangle around(Rect(99'000, 0, 2000, 2000));
  EXPECT_FALSE(around.isPointInside({100'000, 1000}));
  EXPECT_TRUE(around.isPointInside({99'999, 1000}));
  const KvRectangle beyond(Rect(200'000, 0, 10'000, 5000));
  EXPECT_TRUE(beyond.isPointInside({205'000, 2500}));
  EXPECT_FALSE(beyond.isPointInside({209'000, 2500}));

  // Five apart, yet a corner of the first grazes the second's p4.
  EXPECT_FALSE(KvRectangle(Size{5, 5}).isRectangleOutsideRectangle(shape));
  // Shapes that touch at a corner are apart or not depending on the corner.
  EXPECT_FALSE(KvRectangle(Size{5, 5}).isRectangleOutsideRectangle(KvRectangle(Rect(5, 5, 5, 5))));
  EXPECT_TRUE(KvRectangle(Size{5, 5}).isRectangleOutsideRectangle(KvRectangle(Rect(5, -5, 5, 5))));
}

TEST(KvRectangleTest, ShapesApart) {
  const KvRectangle square(Size{10, 10});
  EXPECT_TRUE(square.isRectangleOutsideRectangle(KvRectangle(Rect(20, 0, 10, 10))));
  EXPECT_FALSE(square.isRectangleOutsideRectangle(KvRectangle(Rect(5, 5, 10, 10))));
  // No corner of either in the other.
  EXPECT_FALSE(square.isRectangleOutsideRectangle(KvRectangle(Rect(-5, 4, 20, 2))));
  EXPECT_FALSE(KvRectangle(Rect(4, -5, 2, 20)).isRectangleOutsideRectangle(square));
  // Exactly two crossings of a side decide: not one, where a bar touches a border ...
  EXPECT_TRUE(KvRectangle(Rect(10, 2, 10, 1)).isRectangleOutsideRectangle(square));
  // ... nor four, where one without height goes through two corners.
  const KvRectangle diamond({0, -10}, {10, 0}, {0, 10}, {-10, 0});
  EXPECT_TRUE(diamond.isPointInside({0, 0}));  // whose probe has parallel sides
  EXPECT_TRUE(KvRectangle(Rect(-20, 0, 40, 0)).isRectangleOutsideRectangle(diamond));
  EXPECT_FALSE(KvRectangle(Rect(-20, 1, 40, 0)).isRectangleOutsideRectangle(diamond));
}

/// How far `point` is on the right of the line on the screen.
double rightOf(const KvCollageSegment& line, Point point) {
  return ((line.p2.x - line.p1.x) * (point.y - line.p1.y) -
          (line.p2.y - line.p1.y) * (point.x - line.p1.x)) /
         line.length;
}

/// Whether a side of `shape` has the whole other shape on its left.
bool separates(const KvRectangle& shape, const KvRectangle& other) {
  const auto sides = shape.segments();
  const Corners corners = other.points();
  return std::any_of(sides.begin(), sides.end(), [&](const KvCollageSegment& side) {
    return std::all_of(corners.begin(), corners.end(),
                       [&](Point corner) { return rightOf(side, corner) < 0; });
  });
}

/// Random shapes, so that no corner of one lies on the line of another's side, no probe meets a
/// corner, and rounding decides nothing.
class Shapes {
 public:
  Point point() { return {numbers_.between(-400, 400), numbers_.between(-400, 400)}; }

  /// An upright rect, a turned one, or another convex shape, clockwise.
  KvRectangle shape(int kind) {
    const Point p = point();
    const Size size{numbers_.between(0.1, 400), numbers_.between(0.1, 400)};
    if (kind % 3 == 0) return KvRectangle(Rect(p, size));
    if (kind % 3 == 1) return KvRectangle(size, numbers_.between(-4, 4)).translateBy({p.x, p.y});
    const auto corner = [&](int quarter) {  // on an ellipse
      const double angle = (quarter + numbers_.between(0, 0.9)) * std::numbers::pi / 2;
      return Point{p.x + size.width * std::cos(angle), p.y + size.height * std::sin(angle)};
    };
    return {corner(0), corner(1), corner(2), corner(3)};
  }

 private:
  Numbers numbers_;
};

TEST(KvRectangleTest, ContainmentIsExactAwayFromTheOddities) {
  Shapes shapes;
  int inside = 0;
  for (int i = 0; i < 20'000; ++i) {
    const KvRectangle shape = shapes.shape(i);
    const Point point = shapes.point();
    const auto sides = shape.segments();
    const bool expected = std::all_of(sides.begin(), sides.end(),
                                      [&](const auto& side) { return rightOf(side, point) > 0; });
    if (expected) ++inside;
    ASSERT_EQ(shape.isPointInside(point), expected) << shape << " and " << point;
  }
  EXPECT_TRUE(inside > 1000 && inside < 18'000) << inside;
}

TEST(KvRectangleTest, ApartIsExactAwayFromTheOdditiesAndMovesAlong) {
  Shapes shapes;
  int apart = 0;
  for (int i = 0; i < 20'000; ++i) {
    KvRectangle a = shapes.shape(i), b = shapes.shape(i / 3);
    const bool expected = separates(a, b) || separates(b, a);
    if (expected) ++apart;
    ASSERT_EQ(a.isRectangleOutsideRectangle(b), expected) << a << " and " << b;
    const Point by = shapes.point();
    a.translateBy({by.x, by.y});
    b.translateBy({by.x, by.y});
    ASSERT_EQ(a.isRectangleOutsideRectangle(b), expected) << a << " and " << b;
  }
  EXPECT_TRUE(apart > 2000 && apart < 18'000) << apart;
}

}  // namespace
}  // namespace FrameworkUtility
