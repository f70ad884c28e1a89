#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <sstream>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

using testing::Numbers;

constexpr double pi = std::numbers::pi;

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

  const KvRectangle turned({100, 50}, pi / 2);
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

  const KvRectangle small(Size{5, 5});
  EXPECT_FALSE(small.isRectangleOutsideRectangle(shape)) << "a corner grazes p4, five away";
  // Shapes that touch at a corner are apart or not depending on the corner.
  EXPECT_FALSE(small.isRectangleOutsideRectangle(KvRectangle(Rect(5, 5, 5, 5))));
  EXPECT_TRUE(small.isRectangleOutsideRectangle(KvRectangle(Rect(5, -5, 5, 5))));
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
      const double angle = (quarter + numbers_.between(0, 0.9)) * pi / 2;
      return Point{p.x + size.width * std::cos(angle), p.y + size.height * std::sin(angle)};
    };
    return {corner(0), corner(1), corner(2), corner(3)};
  }

 private:
  Numbers numbers_;
};

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

/// By how much the corners of `inner` stick out of a clockwise shape at most; negative inside.
double overhang(const KvRectangle& shape, const KvRectangle& inner) {
  double most = -std::numeric_limits<double>::infinity();
  for (const KvCollageSegment& side : shape.segments()) {
    for (const Point corner : inner.points()) most = std::max(most, -rightOf(side, corner));
  }
  return most;
}

/// The rect of `content`'s proportions and this width, centred and turned by -angle.
KvRectangle candidate(Size content, double width, Point center, double angle) {
  KvRectangle shape(content.multiplyBy(width / content.width), -angle);
  const Rect bounds = shape.bounds();
  return shape.translateBy({center.x - bounds.midX(), center.y - bounds.midY()});
}

void expectSmallestCover(const KvRectangle& area, Size content, Point center, double angle) {
  SCOPED_TRACE(::testing::Message()
               << area << " content " << content.width << ' ' << content.height << " center "
               << center.x << ' ' << center.y << " angle " << angle);
  const KvRectangle cover = area.rectangleFilledWithRectRotated(content, center, angle);
  const double width = cover.size().width;
  const double tolerance = 1e-9 * (width + cover.size().height);
  EXPECT_NEAR(overhang(cover, area), 0, tolerance);  // a corner of the area touches a side
  const KvRectangle expected = candidate(content, width, center, angle);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_LT(Math::distanceBetweenPoint(cover.points()[i], expected.points()[i]), tolerance);
  }
}

TEST(KvRectangleCoverTest, IsTheSmallestOfItsProportions) {
  Numbers numbers;
  for (int i = 0; i < 2000; ++i) {
    const Point place = numbers.point();
    KvRectangle area = i % 2 ? KvRectangle(Rect(place, numbers.size()))
                             : KvRectangle(numbers.size(), numbers.between(-4, 4));
    const Size content{numbers.between(0.01, 2), numbers.between(0.01, 2)};
    const double angle = numbers.between(-20, 20);
    if (std::abs(std::sin(2 * angle)) < 1e-4) continue;  // next to a quarter turn digits get lost
    expectSmallestCover(area, content, numbers.point(), angle);
  }
  // The angle's digits end far before the point, but it is an angle.
  const KvRectangle area(Rect(10, 20, 300, 200));
  EXPECT_NEAR(overhang(area.rectangleFilledWithRectRotated({40, 30}, {70, 80}, 1e300), area), 0,
              1e-6);
}

TEST(KvRectangleCoverTest, QuarterTurnsPutTheWidthAlongY) {
  const KvRectangle area(Rect(10, 20, 300, 200));
  for (const double angle : {pi / 2, -pi / 2, 3 * pi / 2}) {
    expectSmallestCover(area, {40, 30}, {120, 90}, angle);
  }
  // The base rect shrinks: 100 x 200 to 50 x 100.
  expectSmallestCover(KvRectangle(Size{100, 50}), {1, 2}, {50, 25}, pi / 2);
}

// The angles that the tool rests at give the base rect where it stands.
TEST(KvRectangleCoverTest, HalfAndWholeTurnsGiveTheUprightCoverAtTheOrigin) {
  const KvRectangle area(Rect(10, 20, 300, 200));
  const Corners base = KvRectangle(Size{300, 225}).points();
  for (const double angle : {0.0, -0.0, 1e-16, pi, -pi, 2 * pi, -2 * pi, 3 * pi}) {
    EXPECT_EQ(area.rectangleFilledWithRectRotated({40, 30}, {70, 80}, angle).points(), base)
        << angle;
  }
  const KvRectangle nearly = area.rectangleFilledWithRectRotated({40, 30}, {70, 80}, 1e-15);
  EXPECT_NEAR((nearly.p1().x + nearly.p3().x) / 2, 70, 1e-9);
}

TEST(KvRectangleCoverTest, ContentWithoutAnAreaGivesNothingOrNoNumbers) {
  const KvRectangle area(Rect(10, 20, 300, 200));
  for (const Size content : {Size{0, 5}, Size{5, 0}, Size{-4, 3}, Size{std::nan(""), 3}}) {
    EXPECT_EQ(area.rectangleFilledWithRectRotated(content, {70, 80}, 0).bounds(), Rect());
    for (const double angle : {1.0, pi / 2}) {
      EXPECT_TRUE(std::isnan(area.rectangleFilledWithRectRotated(content, {70, 80}, angle).p1().x));
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility
