// Strips from edge to edge: any colours, all hues, the hues about one, lightness.

#include <framework_utility/color/even_locations.h>
#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/platform/foundation/values/stop.h>

#include <array>
#include <cmath>

namespace FrameworkUtility {

namespace {

/// At least one point; NaN stays, and is refused later.
double usableSide(double side) { return side < 1 ? 1 : side; }

}  // namespace

std::optional<UIImage> generateGradientImageOfSize(Size size, GradientDirection direction,
                                                   const std::vector<KvColor>& colors,
                                                   const std::vector<double>& locations) {
  const Size rounded{usableSide(std::round(size.width)), usableSide(std::round(size.height))};
  const Point end =
      direction == GradientDirection::vertical ? Point{0, rounded.height} : Point{rounded.width, 0};
  return generateGradientImageOfSize(rounded, 0, colors, locations, {0, 0}, end);
}

std::optional<UIImage> generateGradientImageOfSize(Size size, GradientDirection direction,
                                                   const std::vector<KvColor>& colors) {
  if (colors.empty()) stop("generateGradientImageOfSize: there are no colours to space evenly");
  return generateGradientImageOfSize(size, direction, colors, detail::evenLocations(colors.size()));
}

std::optional<UIImage> generateHueGradientImageOfSize(Size size, GradientDirection direction,
                                                      double saturation, double brightness) {
  std::vector<KvColor> colors;
  for (int i = 0; i <= 10; ++i) {
    colors.push_back(KvColor::withHueSaturationBrightness(i / 10.0, saturation, brightness, 1));
  }
  // Tenths, not sums of a tenth.
  return generateGradientImageOfSize(size, direction, colors,
                                     {0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1});
}

std::optional<UIImage> generateSelectiveLightnessGradientImageOfSize(Size size,
                                                                     GradientDirection direction) {
  return generateGradientImageOfSize(size, direction,
                                     {KvColor::blackColor(), KvColor::whiteColor()}, {0, 1});
}

template <>
std::optional<SelectiveHsl> fromRawValue<SelectiveHsl>(std::int64_t rawValue) {
  if (rawValue < 1 || rawValue > 6) return std::nullopt;
  return static_cast<SelectiveHsl>(rawValue);
}

std::vector<KvColor> colorsForGradientOfSelectiveHue(SelectiveHsl hue) {
  const auto rawValue = static_cast<std::int64_t>(hue);
  if (!fromRawValue<SelectiveHsl>(rawValue)) {
    stop("colorsForGradientOfSelectiveHue: the raw value is not in 1...6");
  }
  const double center = static_cast<double>(rawValue - 1) / 6;
  std::vector<KvColor> colors;
  for (const double turn : {0.5, 4.0 / 6, 5.0 / 6, 0.0, 1.0 / 6, 2.0 / 6, 0.5}) {
    colors.push_back(KvColor::withHueSaturationBrightness(std::fmod(center + turn, 1.0), 1, 1, 1));
  }
  return colors;
}

std::optional<UIImage> selectiveHueGradientImageForType(SelectiveHsl hue, Size size,
                                                        GradientDirection direction) {
  return generateGradientImageOfSize(size, direction, colorsForGradientOfSelectiveHue(hue));
}

}  // namespace FrameworkUtility
