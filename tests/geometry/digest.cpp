// Prints digests of what the geometry answers to a million seeded cases. Two builds that agree in
// every bit print the same; scripts/check.sh compares them. Nothing stores the digests: the C
// library's trigonometry, and so they, may differ between machines.

#include <framework_utility/geometry/collage_shape_side.h>
#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>
#include <tests/geometry/numbers.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

using namespace FrameworkUtility;
using testing::Numbers;

namespace {

/// A hash of the bits of all numbers added. Any NaN is the same one: its sign and payload are the
/// compiler's affair.
class Digest {
 public:
  void add(double value) {
    constexpr std::uint64_t anyNaN = 0x7FF8000000000000;
    hash_ ^= std::isnan(value) ? anyNaN : std::bit_cast<std::uint64_t>(value);
    hash_ *= 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio, odd
    hash_ ^= hash_ >> 32;
  }
  void add(Point point) {
    add(point.x);
    add(point.y);
  }
  void add(Size size) { add(Point{size.width, size.height}); }
  void add(const std::optional<Point>& point) { add(point.value_or(Point{0.5, -0.0})); }
  void add(const KvCollageSegment& segment) {
    add(segment.p1);
    add(segment.p2);
    add(segment.length);
    // The coefficients show where the line meets others.
    for (const bool isVertical : {true, false}) {
      for (const double at : {0.0, 1.0}) {
        add(segment.intersectionPointWithSegment(
            KvCollageSegment::withVertical(isVertical, 0, at, at)));
      }
    }
  }
  void add(const KvRectangle& shape) {
    for (const Point corner : shape.points()) add(corner);
  }

  void print() const { std::printf("%016llx\n", static_cast<unsigned long long>(hash_)); }

 private:
  std::uint64_t hash_ = 0;
};

double angle(Numbers& numbers) {
  return numbers.below(8) == 0 ? numbers.below(9) * std::numbers::pi / 2 : numbers.between(-10, 10);
}

KvRectangle shape(Numbers& numbers) {
  const Point p = numbers.point();
  const Size size = numbers.size();
  return KvRectangle(size, numbers.below(4) == 0 ? 0 : angle(numbers)).translateBy({p.x, p.y});
}

void addMath(Digest& digest, Numbers& numbers) {
  const Point a = numbers.point(), b = numbers.pointBeside(a);
  const Point c = numbers.point(), d = numbers.pointBeside(c);
  const Size aspect = numbers.size(), bound = numbers.size();
  digest.add(Math::intersectionOfLineFrom(a, b, c, d));
  digest.add(Math::pointOnLineFrom(a, b, numbers.between(-2000, 2000)));
  digest.add(Math::angleBetweenPointA(a, b, c));
  digest.add(Math::normalizeRadianAngle(numbers.between(-100, 100)));
  digest.add(Math::makeSizeWithAspectRatioOutsideSize(aspect, bound));
}

void addSegments(Digest& digest, Numbers& numbers) {
  const Point a = numbers.point(), b = numbers.point();
  const KvCollageSegment segment(a, numbers.pointBeside(a));
  const KvCollageSegment other(b, numbers.pointBeside(b));
  digest.add(segment);
  digest.add(segment.parallele(b));
  digest.add(segment.perpandiculaire(b));
  const std::optional<Point> meet = segment.intersectionPointWithSegment(other);
  digest.add(meet);
  digest.add(segment.containsPoint(meet.value_or(b)));
  const double distance = numbers.between(-2000, 2000);
  digest.add(segment.locatePointOnStart(distance));
  digest.add(segment.locatePointOnEndWithD(distance));
}

void addSides(Digest& digest, Numbers& numbers) {
  const Point before = numbers.point(), corner = numbers.pointBeside(before);
  KvCollageShapeSide side(corner, numbers.pointBeside(corner));
  side.averagePoint = numbers.point();
  side.calculateBorderWithThickness(numbers.between(-20, 20));
  side.calculateBissectrice(KvCollageShapeSide(before, corner));
  digest.add(*side.parallele);
  digest.add(*side.bissectrice);
  digest.add(side.bissectriceAngle);
}

void addRectangles(Digest& digest, Numbers& numbers) {
  const KvRectangle a = shape(numbers), b = shape(numbers);
  digest.add(a);
  digest.add(a.size());
  digest.add(a.bounds().size);
  digest.add(a.isPointInside(numbers.point()));
  digest.add(a.isRectangleOutsideRectangle(b));
  const Size content = numbers.size();
  const Point center = numbers.point();
  digest.add(b.rectangleFilledWithRectRotated(content, center, angle(numbers)));
}

}  // namespace

int main() {
  for (const auto addCase : {addMath, addSegments, addSides, addRectangles}) {
    Numbers numbers;
    Digest digest;
    for (int i = 0; i < 250'000; ++i) addCase(digest, numbers);
    digest.print();
  }
}
