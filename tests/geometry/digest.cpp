// Prints a digest of what the geometry answers to a million seeded cases. Two builds that agree in
// every bit print the same; scripts/check.sh compares them. Nothing stores the digests: the C
// library's trigonometry, and so they, may differ between machines.

#include <framework_utility/geometry/collage_shape_side.h>
#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <random>

using namespace FrameworkUtility;

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

  void print(const char* what) const {
    std::printf("%-10s %016llx\n", what, static_cast<unsigned long long>(hash_));
  }

 private:
  std::uint64_t hash_ = 0;
};

/// The same inputs everywhere: the generator is laid down bit by bit, distributions are not.
class Inputs {
 public:
  std::uint64_t below(std::uint64_t end) { return bits_() % end; }
  double between(double low, double high) {
    return low + static_cast<double>(bits_() >> 11) * 0x1p-53 * (high - low);
  }
  Point point() { return {between(-2000, 2000), between(-2000, 2000)}; }
  /// Straight above or below `other` in every fourth case.
  Point pointBeside(Point other) {
    const Point p = point();
    return below(4) == 0 ? Point{other.x, p.y} : p;
  }
  Size size() { return {between(1, 2000), between(1, 2000)}; }
  double angle() {
    return below(8) == 0 ? static_cast<double>(below(9)) * std::numbers::pi / 2 : between(-10, 10);
  }
  KvRectangle shape() {
    const Point p = point();
    const Size extent = size();
    return KvRectangle(extent, below(4) == 0 ? 0 : angle()).translateBy({p.x, p.y});
  }

 private:
  std::mt19937_64 bits_{20240517};
};

void addMath(Digest& digest, Inputs& inputs) {
  const Point a = inputs.point(), b = inputs.pointBeside(a);
  const Point c = inputs.point(), d = inputs.pointBeside(c);
  const Size aspect = inputs.size(), bound = inputs.size();
  digest.add(Math::intersectionOfLineFrom(a, b, c, d));
  digest.add(Math::pointOnLineFrom(a, b, inputs.between(-2000, 2000)));
  digest.add(Math::angleBetweenPointA(a, b, c));
  digest.add(Math::normalizeRadianAngle(inputs.between(-100, 100)));
  digest.add(Math::makeSizeWithAspectRatioOutsideSize(aspect, bound));
}

void addSegments(Digest& digest, Inputs& inputs) {
  const Point a = inputs.point(), b = inputs.point();
  const KvCollageSegment segment(a, inputs.pointBeside(a));
  const KvCollageSegment other(b, inputs.pointBeside(b));
  digest.add(segment);
  digest.add(segment.parallele(b));
  digest.add(segment.perpandiculaire(b));
  const std::optional<Point> meet = segment.intersectionPointWithSegment(other);
  digest.add(meet);
  digest.add(segment.containsPoint(meet.value_or(b)));
  const double distance = inputs.between(-2000, 2000);
  digest.add(segment.locatePointOnStart(distance));
  digest.add(segment.locatePointOnEndWithD(distance));
}

void addSides(Digest& digest, Inputs& inputs) {
  const Point before = inputs.point(), corner = inputs.pointBeside(before);
  KvCollageShapeSide side(corner, inputs.pointBeside(corner));
  side.averagePoint = inputs.point();
  side.calculateBorderWithThickness(inputs.between(-20, 20));
  side.calculateBissectrice(KvCollageShapeSide(before, corner));
  digest.add(*side.parallele);
  digest.add(*side.bissectrice);
  digest.add(side.bissectriceAngle);
}

void addRectangles(Digest& digest, Inputs& inputs) {
  const KvRectangle a = inputs.shape(), b = inputs.shape();
  digest.add(a);
  digest.add(a.size());
  digest.add(a.bounds().size);
  digest.add(a.isPointInside(inputs.point()));
  digest.add(a.isRectangleOutsideRectangle(b));
  const Size content = inputs.size();
  const Point center = inputs.point();
  digest.add(b.rectangleFilledWithRectRotated(content, center, inputs.angle()));
}

}  // namespace

int main() {
  constexpr int casesOfEach = 250'000;
  const struct {
    const char* name;
    void (*add)(Digest& digest, Inputs& inputs);
  } families[] = {{"Math", addMath},
                  {"segments", addSegments},
                  {"sides", addSides},
                  {"rectangles", addRectangles}};
  Inputs inputs;
  for (const auto& family : families) {
    Digest digest;
    for (int i = 0; i < casesOfEach; ++i) family.add(digest, inputs);
    digest.print(family.name);
  }
}
