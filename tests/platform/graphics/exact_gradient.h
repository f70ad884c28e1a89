#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/ui_color.h>
#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace FrameworkUtility::testing {

/// A gradient by its definition, for one pixel at a time, in long double.
struct ExactGradient {
  enum class Kind { linear, radial };

  Kind kind = Kind::linear;
  std::vector<RGBA> colors;
  std::vector<double> locations;
  Point start;  ///< Of a radial gradient the centre.
  Point end;
  double radius = 0;

  /// Where a point stands: 0 at the start, 1 at the end.
  long double positionOf(long double x, long double y) const {
    const long double fromX = x - start.x;
    const long double fromY = y - start.y;
    if (kind == Kind::radial) {
      return radius == 0 ? infinite : std::sqrt(fromX * fromX + fromY * fromY) / radius;
    }
    const long double alongX = end.x - static_cast<long double>(start.x);
    const long double alongY = end.y - static_cast<long double>(start.y);
    const long double length = alongX * alongX + alongY * alongY;
    return length == 0 ? infinite : (fromX * alongX + fromY * alongY) / length;
  }

  /// The premultiplied levels in 0...255 at a position: straight components between the last stop
  /// at or before it and the first one behind it.
  std::array<long double, 4> levelsAt(long double position) const {
    std::vector<std::size_t> order(locations.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return locations[a] < locations[b]; });
    std::size_t next = 0;
    while (next < order.size() && locations[order[next]] <= position) ++next;
    const RGBA& before = colors[order[next == 0 ? 0 : next - 1]];
    const RGBA& after = colors[order[std::min(next, order.size() - 1)]];
    long double part = 0;
    if (next > 0 && next < order.size()) {
      const long double from = locations[order[next - 1]];
      part = (position - from) / (locations[order[next]] - from);
    }
    const auto mix = [&](double RGBA::*component) {
      return before.*component +
             part * (static_cast<long double>(after.*component) - before.*component);
    };
    const long double alpha = mix(&RGBA::alpha);
    return {255 * alpha * mix(&RGBA::red), 255 * alpha * mix(&RGBA::green),
            255 * alpha * mix(&RGBA::blue), 255 * alpha};
  }

 private:
  static constexpr long double infinite = std::numeric_limits<long double>::infinity();
};

/// Expects every pixel of every `everyRow`th row, and of the last one, within one level of the
/// colour where `pointOf`, of two numbers, says that its centre is.
template <class PointOf>
void expectExactAt(const CGImage& image, const ExactGradient& gradient, const PointOf& pointOf,
                   std::size_t everyRow = 1) {
  for (std::size_t y = 0; y < image.height();
       y = std::min(y + everyRow, std::max(y + 1, image.height() - 1))) {
    for (std::size_t x = 0; x < image.width(); ++x) {
      const auto [atX, atY] =
          pointOf(static_cast<long double>(x) + 0.5L, static_cast<long double>(y) + 0.5L);
      const auto levels = gradient.levelsAt(gradient.positionOf(atX, atY));
      const auto pixel = pixelAt(image, x, y);
      long double error = 0;
      for (std::size_t c = 0; c < 4; ++c) error = std::max(error, std::abs(pixel[c] - levels[c]));
      ASSERT_LE(error, 1) << image.width() << " x " << image.height() << " at " << x << ", " << y;
    }
  }
}

/// The same where points begin at the top left.
inline void expectExact(const CGImage& image, const ExactGradient& gradient, long double scale = 1,
                        std::size_t everyRow = 1) {
  const auto pointOf = [&](long double x, long double y) {
    return std::pair(x / scale, y / scale);
  };
  expectExactAt(image, gradient, pointOf, everyRow);
}

}  // namespace FrameworkUtility::testing
