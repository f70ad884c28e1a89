#pragma once

#include <framework_utility/platform/graphics/cg_gradient.h>
#include <framework_utility/platform/graphics/gradient_positions.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace FrameworkUtility::detail {

/// Rows of 8-bit red, green, blue, alpha that somebody is about to write, top first.
struct PixelRows {
  std::uint8_t* pixels = nullptr;
  std::size_t width = 0;
  std::size_t height = 0;
  std::size_t bytesPerRow = 0;

  std::uint8_t* row(std::size_t y) const { return pixels + y * bytesPerRow; }
};

/// The colours between two stops, as straight lines over the part of the way between them.
struct GradientSegment {
  std::array<double, 4> from{};    ///< Red, green, blue in 0...255, alpha in 0...1.
  std::array<double, 4> change{};  ///< All the way.
  // The part at a position is start + position times gain.
  long double start = 0;
  long double gain = 0;
  bool isOpaque = true;
};

/// A gradient laid over pixels: each gets the colour at its centre, premultiplied and rounded to
/// nearest. Every row is cut into runs between two stops, and each run is filled by one loop.
class GradientFill {
 public:
  // Absent where there is nothing that could be drawn: a number is not finite, or the transform
  // from points to pixels has no inverse.

  static std::optional<GradientFill> linear(const CGGradient& gradient, Point start, Point end,
                                            const AffineTransform& transform);
  static std::optional<GradientFill> radial(const CGGradient& gradient, Point center, double radius,
                                            const AffineTransform& transform);

  void fill(const PixelRows& rows) const;
  /// `pixels` pixels of row `y`.
  void fillRow(std::size_t y, std::uint8_t* row, std::size_t pixels) const;

 private:
  using Positions = std::variant<LinearPositions, RadialPositions>;

  GradientFill(const CGGradient& gradient, const Positions& positions);

  CGGradient gradient_;
  std::vector<GradientSegment> segments_;  // the one before stop i at i; of the first stop none
  Positions positions_;
};

}  // namespace FrameworkUtility::detail
