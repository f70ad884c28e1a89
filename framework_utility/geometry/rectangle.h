#pragma once

#include <framework_utility/geometry/collage_segment.h>
#include <framework_utility/plane/point.h>
#include <framework_utility/plane/rect.h>
#include <framework_utility/plane/size.h>
#include <framework_utility/platform/foundation/values/description.h>

#include <array>
#include <string>

namespace FrameworkUtility {

/// A shape of four corners, used as a rect that may be turned: a crop area, or the frame of a
/// turned picture that must cover it.
///
///              p1
///             ╱   ╲               The corners go clockwise on the screen, where y grows downwards,
///           ╱       ╲             and begin at the top left one of the upright shape. p1-p2 is the
///         p4          p2          width, p2-p3 the height. Angles are in radians; positive ones
///           ╲       ╱             turn clockwise.
///             ╲   ╱
///              p3
///
/// It is taken to be convex, which nothing checks. What is not finite gives what is not finite, or
/// an answer of no meaning.
///
/// Thread: any.
class KvRectangle {
 public:
  KvRectangle() = delete;

  /// Selector: initWithP1:p2:p3:p4:
  KvRectangle(Point p1, Point p2, Point p3, Point p4) : corners_{p1, p2, p3, p4} {}

  /// The upright rect at (0, 0).
  /// Selector: initWithSize:
  explicit KvRectangle(Size size) : KvRectangle(Rect::rect(size)) {}

  /// The sides are used as stored, not made positive.
  /// Selector: initWithRect:
  explicit KvRectangle(const Rect& rect);

  /// The upright rect at (0, 0), turned about its centre by `angle`.
  /// Selector: initWithSize:angle:
  KvRectangle(Size size, double angle);

  Point p1() const { return corners_[0]; }  ///< Selector: p1
  Point p2() const { return corners_[1]; }  ///< Selector: p2
  Point p3() const { return corners_[2]; }  ///< Selector: p3
  Point p4() const { return corners_[3]; }  ///< Selector: p4

  /// The smallest rect along the axes that holds the corners.
  /// Selector: bounds
  Rect bounds() const;

  /// The distances p1-p2 and p2-p3.
  /// Selector: size
  Size size() const;

  /// p1 to p4.
  /// Selector: points
  std::array<Point, 4> points() const { return corners_; }

  /// p1-p2, p2-p3, p3-p4, p4-p1.
  /// Selector: segments
  std::array<KvCollageSegment, 4> segments() const;

  /// Moves every corner, in place, and gives this shape back.
  /// Selector: translateBy:
  KvRectangle& translateBy(Size distance);

  /// Divides every corner, x by the width and y by the height, in place, and gives this shape back:
  /// from pixels to units of a picture.
  /// Selector: divideBy:
  KvRectangle& divideBy(Size divisor);

  /// Whether the line from `point` on towards (100000, 100000), to the lower right, crosses exactly
  /// one side.
  ///
  ///     ┌────────┐
  ///     │  ×     │  ×       Each side is without its start and with its end, so that a line
  ///     │    ╲   │    ╲     through a corner crosses one of the two sides there.
  ///     └──────╲─┘      ╲
  ///
  /// So of an upright shape the top and the left border are inside, the others not, and p1 is the
  /// only corner. One crossing counts, not an odd number, for a convex shape has at most two. So a
  /// line that only grazes p2 or p4 from outside counts as a crossing ((0, 0) is "inside" the rect
  /// (10, 0, 10, 10)), a point at x = 100000 is inside of nothing, and farther right the line leads
  /// away from (100000, 100000), where upright borders may be missed.
  /// Selector: isPointInside:
  bool isPointInside(Point point) const;

  /// Whether the two shapes lie apart: no corner of either is inside the other, and no side of this
  /// one crosses exactly two sides of the other, ends included. Shapes that touch may count as
  /// apart or not, and shapes apart as not apart where `isPointInside` is grazed.
  /// Selector: isRectangleOutsideRectangle:
  bool isRectangleOutsideRectangle(const KvRectangle& other) const;

  /// How large a picture must be shown, turned about `center`, to leave no corner of this shape
  /// empty: the smallest rect of the proportions of `content`, centred at `center` and turned by
  /// -`angle`, that holds this shape's corners.
  ///
  ///              . · ' p2
  ///    p1 · '┌──────────┐        p1 to p4 are the result's corners, for an angle above 0. It may
  ///      .   │   this   │ .      also be smaller than the upright cover.
  ///       .  │  shape   │  .
  ///        . └──────────┘. · p3  For 0, π, 2π and what steps of 2π bring there (only the very
  ///         p4 · '               double within 2.2e-16) it is the upright cover at (0, 0), not
  ///                              centred and not grown: nothing turns.
  ///
  /// The corners are projected along slopes of tan(angle) and its inverse: within some 1e-13 of a
  /// multiple of a quarter turn, but not at it, those are too steep for the result to be exact, or
  /// of any use within 1e-15. A side of `content` that is not above 0 gives corners at (0, 0) for
  /// the angles above, and NaN for all others.
  /// Selector: rectangleFilledWithRectRotated:rotationCenter:rotationAngle:
  KvRectangle rectangleFilledWithRectRotated(Size content, Point center, double angle) const;

  /// "KvRectangle : p1 0.0, 0.0, p2 …", each number with the digits that read back as it is.
  /// Selector: description
  std::string description() const;

 private:
  std::array<Point, 4> corners_;
};

}  // namespace FrameworkUtility
