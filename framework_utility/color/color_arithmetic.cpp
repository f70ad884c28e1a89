// A colour made of another one, or of two.

#include <framework_utility/color/color.h>

#include <framework_utility/platform/graphics/unit_range.h>

#include <algorithm>
#include <cmath>

namespace FrameworkUtility {

KvColor KvColor::withAlphaComponent(double newAlpha) const { return {red, green, blue, newAlpha}; }

KvColor KvColor::addIntensity(double intensity) const {
  return {red + intensity, green + intensity, blue + intensity, alpha};
}

KvColor KvColor::greyscale() const { return withWhite((red + green + blue) / 3, alpha); }

KvColor KvColor::negative() const { return {1 - red, 1 - green, 1 - blue, alpha}; }

KvColor KvColor::getColorWithSaturationMultipliedBy(double factor) const {
  const RGB boosted = multiplySaturationOf(rgb(), factor);
  return {boosted.red, boosted.green, boosted.blue, alpha};
}

KvColor KvColor::interpolateWithColorWithColor(const KvColor& other, double value) const {
  const double t = detail::clampedToUnit(value);
  return {red + t * (other.red - red), green + t * (other.green - green),
          blue + t * (other.blue - blue), alpha + t * (other.alpha - alpha)};
}

double KvColor::intensityDifferenceWithColor(const std::optional<KvColor>& other) const {
  if (!other) return 0;
  return (std::abs(red - other->red) + std::abs(green - other->green) +
          std::abs(blue - other->blue)) /
         3;
}

void KvColor::addSaturation(double saturation, double lightness) {
  HSL hsl = getHueSaturationLightness();
  hsl.saturation = std::min(hsl.saturation + saturation, 1.0);
  hsl.lightness = std::min(hsl.lightness + lightness, 1.0);
  setHueSaturationLightness(hsl);
}

void KvColor::multiplySaturationBy(double saturation, double lightness) {
  HSL hsl = getHueSaturationLightness();
  hsl.saturation = std::min(hsl.saturation * saturation, 1.0);
  hsl.lightness = std::min(hsl.lightness * lightness, 1.0);
  setHueSaturationLightness(hsl);
}

}  // namespace FrameworkUtility
