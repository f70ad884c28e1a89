#pragma once

#include <framework_utility/plane/point.h>

#include <iosfwd>

namespace FrameworkUtility {

struct Rect;

/// Two lengths. They may be zero or negative: nothing here clamps them.
struct Size {
  double width = 0;
  double height = 0;

  static const Size one;  ///< Both sides 1.

  /// Both sides the largest finite double, not the IEEE infinity, so that sums stay numbers.
  static const Size infinite;

  /// Both sides rounded, halves away from zero.
  [[nodiscard]] Size rounded() const;
  [[nodiscard]] Size ceiled() const;
  [[nodiscard]] Size floored() const;

  /// Both sides less `value`.
  /// Selector: minus(_:)
  [[nodiscard]] constexpr Size minus(double value) const { return {width - value, height - value}; }

  /// Both sides times `factor`.
  /// Selector: multiply(by:)
  [[nodiscard]] constexpr Size multiplyBy(double factor) const {
    return {factor * width, factor * height};
  }

  constexpr Point center() const { return {width * 0.5, height * 0.5}; }

  /// The distance from the centre to a corner. Half the diagonal, and spelt so, in the apps'
  /// interface.
  double diagonalLenght() const;

  /// Width and height exchanged.
  [[nodiscard]] constexpr Size inverted() const { return {height, width}; }

  /// This size at the origin.
  constexpr Rect rect() const;

  bool operator==(const Size&) const = default;
};

/// "{30, 40}": width and height.
std::ostream& operator<<(std::ostream& out, Size size);

inline constexpr Size Size::one{1, 1};
inline constexpr Size Size::infinite{1.7976931348623157e308, 1.7976931348623157e308};

}  // namespace FrameworkUtility

#include <framework_utility/plane/rect.h>  // the body of Size::rect
