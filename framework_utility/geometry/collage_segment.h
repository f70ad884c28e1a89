#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/platform/foundation/values/description.h>

#include <optional>
#include <string>

namespace FrameworkUtility {

/// The straight line that a border of a collage cell lies on, and the two points that it was made
/// from. The line goes on beyond both.
///
///       · · · p1 ─────────×──────── p2 · · ·     × is locatePointOnStart(d) and
///              |←── d ──→|                         locatePointOnEndWithD(length - d)
///
/// It is y = a x + b, or x = c where it is vertical: where the points are nearer than 1e-7 in x.
/// All other tests use the machine epsilon, 2^-52 or 2.2e-16, which is absolute here, whatever the
/// size of the numbers. Coordinates and distances are in points, y grows downwards.
///
/// A plain record once made: changing a field recomputes nothing, neither the length nor the line.
/// To move the points make a new one. What is not finite gives what is not finite.
///
/// Thread: any.
class KvCollageSegment {
 public:
  // A line made from coefficients has both points at (0, 0) and the length 0.
  Point p1;         ///< Selector: p1, setP1:
  Point p2;         ///< Selector: p2, setP2:
  double length;    ///< From p1 to p2 when made. Selector: length, setLength:
  bool isVertical;  ///< Selector: isVertical, setIsVertical:

  KvCollageSegment() = delete;

  /// Two equal points make a vertical line.
  /// Selector: initWithPoint1:point2:
  KvCollageSegment(Point point1, Point point2);

  /// The line with these coefficients: `c` counts for a vertical one, `a` and `b` for the others.
  /// Selector: initWithVertical:pa:pb:pc:
  static KvCollageSegment withVertical(bool isVertical, double a, double b, double c);

  /// The parallel line through `point`, made from coefficients.
  /// Selector: parallele:
  KvCollageSegment parallele(Point point) const;

  /// The perpendicular line through `point`, made from coefficients. It is vertical where this
  /// line's slope is below the machine epsilon.
  /// Selector: perpandiculaire:
  KvCollageSegment perpandiculaire(Point point) const;

  /// Where the two infinite lines meet. Absent for two vertical lines and where the slopes differ
  /// by no more than the machine epsilon, coinciding lines included; the apps' interface gives
  /// (0, 0) and raises a flag instead.
  /// Selector: intersectionPointWithSegment:noIntersection:
  std::optional<Point> intersectionPointWithSegment(const KvCollageSegment& other) const;

  /// Whether `point` is on the infinite line: nearer than the machine epsilon, along y or, for a
  /// vertical line, along x. So tight that in practice only points computed on the line itself
  /// pass, such as a cell's corners.
  /// Selector: containsPoint:
  bool containsPoint(Point point) const;

  /// The point at `distance` from p1 towards p2, beyond either end too. A vertical line needs no
  /// length: it goes down where p1 is above p2, else up. Any other one of length 0 gives NaN.
  /// Selector: locatePointOnStart:
  Point locatePointOnStart(double distance) const;

  /// The point at `distance` from p2 towards p1, likewise.
  /// Selector: locatePointOnEndWithD:
  Point locatePointOnEndWithD(double distance) const;

  /// "KvCollageSegment: ", then points and length, coefficients, or both: coefficients that are all
  /// zero are left out, points that are all zero otherwise. Numbers have one decimal.
  /// Selector: description
  std::string description() const;

 private:
  double a_;
  double b_;
  double c_;
};

}  // namespace FrameworkUtility
