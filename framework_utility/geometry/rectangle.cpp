#include <framework_utility/geometry/rectangle.h>

#include <framework_utility/geometry/line.h>
#include <framework_utility/geometry/math.h>
#include <framework_utility/platform/foundation/values/number_text.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace FrameworkUtility {
namespace {

using detail::Line;
using detail::machineEpsilon;

constexpr double pi = std::numbers::pi;

/// A side and the line it lies on.
class Side {
 public:
  Side(Point start, Point end) : start_(start), end_(end), line_(detail::lineThrough(start, end)) {}

  const Line& line() const { return line_; }

  /// The coordinate that tells points of the line apart.
  double along(Point point) const { return line_.isVertical ? point.y : point.x; }

  /// Where a point of the line lies on the side: 0 is the start, 1 the end.
  double parameter(Point point) const {
    return (along(point) - along(start_)) / (along(end_) - along(start_));
  }

  /// Whether the parameter, rounded as it is, lies above the machine epsilon and not above 1: the
  /// start does not belong to the side here, the end does.
  ///
  /// Found without the division, and the same for all doubles. What is above `whole` is so by more
  /// than half an epsilon of it, so that the quotient rounds to above 1. For the epsilon the same
  /// holds of the part times 2^52, which is exact; where it overflows the quotient is above, too.
  bool reaches(Point point) const {
    const double whole = along(end_) - along(start_);
    const double part = (along(point) - along(start_)) * std::copysign(1.0, whole);
    return part * 0x1p52 > std::abs(whole) && part <= std::abs(whole);
  }

  /// Both ends belong to the side here.
  bool crosses(const Side& other) const {
    const std::optional<Point> at = detail::intersection(line_, other.line_);
    if (!at) return false;
    const double here = parameter(*at);
    const double there = other.parameter(*at);
    return here >= 0 && here <= 1 && there >= 0 && there <= 1;
  }

 private:
  Point start_;
  Point end_;
  Line line_;
};

std::array<Side, 4> sidesOf(const std::array<Point, 4>& corners) {
  const auto& [p1, p2, p3, p4] = corners;
  return {Side(p1, p2), Side(p2, p3), Side(p3, p4), Side(p4, p1)};
}

bool isNear(double angle, double other) { return std::abs(angle - other) < machineEpsilon; }

/// By what to multiply the rect of these half sides, centred and turned by -`angle`, which lies in
/// [0, 2π], so that it holds the corners.
double growthToCover(const std::array<Point, 4>& corners, Size half, Point center, double angle) {
  double growth = 0;
  const auto atLeast = [&](double other) { growth = std::max(growth, other); };  // NaN is less

  if (isNear(angle, pi / 2) || isNear(angle, 3 * pi / 2)) {  // the width lies along y
    for (const Point corner : corners) {
      atLeast(std::abs((corner.y - center.y) / half.width));
      atLeast(std::abs((corner.x - center.x) / half.height));
    }
    return growth;
  }

  // The rect's width has the slope -t, its height the slope u. Each corner is projected onto both
  // axes: the foot is where a line through the centre meets the other one, through the corner.
  const double t = std::abs(angle - pi / 2) > machineEpsilon ? std::tan(angle) : 0;
  const double u = std::abs(angle) > machineEpsilon ? 1 / t : 0;
  for (const Point corner : corners) {
    const double along = corner.y + t * corner.x;
    const double alongX = ((center.y - u * center.x) - along) / (-u - t);
    const Point onHeight{alongX, along - t * alongX};
    atLeast(Math::distanceBetweenPoint(center, onHeight) / std::abs(half.height));

    const double across = corner.y - u * corner.x;
    const double acrossX = (across - (center.y + t * center.x)) / (-u - t);
    const Point onWidth{acrossX, across + u * acrossX};
    atLeast(Math::distanceBetweenPoint(center, onWidth) / std::abs(half.width));
  }
  return growth;
}

}  // namespace

KvRectangle::KvRectangle(const Rect& rect) {
  const auto [x, y] = rect.origin;
  const auto [width, height] = rect.size;
  corners_ = {{{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}}};
}

KvRectangle::KvRectangle(Size size, double angle) : KvRectangle(size) {
  for (Point& corner : corners_) corner = Math::rotatePoint(corner, size.center(), angle);
}

Rect KvRectangle::bounds() const {
  const auto [left, right] = std::minmax({p1().x, p2().x, p3().x, p4().x});
  const auto [top, bottom] = std::minmax({p1().y, p2().y, p3().y, p4().y});
  return {left, top, right - left, bottom - top};
}

Size KvRectangle::size() const {
  return {Math::distanceBetweenPoint(p1(), p2()), Math::distanceBetweenPoint(p2(), p3())};
}

std::array<KvCollageSegment, 4> KvRectangle::segments() const {
  return {KvCollageSegment(p1(), p2()), KvCollageSegment(p2(), p3()), KvCollageSegment(p3(), p4()),
          KvCollageSegment(p4(), p1())};
}

KvRectangle& KvRectangle::translateBy(Size distance) {
  for (Point& corner : corners_) {
    corner.x += distance.width;
    corner.y += distance.height;
  }
  return *this;
}

KvRectangle& KvRectangle::divideBy(Size divisor) {
  for (Point& corner : corners_) {
    corner.x /= divisor.width;
    corner.y /= divisor.height;
  }
  return *this;
}

bool KvRectangle::isPointInside(Point point) const {
  constexpr Point farPoint{100000, 100000};
  const Line probe = detail::lineThrough(point, farPoint);
  // It would meet every side at the point's own x, which is not beyond the point. Settled here, it
  // does not cost each side a test.
  if (probe.isVertical) return false;

  int crossings = 0;
  for (std::size_t i = 0; i < corners_.size(); ++i) {
    const Side side(corners_[i], corners_[(i + 1) % corners_.size()]);
    const std::optional<Point> at = detail::intersection(side.line(), probe);
    if (!at) continue;
    if (side.reaches(*at) && side.along(*at) > side.along(point)) ++crossings;
  }
  return crossings == 1;
}

bool KvRectangle::isRectangleOutsideRectangle(const KvRectangle& other) const {
  const auto holdsCornerOf = [](const KvRectangle& shape, const KvRectangle& another) {
    return std::any_of(another.corners_.begin(), another.corners_.end(),
                       [&](Point corner) { return shape.isPointInside(corner); });
  };
  if (holdsCornerOf(other, *this) || holdsCornerOf(*this, other)) return false;

  // Shapes that cross without a corner of one in the other, like the bars of a plus sign.
  const std::array<Side, 4> sides = sidesOf(corners_);
  const std::array<Side, 4> otherSides = sidesOf(other.corners_);
  return std::none_of(sides.begin(), sides.end(), [&](const Side& side) {
    return 2 == std::count_if(otherSides.begin(), otherSides.end(),
                              [&](const Side& otherSide) { return side.crosses(otherSide); });
  });
}

KvRectangle KvRectangle::rectangleFilledWithRectRotated(Size content, Point center,
                                                        double angle) const {
  const Size base = content.width > 0 && content.height > 0
                        ? Math::makeSizeWithAspectRatioOutsideSize(content, size())
                        : Size{};
  const double turn = Math::normalizeValue(angle, 0, 2 * pi);
  if (isNear(turn, 0) || isNear(turn, pi) || isNear(turn, 2 * pi)) return KvRectangle(base);

  const Size half{base.width / 2, base.height / 2};
  const double growth = growthToCover(corners_, half, center, turn);
  const double x = std::abs(half.width) * growth;
  const double y = std::abs(half.height) * growth;
  const double radius = std::sqrt(x * x + y * y);
  const auto corner = [&](double cornerX, double cornerY) {
    const double direction = std::atan2(cornerY, cornerX) - turn;
    return Point{center.x + radius * std::cos(direction), center.y + radius * std::sin(direction)};
  };
  return {corner(-x, -y), corner(x, -y), corner(x, y), corner(-x, y)};
}

std::string KvRectangle::description() const {
  std::string text = "KvRectangle :";
  for (std::size_t i = 0; i < corners_.size(); ++i) {
    text += (i == 0 ? " p" : ", p") + std::to_string(i + 1) + " ";
    text += textOfDouble(corners_[i].x) + ", " + textOfDouble(corners_[i].y);
  }
  return text;
}

}  // namespace FrameworkUtility
