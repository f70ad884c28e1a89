#pragma once

#include <framework_utility/plane/point.h>

#include <cmath>
#include <limits>
#include <optional>

namespace FrameworkUtility::detail {

inline constexpr double machineEpsilon = std::numeric_limits<double>::epsilon();  // 2^-52

/// An infinite line: y = a x + b, or x = c when it is vertical.
struct Line {
  bool isVertical;
  double a;
  double b;
  double c;
};

/// The line through both points; vertical, at the first one, when they are nearer than 1e-7 in x.
inline Line lineThrough(Point p1, Point p2) {
  constexpr double verticalTolerance = 1e-7;
  const double x = p1.x - p2.x;
  if (std::abs(x) < verticalTolerance) return {true, 0, 0, p1.x};
  const double a = (p1.y - p2.y) / x;
  return {false, a, p1.y - p1.x * a, 0};
}

/// Where the lines meet; absent for parallel ones, coinciding ones included, and where a slope is
/// not a number.
inline std::optional<Point> intersection(const Line& line, const Line& other) {
  if (line.isVertical && other.isVertical) return std::nullopt;
  if (line.isVertical) return Point{line.c, line.c * other.a + other.b};
  if (other.isVertical) return Point{other.c, other.c * line.a + line.b};
  const double slopes = line.a - other.a;
  if (!(std::abs(slopes) > machineEpsilon)) return std::nullopt;
  const double x = (other.b - line.b) / slopes;
  return Point{x, line.b + line.a * x};
}

}  // namespace FrameworkUtility::detail
