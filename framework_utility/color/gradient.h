#pragma once

#include <framework_utility/color/color.h>
#include <framework_utility/plane/point.h>
#include <framework_utility/plane/size.h>
#include <framework_utility/platform/foundation/values/raw_value.h>
#include <framework_utility/platform/graphics/ca_gradient_layer.h>
#include <framework_utility/platform/graphics/cg_context.h>
#include <framework_utility/platform/graphics/cg_gradient.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

enum class KvGradientType : std::int64_t { linear = 0, radial = 1 };

template <>
std::optional<KvGradientType> fromRawValue<KvGradientType>(std::int64_t rawValue);
/// Selector: isLinear
bool isLinear(KvGradientType type);
/// Selector: isRadial
bool isRadial(KvGradientType type);
/// One random bit.
/// Selector: random
KvGradientType randomGradientType();

/// Where a gradient runs: to the right, or down.
enum class GradientDirection { horizontal, vertical };

/// Colours along a line, or outwards from a centre. Points are fractions of the area that is drawn
/// into. A linear gradient runs from start to end; a radial one is centred on the start and reaches
/// its last stop at the distance of the end, as it is in the area.
///
///     KvGradient({KvColor::blackColor(), KvColor::whiteColor()}, GradientDirection::vertical)
///
/// A plain record: stops are checked when it draws. A type other than the two stops the process
/// there.
///
/// Thread: any.
class KvGradient {
 public:
  KvGradientType type;          ///< Selector: type, setType:
  std::vector<KvColor> colors;  ///< Selector: colors, setColors:
  Point startPointNormalized;   ///< Selector: startPointNormalized, setStartPointNormalized:
  Point endPointNormalized;     ///< Selector: endPointNormalized, setEndPointNormalized:

  KvGradient() = delete;
  /// `locations` say where each colour stands: 0 is the start, 1 the end. They need be neither
  /// sorted nor in 0...1.
  /// Selector: initWithType:colors:locations:startPointNormalized:endPointNormalized:
  KvGradient(KvGradientType type, std::vector<KvColor> colors, std::vector<double> locations,
             Point startPointNormalized = {0, 0}, Point endPointNormalized = {1, 1});
  /// Linear, from (0, 0) to (1, 0) or (0, 1).
  /// Selector: initWithColors:locations:isVertical:
  KvGradient(std::vector<KvColor> colors, std::vector<double> locations,
             GradientDirection direction);
  /// Stops at 0, 1/(n - 1) and so on, each the sum of the one before and the step, clamped to 1.
  /// Stops the process without colours.
  /// Selector: initWithColors:isVertical:
  KvGradient(const std::vector<KvColor>& colors, GradientDirection direction);
  /// Two to six random opaque colours, evenly spaced, of a random type between random points.
  /// Selector: random
  static KvGradient random();

  /// "axial" or "radial".
  /// Selector: caType
  std::string_view caType() const;
  /// Absent when there are no colours, not one location for each, or a number is not finite.
  /// Selector: CGGradient
  std::optional<CGGradient> cgGradient() const;
  /// Fills the whole context, `size` being the area that the points are fractions of, in its
  /// points; y is not turned, so the context decides which way is down. Draws nothing when there is
  /// no `cgGradient`, a side is not above 2.2e-16, or a point is not finite.
  /// Selector: drawInContex:size:
  void drawInContex(CGContext& context, Size size) const;
  /// The layer's end point becomes start + (d, d), d the distance to the end, for both types, so
  /// that a linear gradient runs diagonally: the apps' layers have always shown it so.
  /// Selector: configureGradientLayer:
  void configureGradientLayer(CAGradientLayer& layer) const;

  /// Points within 2.2e-16, locations exactly, colours as colours are. With a point that is NaN it
  /// does not equal itself.
  /// Selector: isEqual:
  friend bool operator==(const KvGradient& a, const KvGradient& b);

 private:
  std::vector<double> locations_;
};

}  // namespace FrameworkUtility
