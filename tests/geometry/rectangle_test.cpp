#include <framework_utility/geometry/rectangle.h>
#include <tests/geometry/numbers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <optional>
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
  for (const auto& [point, inside] : {std::pair{Point{50, 50}, true},
                                      {{150, 50}, false},
                                      {{0, 0}, true},
                                      {{100, 0}, false},
                                      {{100, 100}, false},
                                      {{0, 100}, false},
                                      {{30, 0}, true},
                                      {{0, 30}, true},
                                      {{30, 100}, false},
                                      {{100, 30}, false}}) {
    EXPECT_EQ(square.isPointInside(point), inside) << point.x << ' ' << point.y;
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
  EXPECT_TRUE(KvRectangle(Rect(-20, 0, 40, 0)).isRectangleOutsideRectangle(diamond));
  EXPECT_FALSE(KvRectangle(Rect(-20, 1, 40, 0)).isRectangleOutsideRectangle(diamond));
}

// Exact answers. Coordinates are multiples of 1/1024 below 2^12, so that in units of it the far
// point is below 2^27 and no product of differences leaves 64 bits.
constexpr std::int64_t unitsPerPoint = 1024;

struct GridPoint {
  std::int64_t x;
  std::int64_t y;
};
using GridShape = std::array<GridPoint, 4>;

constexpr GridPoint farPoint{100'000 * unitsPerPoint, 100'000 * unitsPerPoint};

Point pointOf(GridPoint point) {
  return {static_cast<double>(point.x) / unitsPerPoint,
          static_cast<double>(point.y) / unitsPerPoint};
}

KvRectangle rectangleOf(const GridShape& shape) {
  return {pointOf(shape[0]), pointOf(shape[1]), pointOf(shape[2]), pointOf(shape[3])};
}

/// Positive where `point` is on the right of the line on the screen, zero on it.
std::int64_t rightOf(GridPoint from, GridPoint to, GridPoint point) {
  return (to.x - from.x) * (point.y - from.y) - (to.y - from.y) * (point.x - from.x);
}

/// Whether `point` is nearer to the line than rounding can tell reliably: a millionth of a point.
bool isOnLine(GridPoint from, GridPoint to, GridPoint point) {
  const Point a = pointOf(from), b = pointOf(to);
  const double area = static_cast<double>(rightOf(from, to, point)) /
                      static_cast<double>(unitsPerPoint * unitsPerPoint);
  return std::abs(area) <= 1e-6 * std::hypot(b.x - a.x, b.y - a.y);
}

/// Where `point` stands to a side of the shape.
struct Standing {
  bool inside = true;
  bool odd = false;  ///< On the line of a side, or its probe meets a corner.
};

Standing standing(const GridShape& shape, GridPoint point) {
  Standing result;
  for (std::size_t i = 0; i < 4; ++i) {
    const GridPoint from = shape[i], to = shape[(i + 1) % 4];
    result.inside = result.inside && rightOf(from, to, point) > 0;
    result.odd = result.odd || isOnLine(from, to, point) || isOnLine(point, farPoint, from);
  }
  return result;
}

/// Whether a side of `shape` has the whole other shape on its left.
bool separates(const GridShape& shape, const GridShape& other) {
  for (std::size_t i = 0; i < 4; ++i) {
    if (std::all_of(other.begin(), other.end(), [&](GridPoint corner) {
          return rightOf(shape[i], shape[(i + 1) % 4], corner) < 0;
        })) {
      return true;
    }
  }
  return false;
}

/// Upright rects, turned rects and other convex shapes, clockwise.
class Shapes {
 public:
  GridPoint point() {
    return {numbers_.whole(-400, 400) * unitsPerPoint + numbers_.whole(0, 1023),
            numbers_.whole(-400, 400) * unitsPerPoint + numbers_.whole(0, 1023)};
  }

  GridShape shape(int kind) {
    const GridPoint p = point();
    if (kind % 3 == 2) return convex();
    // p2 is `width` steps of (x, y) from p1 and p4 is `height` steps of (-y, x).
    const std::int64_t x = numbers_.whole(100, 999), y = kind % 3 ? numbers_.whole(-999, 999) : 0;
    const std::int64_t width = numbers_.whole(1, 400), height = numbers_.whole(1, 400);
    const GridPoint right{x * width, y * width}, down{-y * height, x * height};
    return {p,
            {p.x + right.x, p.y + right.y},
            {p.x + right.x + down.x, p.y + right.y + down.y},
            {p.x + down.x, p.y + down.y}};
  }

 private:
  GridShape convex() {
    for (;;) {
      const GridShape shape{point(), point(), point(), point()};
      bool clockwise = true;
      for (std::size_t i = 0; i < 4; ++i) {
        clockwise = clockwise && rightOf(shape[i], shape[(i + 1) % 4], shape[(i + 2) % 4]) > 0;
      }
      if (clockwise && rightOf(shape[3], shape[0], shape[1]) > 0 &&
          rightOf(shape[0], shape[1], shape[3]) > 0 && rightOf(shape[1], shape[2], shape[0]) > 0) {
        return shape;
      }
    }
  }

  Numbers numbers_;
};

TEST(KvRectangleTest, ContainmentIsExactAwayFromTheOddities) {
  Shapes shapes;
  int inside = 0, outside = 0;
  for (int i = 0; i < 20'000; ++i) {
    const GridShape shape = shapes.shape(i);
    const GridPoint point = shapes.point();
    const Standing exact = standing(shape, point);
    if (exact.odd) continue;
    ++(exact.inside ? inside : outside);
    ASSERT_EQ(rectangleOf(shape).isPointInside(pointOf(point)), exact.inside)
        << rectangleOf(shape) << " and " << pointOf(point).x << ", " << pointOf(point).y;
  }
  EXPECT_GT(inside, 1000);
  EXPECT_GT(outside, 2000);
}

TEST(KvRectangleTest, ApartIsExactAwayFromTheOdditiesAndMovesAlong) {
  Shapes shapes;
  int apart = 0, together = 0;
  for (int i = 0; i < 20'000; ++i) {
    const GridShape a = shapes.shape(i), b = shapes.shape(i / 3);
    const GridPoint moved = shapes.point();
    const auto isOdd = [](const GridShape& shape, const GridShape& other) {
      return std::any_of(other.begin(), other.end(),
                         [&](GridPoint corner) { return standing(shape, corner).odd; });
    };
    if (isOdd(a, b) || isOdd(b, a)) continue;
    const bool exact = separates(a, b) || separates(b, a);
    ++(exact ? apart : together);
    KvRectangle first = rectangleOf(a), second = rectangleOf(b);
    ASSERT_EQ(first.isRectangleOutsideRectangle(second), exact) << first << " and " << second;
    const Size distance{pointOf(moved).x, pointOf(moved).y};
    ASSERT_EQ(first.translateBy(distance).isRectangleOutsideRectangle(second.translateBy(distance)),
              exact)
        << first << " and " << second;
  }
  EXPECT_GT(apart, 2000);
  EXPECT_GT(together, 2000);
}

}  // namespace
}  // namespace FrameworkUtility
