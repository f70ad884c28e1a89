#include <framework_utility/geometry/collage_segment.h>

#include <framework_utility/geometry/line.h>
#include <framework_utility/geometry/math.h>
#include <framework_utility/platform/foundation/values/number_text.h>

#include <cmath>

namespace FrameworkUtility {
namespace {

using detail::machineEpsilon;

bool isZero(double value) { return !(std::abs(value) > machineEpsilon); }

bool isZero(Point point) { return isZero(point.x) && isZero(point.y); }

}  // namespace

KvCollageSegment::KvCollageSegment(Point point1, Point point2)
    : p1(point1), p2(point2), length(Math::distanceBetweenPoint(point1, point2)) {
  const detail::Line line = detail::lineThrough(point1, point2);
  isVertical = line.isVertical;
  a_ = line.a;
  b_ = line.b;
  c_ = line.c;
}

KvCollageSegment KvCollageSegment::withVertical(bool isVertical, double a, double b, double c) {
  KvCollageSegment segment({}, {});
  segment.isVertical = isVertical;
  segment.a_ = a;
  segment.b_ = b;
  segment.c_ = c;
  return segment;
}

KvCollageSegment KvCollageSegment::parallele(Point point) const {
  return isVertical ? withVertical(true, a_, b_, point.x)
                    : withVertical(false, a_, point.y - a_ * point.x, c_);
}

KvCollageSegment KvCollageSegment::perpandiculaire(Point point) const {
  if (isVertical) return withVertical(false, 0, point.y, 0);
  if (std::abs(a_) < machineEpsilon) return withVertical(true, 0, 0, point.x);
  const double slope = -1 / a_;
  return withVertical(false, slope, point.y - slope * point.x, 0);
}

std::optional<Point> KvCollageSegment::intersectionPointWithSegment(
    const KvCollageSegment& other) const {
  return detail::intersection({isVertical, a_, b_, c_},
                              {other.isVertical, other.a_, other.b_, other.c_});
}

bool KvCollageSegment::containsPoint(Point point) const {
  const double away = isVertical ? point.x - c_ : point.y - (a_ * point.x + b_);
  return std::abs(away) < machineEpsilon;
}

Point KvCollageSegment::locatePointOnStart(double distance) const {
  if (isVertical) return {p1.x, p1.y < p2.y ? p1.y + distance : p1.y - distance};
  return {p1.x + (p2.x - p1.x) * distance / length, p1.y + (p2.y - p1.y) * distance / length};
}

Point KvCollageSegment::locatePointOnEndWithD(double distance) const {
  if (isVertical) return {p2.x, p1.y < p2.y ? p2.y - distance : p2.y + distance};
  return {p2.x + (p1.x - p2.x) * distance / length, p2.y + (p1.y - p2.y) * distance / length};
}

std::string KvCollageSegment::description() const {
  const auto number = [](double value) { return textOfDouble(value, 1); };
  const auto point = [&](Point p) { return '[' + number(p.x) + ", " + number(p.y) + ']'; };
  const bool hasCoefficients = !isZero(a_) || !isZero(b_) || !isZero(c_);
  const bool hasPoints = !hasCoefficients || !isZero(p1) || !isZero(p2);

  std::string text = "KvCollageSegment: ";
  if (hasPoints) text += std::string("p1 ") + point(p1) + ", p2 " + point(p2) + ", ";
  if (hasCoefficients) {
    text += std::string("a ") + number(a_) + ", b " + number(b_) + ", c " + number(c_) + ", ";
  }
  text += isVertical ? "isVertical 1" : "isVertical 0";
  if (hasPoints) text += ", Length " + number(length);
  return text + '.';
}

}  // namespace FrameworkUtility
