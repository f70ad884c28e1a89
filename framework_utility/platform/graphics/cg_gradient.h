#pragma once

#include <framework_utility/platform/graphics/ui_color.h>

#include <memory>
#include <optional>
#include <vector>

namespace FrameworkUtility {

/// Colours at places along a gradient, in the device RGB space. Between two stops the straight
/// components change evenly, alpha among them, and are multiplied by alpha afterwards; beyond the
/// outermost stops their colours go on. An immutable handle.
///
/// Thread: any.
class CGGradient {
 public:
  struct Stop {
    double location = 0;  ///< 0 is the gradient's start, 1 its end.
    RGBA color;           ///< In 0...1.

    bool operator==(const Stop&) const = default;
  };

  // Copied only: a moved-from handle stays whole.
  CGGradient(const CGGradient&) = default;
  CGGradient& operator=(const CGGradient&) = default;

  /// Absent without colours, unless there is one location for each, and when a number is not
  /// finite. Components are clamped into 0...1, as the space holds no others.
  /// Platform: CGGradientCreateWithColors
  static std::optional<CGGradient> createWithColors(const std::vector<CGColor>& colors,
                                                    const std::vector<double>& locations);

  /// In the order of their locations. Stops at one place keep the order in which they were given
  /// and make a hard edge, the last one's colour starting on its far side.
  const std::vector<Stop>& stops() const& { return *stops_; }
  std::vector<Stop> stops() const&& { return *stops_; }
  bool isOpaque() const;

 private:
  explicit CGGradient(std::shared_ptr<const std::vector<Stop>> stops);

  std::shared_ptr<const std::vector<Stop>> stops_;
};

}  // namespace FrameworkUtility
