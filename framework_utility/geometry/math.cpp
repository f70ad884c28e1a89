#include <framework_utility/geometry/math.h>

#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/foundation/values/stop.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace FrameworkUtility {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = std::numbers::pi;
constexpr double degreesPerRadian = 57.29577951308232;
constexpr double randomRange = 4294967296;  // a random number is below 2^32

/// `value` moved into [min, max], all finite, by periods of `max - min`, which is finite and above
/// 0. Each step rounds, and callers get the bits of the stepwise sum as long as it ends within a
/// few thousand steps. Farther away, or where a step is too small to move the value, they get the
/// exact remainder.
double wrapped(double value, double min, double max) {
  constexpr int mostSteps = 4096;
  const double period = max - min;
  double stepped = value;
  int steps = 0;
  for (; stepped < min && steps < mostSteps; ++steps) stepped += period;
  for (; stepped > max && steps < mostSteps; ++steps) stepped -= period;
  if (steps < mostSteps) return stepped;

  // The whole periods in `min` are 0 for a range around 0, so nothing rounds there; from the sum it
  // is two steps to the range at most.
  double remainder = std::fmod(value, period) + (min - std::fmod(min, period));
  while (remainder < min) remainder += period;
  while (remainder > max) remainder -= period;
  return std::max(min, remainder);  // the last difference may round to below the range
}

/// The largest size of the aspect's proportions inside `bound`: the plain formula, whatever the
/// sides. An aspect of two zeros gives NaN.
Size insideFit(Size aspect, Size bound) {
  const double scale = std::min(bound.width / aspect.width, bound.height / aspect.height);
  return {aspect.width * scale, aspect.height * scale};
}

/// The inside fit enlarged until it covers `bound`.
Size outsideFit(Size aspect, Size bound) {
  if (aspect.width <= 0 || aspect.height <= 0) return {};
  const Size inside = insideFit(aspect, bound);
  const double horizontal = bound.width / inside.width;
  const double vertical = bound.height / inside.height;
  const double scale = horizontal <= vertical ? vertical : horizontal;
  return {inside.width * scale, inside.height * scale};
}

}  // namespace

double Math::degreesToRadians(double degrees) { return degrees * pi / 180; }

double Math::radiansToDegrees(double radians) { return radians * degreesPerRadian; }

double Math::normalizeDegreeAngle(double degrees) {
  // Steps of 360 lose no bit up to 2^56, so the remainder is what they would give.
  double angle = std::fmod(degrees, 360);
  if (angle < 0) angle += 360;
  return angle == 0 || std::abs(angle - 360) < 0.01 ? 0 : angle;
}

double Math::normalizeRadianAngle(double radians) {
  const double angle = normalizeValue(radians, -pi, pi);
  return angle == 0 ? 0 : angle;  // no negative zero
}

double Math::normalizeValue(double value, double min, double max) {
  if (!std::isfinite(value) || std::isnan(min) || std::isnan(max)) return nan;
  if (min <= value && value <= max) return value;
  if (std::isinf(min) || std::isinf(max)) return nan;
  if (min >= max) return value;
  if (std::isinf(max - min)) return 2 * wrapped(value / 2, min / 2, max / 2);
  return wrapped(value, min, max);
}

double Math::lerp(double value, double inStart, double inEnd, double outStart, double outEnd) {
  return (value - inStart) * (outEnd - outStart) / (inEnd - inStart) + outStart;
}

double Math::angleRadiansOfLineMadeOfPointA(Point a, Point b) {
  return std::atan2(b.y - a.y, b.x - a.x);
}

double Math::angleDegreesOfLineMadeOfPointA(Point a, Point b) {
  return angleRadiansOfLineMadeOfPointA(a, b) * degreesPerRadian;
}

double Math::angleBetweenPointA(Point a, Point b, Point center) {
  const double angleA = std::atan2(a.x - center.x, a.y - center.y);
  const double angleB = std::atan2(b.x - center.x, b.y - center.y);
  const double turn = angleB - angleA;
  return normalizeRadianAngle(angleA <= angleB ? turn : turn + 2 * pi);
}

Point Math::rotatePoint(Point point, Point center, double angle) {
  const double x = point.x - center.x;
  const double y = point.y - center.y;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {x * cosine - y * sine + center.x, x * sine + y * cosine + center.y};
}

Point Math::pointOnLineFrom(Point p1, Point p2, double distance) {
  if (p1 == p2) return p1;
  const double t = distance / distanceBetweenPoint(p1, p2);
  return {(1 - t) * p1.x + t * p2.x, (1 - t) * p1.y + t * p2.y};
}

Point Math::centerPointOfLineFrom(Point p1, Point p2) {
  return {p1.x * 0.5 + p2.x * 0.5, p1.y * 0.5 + p2.y * 0.5};
}

std::optional<Point> Math::intersectionOfLineFrom(Point p1, Point p2, Point p3, Point p4) {
  const Point r{p2.x - p1.x, p2.y - p1.y};
  const Point q{p4.x - p3.x, p4.y - p3.y};
  const double denominator = r.x * q.y - r.y * q.x;  // 0 for parallel segments
  const Point between{p3.x - p1.x, p3.y - p1.y};
  const double t = (between.x * q.y - between.y * q.x) / denominator;
  if (!(t >= 0 && t <= 1)) return std::nullopt;  // parallel, it is infinite or not a number
  const double u = (r.y * between.x - r.x * between.y) / denominator;
  if (u < 0 || u > 1) return std::nullopt;
  return Point{p1.x + t * r.x, p1.y + t * r.y};
}

double Math::distanceBetweenPoint(Point a, Point b) {
  const double x = b.x - a.x;
  const double y = b.y - a.y;
  return std::sqrt(x * x + y * y);
}

Size Math::makeSizeWithAspectRatioInsideSize(Size aspect, Size bound) {
  return insideFit(aspect, bound);
}

Size Math::makeSizeWithAspectRatioOutsideSize(Size aspect, Size bound) {
  return outsideFit(aspect, bound);
}

Rect Math::makeRectWithAspectRatioInsideRect(Size aspect, const Rect& bound) {
  const Size size = insideFit(aspect, bound.size);
  return {Point{bound.origin.x + (bound.size.width - size.width) / 2,
                bound.origin.y + (bound.size.height - size.height) / 2},
          size};
}

Rect Math::makeRectWithAspectRatioOutsideRect(Size aspect, const Rect& bound) {
  if (aspect.width <= 0 || aspect.height <= 0) return {};
  const Size size = outsideFit(aspect, bound.size);
  return {Point{(bound.size.width - size.width) * 0.5, (bound.size.height - size.height) * 0.5},
          size};
}

std::int64_t Math::randomNumberWithMinimum(std::int64_t min, std::int64_t max) {
  // Unsigned, the difference cannot overflow.
  const std::uint64_t span = static_cast<std::uint64_t>(max) - static_cast<std::uint64_t>(min);
  if (min >= max || span > std::numeric_limits<std::uint32_t>::max()) {
    stop("Math: randomNumber: the range is empty or has 2^32 numbers or more");
  }
  return min + static_cast<std::int64_t>(randomUnsignedInteger() % span);
}

double Math::randomFloatNumberWithMinimum(double min, double max) {
  const double low = min * 100;
  const double high = max * 100;
  if (low < 1 && high < 1) return 0;  // ranges below 0.01, negative ones included, on purpose
  const double span = high - low;
  if (!(span >= 1 && span < randomRange)) {
    stop("Math: randomFloatNumber: the range has no step of 0.01 or 2^32 steps or more");
  }
  const double value = (low + randomUnsignedInteger() % static_cast<std::uint32_t>(span)) / 100;
  return value > max ? max : value <= min ? min : value;
}

}  // namespace FrameworkUtility
