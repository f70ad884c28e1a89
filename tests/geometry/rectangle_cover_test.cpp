#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace FrameworkUtility {
namespace {

using testing::Numbers;

constexpr double pi = std::numbers::pi;
constexpr double infinity = std::numeric_limits<double>::infinity();

/// By how much the corners of `inner` stick out of a clockwise shape at most; negative inside.
double overhang(const KvRectangle& shape, const KvRectangle& inner) {
  double most = -infinity;
  for (const KvCollageSegment& side : shape.segments()) {
    for (const Point corner : inner.points()) {
      const double right = (side.p2.x - side.p1.x) * (corner.y - side.p1.y) -
                           (side.p2.y - side.p1.y) * (corner.x - side.p1.x);
      most = std::max(most, -right / side.length);
    }
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
  // No growth of the base rect is needed, on the contrary: 100 x 200 shrinks to 50 x 100.
  const KvRectangle shrunk =
      KvRectangle(Size{100, 50}).rectangleFilledWithRectRotated({1, 2}, {50, 25}, pi / 2);
  EXPECT_NEAR(shrunk.size().width, 50, 1e-12);
}

// The angles that the tool rests at give the base rect where it stands.
TEST(KvRectangleCoverTest, HalfAndWholeTurnsGiveTheUprightCoverAtTheOrigin) {
  const KvRectangle area(Rect(10, 20, 300, 200));
  const std::array<Point, 4> base = KvRectangle(Size{300, 225}).points();
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
