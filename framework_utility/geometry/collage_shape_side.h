#pragma once

#include <framework_utility/geometry/collage_segment.h>
#include <framework_utility/plane/point.h>

#include <optional>

namespace FrameworkUtility {

/// One side of a polygonal collage cell. From its line it derives the two lines that drawing the
/// cell takes: the side moved inward by the border's thickness, and the bisector of the corner
/// where the side begins.
///
///      p1 ───────────────────────── p2
///      │ ╲           ↕ thickness
///      │   ╲┌──────────────────────  parallele
///      │    │╲
///      │    │  ╲  bissectrice
///      │    │
///   previous side     × averagePoint
///
/// A layout makes a side from each corner to the next, sets every `averagePoint`, then calculates
/// border and bisector of each. The inner polygon's corners are where the `parallele` lines of
/// neighbours meet. Coordinates are in points, y grows downwards; the sides may go round the cell
/// either way.
///
/// A plain record: setting a field recomputes nothing. What is not finite gives what is not finite.
///
/// Thread: any.
class KvCollageShapeSide {
 public:
  /// The side's line. Selector: segment, setSegment:
  std::optional<KvCollageSegment> segment;

  /// A point inside the cell, typically the mean of its corners: where inward is. (0, 0) until it
  /// is set. Selector: averagePoint, setAveragePoint:
  Point averagePoint;

  /// The side's line moved towards `averagePoint`; made by `calculateBorderWithThickness`.
  /// Selector: parallele, setParallele:
  std::optional<KvCollageSegment> parallele;

  /// The bisector of the corner at p1; made by `calculateBissectrice`.
  /// Selector: bissectrice, setBissectrice:
  std::optional<KvCollageSegment> bissectrice;

  /// Half the angle of the corner at p1, in radians: 0 until `calculateBissectrice`.
  /// Selector: bissectriceAngle, setBissectriceAngle:
  double bissectriceAngle = 0;

  KvCollageShapeSide() = delete;

  /// The side from `point1` to `point2`.
  /// Selector: initWithPoint1:point2:
  KvCollageShapeSide(Point point1, Point point2);

  /// The side on the line with these coefficients, as `KvCollageSegment::withVertical` takes them.
  /// Its ends are (0, 0), so that is where a bisector starts.
  /// Selector: initWithVertical:pa:pb:pc:
  static KvCollageShapeSide withVertical(bool isVertical, double a, double b, double c);

  /// Moves the side's line by `thickness` towards `averagePoint`, which gives `parallele`; a
  /// negative thickness moves it away. Without a `segment` nothing happens. Where `averagePoint`
  /// lies on the line itself, the line moves up.
  /// Selector: calculateBorderWithThickness:
  void calculateBorderWithThickness(double thickness);

  /// Halves the corner that this side makes with the previous one, which ends where this one
  /// starts; gives `bissectrice` and `bissectriceAngle`. Both come from the chord between the
  /// points half a unit from the corner on either side. Without a `segment` in either side nothing
  /// happens. Where the sides share no corner the chord may be longer than 1: the angle is NaN.
  /// Selector: calculateBissectrice:
  void calculateBissectrice(const KvCollageShapeSide& previous);

 private:
  KvCollageShapeSide(Point point1, Point point2, const KvCollageSegment& line);

  Point p1_;
  Point p2_;
};

}  // namespace FrameworkUtility
