#pragma once

#include <framework_utility/plane/affine_transform.h>
#include <framework_utility/plane/point.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

// Where pixel centres stand along a gradient: 0 at its start, 1 at its end. In long double, and
// compared before anything is divided, so that a hard edge falls between the right two pixels.

/// Pixels of a row along which positions only rise or only fall.
struct MonotonePiece {
  std::int64_t first = 0;
  std::int64_t end = 0;
  bool rises = true;
};

/// One row of a linear gradient: the position at x is (start + step x) / whole.
struct LinearRow {
  long double start = 0;
  long double step = 0;
  long double whole = 1;  ///< Above 0, or 0 with `start` above 0: everything is beyond the end.

  bool reaches(std::int64_t x, double location) const {
    return start + step * static_cast<long double>(x) >= location * whole;
  }
  long double at(std::int64_t x) const {
    return (start + step * static_cast<long double>(x)) / whole;
  }
  /// The place where the position is `location`; not finite where it is nowhere.
  long double crossing(double location, bool) const { return (location * whole - start) / step; }

  std::array<MonotonePiece, 2> pieces(std::int64_t width) const;
};

/// What all rows of a radial gradient have in common.
struct RadialScale {
  std::array<long double, 2> step{1, 0};  ///< From a pixel to the next one of its row.
  long double stepSquared = 1;
  long double whole = 1;  ///< The length at position 1, measured as `step` is.
  long double gain = 1;  ///< What a pixel's distance from the centre, in pixels, is to be times by.
};

/// One row of a radial gradient: x is at the vector `start` + `step` x from the centre.
class RadialRow {
 public:
  RadialRow(std::array<long double, 2> start, const RadialScale& scale);

  bool reaches(std::int64_t x, double location) const;
  long double at(std::int64_t x) const;
  long double crossing(double location, bool rises) const;
  std::array<MonotonePiece, 2> pieces(std::int64_t width) const;

  // The position at x is gain times the distance sqrt((x - nearest)² + asideSquared), in pixels.

  long double nearest() const { return nearest_; }
  long double asideSquared() const { return asideSquared_; }
  long double gain() const { return scale_.gain; }

 private:
  std::array<long double, 2> start_;
  const RadialScale& scale_;
  long double nearest_;
  long double asideSquared_;
};

/// All rows of a linear gradient from `start` to `end`, points of the space that `transform` maps
/// to pixels. The two may be the same: then everything is beyond the end.
class LinearPositions {
 public:
  using Row = LinearRow;

  LinearPositions(Point start, Point end, const AffineTransform& transform);

  Row row(std::size_t y) const;
  bool changeAlongRows() const { return perX_ != 0; }
  bool changeFromRowToRow() const { return perY_ != 0; }

 private:
  long double perX_;
  long double perY_;
  long double origin_;
  long double whole_;
};

/// All rows of a radial gradient. With a radius of 0 everything is beyond the end.
class RadialPositions {
 public:
  using Row = RadialRow;

  RadialPositions(Point center, double radius, const AffineTransform& transform);

  Row row(std::size_t y) const;
  static bool changeAlongRows() { return true; }
  static bool changeFromRowToRow() { return true; }

 private:
  std::array<long double, 2> perY_;
  std::array<long double, 2> origin_;
  RadialScale scale_;
};

}  // namespace FrameworkUtility::detail
