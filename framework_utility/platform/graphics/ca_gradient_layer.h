#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/platform/graphics/ui_color.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

inline constexpr std::string_view kCAGradientLayerAxial = "axial";
inline constexpr std::string_view kCAGradientLayerRadial = "radial";
inline constexpr std::string_view kCAGradientLayerConic = "conic";

/// What a layer shows as its background: a record for the toolkit that draws it. Points are
/// fractions of the layer's area; without locations the colours are evenly spaced.
struct CAGradientLayer {
  std::string type{kCAGradientLayerAxial};
  std::optional<std::vector<CGColor>> colors;
  std::optional<std::vector<double>> locations;  ///< One for each colour, ascending.
  Point startPoint{0.5, 0};
  Point endPoint{0.5, 1};
};

}  // namespace FrameworkUtility
