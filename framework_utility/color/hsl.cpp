#include <framework_utility/color/hsl.h>

#include <algorithm>
#include <limits>

namespace FrameworkUtility {

namespace {

/// One component: `hue` is that of the colour, moved by a third for red and for blue.
double channel(double p, double q, double hue) {
  if (hue < 0) hue += 1;
  if (hue > 1) hue -= 1;
  if (hue < 1.0 / 6) return p + (q - p) * 6 * hue;
  if (hue < 1.0 / 2) return q;
  if (hue < 2.0 / 3) return p + (q - p) * (2.0 / 3 - hue) * 6;
  return p;
}

}  // namespace

HSL rgbToHsl(const RGB& color) {
  const auto [r, g, b] = color;
  const double max = std::max({r, g, b});
  const double min = std::min({r, g, b});
  const double lightness = (max + min) / 2;
  if (max == min) return {0, 0, lightness};

  const double d = max - min;
  const double saturation = lightness > 0.5 ? d / (2 - max - min) : d / (max + min);
  // In this order, so that of two equal components the first decides.
  if (max == r) return {((g - b) / d + (g < b ? 6 : 0)) / 6, saturation, lightness};
  if (max == g) return {((b - r) / d + 2) / 6, saturation, lightness};
  return {((r - g) / d + 4) / 6, saturation, lightness};
}

RGB hslToRgb(const HSL& color) {
  const auto [h, s, l] = color;
  if (s < std::numeric_limits<double>::epsilon()) return {l, l, l};
  const double q = l < 0.5 ? l * (1 + s) : l + s - l * s;
  const double p = 2 * l - q;
  return {channel(p, q, h + 1.0 / 3), channel(p, q, h), channel(p, q, h - 1.0 / 3)};
}

double saturationMultipliedBy(double saturation, double multiplier) {
  const double s = saturation * 255;
  return std::min((s + (s / 255) * ((255 - s) * multiplier)) / 255, 1.0);
}

RGB multiplySaturationOf(const RGB& color, double multiplier) {
  HSL hsl = rgbToHsl(color);
  hsl.saturation = saturationMultipliedBy(hsl.saturation, multiplier);
  return hslToRgb(hsl);
}

}  // namespace FrameworkUtility
