#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/plane/size.h>

#include <iosfwd>

namespace FrameworkUtility {

/// A rect with sides along the axes. A negative side is read as the standardised rect; a rect is
/// empty when a side is exactly 0, and an empty rect contains nothing.
struct Rect {
  Point origin;
  Size size;

  constexpr Rect() = default;
  constexpr Rect(Point at, Size of) : origin(at), size(of) {}
  constexpr Rect(double x, double y, double width, double height)
      : origin{x, y}, size{width, height} {}

  /// `size` at (0, 0).
  /// Selector: rect(size:)
  static constexpr Rect rect(Size size) { return {Point{}, size}; }

  /// The rect spanned by two opposite corners, in any order.
  /// Selector: rect(point1:point2:)
  static constexpr Rect rect(Point point1, Point point2);

  constexpr double minX() const;
  constexpr double midX() const;
  constexpr double maxX() const;
  constexpr double minY() const;
  constexpr double midY() const;
  constexpr double maxY() const;
  constexpr double width() const;   ///< Never negative; `size.width` is the stored side.
  constexpr double height() const;  ///< Never negative; `size.height` is the stored side.

  constexpr bool isEmpty() const { return size.width == 0 || size.height == 0; }

  /// minX <= x < maxX and minY <= y < maxY: the near edges belong to the rect, the far ones do not.
  constexpr bool contains(Point point) const;

  /// The stored origin and the absolute sides, each rounded, halves away from zero.
  [[nodiscard]] Rect rounded() const;

  bool operator==(const Rect&) const = default;
};

/// "{{1.5, 2}, {30, 40}}", as `NSStringFromCGRect` writes it: origin and size as stored.
std::ostream& operator<<(std::ostream& out, const Rect& rect);

// Implementation details

constexpr Rect Size::rect() const { return Rect::rect(*this); }

constexpr double Rect::minX() const { return size.width < 0 ? origin.x + size.width : origin.x; }
constexpr double Rect::minY() const { return size.height < 0 ? origin.y + size.height : origin.y; }
constexpr double Rect::maxX() const { return size.width < 0 ? origin.x : origin.x + size.width; }
constexpr double Rect::maxY() const { return size.height < 0 ? origin.y : origin.y + size.height; }
constexpr double Rect::midX() const { return origin.x + size.width * 0.5; }
constexpr double Rect::midY() const { return origin.y + size.height * 0.5; }
constexpr double Rect::width() const { return size.width < 0 ? -size.width : size.width; }
constexpr double Rect::height() const { return size.height < 0 ? -size.height : size.height; }

constexpr bool Rect::contains(Point point) const {
  return !isEmpty() && minX() <= point.x && point.x < maxX() && minY() <= point.y &&
         point.y < maxY();
}

constexpr Rect Rect::rect(Point point1, Point point2) {
  const Point low{point1.x < point2.x ? point1.x : point2.x,
                  point1.y < point2.y ? point1.y : point2.y};
  const Point high{point1.x < point2.x ? point2.x : point1.x,
                   point1.y < point2.y ? point2.y : point1.y};
  return {low, Size{high.x - low.x, high.y - low.y}};
}

}  // namespace FrameworkUtility
