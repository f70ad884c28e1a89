// Turned rects: containment, the apart test, where segments meet, the covering rectangle.

#include <bench/paired.h>
#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/ring.hpp>
#include <boost/geometry/geometries/segment.hpp>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <random>
#include <string>
#include <vector>

using namespace FrameworkUtility;

namespace {

long allocations = 0;

}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  std::abort();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using BoostPoint = boost::geometry::model::d2::point_xy<double>;
using BoostRing = boost::geometry::model::ring<BoostPoint>;  // clockwise, closed
using BoostSegment = boost::geometry::model::segment<BoostPoint>;

constexpr std::size_t count = 1000;
constexpr Point middle{1000, 750};

BoostPoint boostPoint(Point point) { return {point.x, point.y}; }

/// The same shapes, points and segments for both. Rect `i` and point `i` meet, and so do the rects
/// and the segments `i` and `i` + 1.
struct Scene {
  std::vector<KvRectangle> shapes;
  std::vector<BoostRing> rings;
  std::vector<Point> points;
  std::vector<BoostPoint> boostPoints;
  std::vector<std::pair<Point, Point>> segments;
  std::vector<BoostSegment> boostSegments;

  /// All centres, points and ends are within `spread` of the middle, along either axis.
  explicit Scene(double spread) {
    std::mt19937_64 bits(20240517);
    const auto between = [&](double low, double high) {
      return std::uniform_real_distribution(low, high)(bits);
    };
    const auto somewhere = [&] {
      const double x = middle.x + between(-spread, spread);
      return Point{x, middle.y + between(-spread, spread)};
    };
    for (std::size_t i = 0; i < count; ++i) {
      const double width = between(50, 800);
      const Size size{width, between(50, 800)};
      const Point center = somewhere();
      const KvRectangle shape =
          KvRectangle(size, between(-3, 3))
              .translateBy({center.x - size.width / 2, center.y - size.height / 2});
      BoostRing ring;
      for (const Point corner : shape.points()) ring.push_back(boostPoint(corner));
      ring.push_back(boostPoint(shape.p1()));
      boost::geometry::correct(ring);
      shapes.push_back(shape);
      rings.push_back(ring);
      points.push_back(somewhere());
      boostPoints.push_back(boostPoint(points.back()));
      segments.emplace_back(somewhere(), somewhere());
      boostSegments.emplace_back(boostPoint(segments.back().first),
                                 boostPoint(segments.back().second));
    }
  }
};

/// How often `test` says yes to what `i` and its neighbour are.
template <class Test>
int yes(const Test& test) {
  int found = 0;
  for (std::size_t i = 0; i < count; ++i) found += test(i, (i + 1) % count);
  bench::keep(found);
  return found;
}

std::string allocationsOf(const std::function<void()>& work) {
  const long before = allocations;
  work();
  return std::to_string(allocations - before);
}

/// Both must find the same; then prints times, and what the first allocates.
template <class Own, class Peer>
void race(const std::string& what, const char* ownName, const Own& own, const char* peerName,
          const Peer& peer) {
  const int found = yes(own);
  if (found != yes(peer)) {
    std::fprintf(stderr, "%s: %s and %s disagree\n", what.c_str(), ownName, peerName);
    std::exit(1);
  }
  bench::compare(what + ", 1000 times, " + std::to_string(found) +
                     " times yes; allocations: " + allocationsOf([&] { yes(own); }),
                 {{ownName, [&] { yes(own); }}, {peerName, [&] { yes(peer); }}});
}

void raceOfRects(const Scene& scene, const std::string& where) {
  race(
      "a point in a turned rect, " + where, "KvRectangle::isPointInside",
      [&](std::size_t i, std::size_t) { return scene.shapes[i].isPointInside(scene.points[i]); },
      "boost::geometry::within",
      [&](std::size_t i, std::size_t) {
        return boost::geometry::within(scene.boostPoints[i], scene.rings[i]);
      });
  race(
      "two turned rects apart, " + where, "KvRectangle::isRectangleOutsideRectangle",
      [&](std::size_t i, std::size_t next) {
        return scene.shapes[i].isRectangleOutsideRectangle(scene.shapes[next]);
      },
      "boost::geometry::disjoint",
      [&](std::size_t i, std::size_t next) {
        return boost::geometry::disjoint(scene.rings[i], scene.rings[next]);
      });
}

void raceOfSegments(const Scene& scene) {
  std::vector<BoostPoint> meeting;  // keeps its memory from call to call
  race(
      "where two segments meet", "Math::intersectionOfLineFrom",
      [&](std::size_t i, std::size_t next) {
        const auto& [p1, p2] = scene.segments[i];
        const auto& [p3, p4] = scene.segments[next];
        const std::optional<Point> at = Math::intersectionOfLineFrom(p1, p2, p3, p4);
        bench::keep(at);
        return at.has_value();
      },
      "boost::geometry::intersection",
      [&](std::size_t i, std::size_t next) {
        meeting.clear();
        boost::geometry::intersection(scene.boostSegments[i], scene.boostSegments[next], meeting);
        return !meeting.empty();
      });
}

void timeOfCover(const Scene& scene) {
  const auto cover = [&] {
    for (std::size_t i = 0; i < count; ++i) {
      bench::keep(scene.shapes[i].rectangleFilledWithRectRotated({4032, 3024}, scene.points[i],
                                                                 static_cast<double>(i) * 0.00628));
    }
  };
  bench::compare("the covering rect, 1000 times; allocations: " + allocationsOf(cover),
                 {{"KvRectangle::rectangleFilledWithRectRotated", cover}});
}

}  // namespace

int main() {
  const Scene near(400);
  raceOfRects(Scene(150), "on each other");
  raceOfRects(near, "near each other");
  raceOfRects(Scene(3000), "far apart");
  raceOfSegments(near);
  timeOfCover(near);
}
