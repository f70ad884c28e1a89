#include <framework_utility/color/color_utility.h>

#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/graphics/unit_range.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace FrameworkUtility {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

/// As 64-bit steps of 1/255. Stops the process where it is none: before the conversion to single
/// precision, which cannot hold every double.
unsigned long long roundedByte(double component) {
  const double product = component * 255;
  (void)Number(product).integerValue();
  const float rounded = std::round(static_cast<float>(product));
  return static_cast<unsigned long long>(Number(rounded).integerValue());
}

UIColor withAlpha(const RGB& color, double alpha) {
  return {color.red, color.green, color.blue, alpha};
}

}  // namespace

std::string hexString(const UIColor& color) {
  const RGBA c = color.getRedGreenBlueAlpha();
  char text[3 * 16 + 2];
  std::snprintf(text, sizeof text, "#%02llX%02llX%02llX", roundedByte(c.red), roundedByte(c.green),
                roundedByte(c.blue));
  return text;
}

KvColor kvColor(const UIColor& color) { return KvColor(color); }

UIColor randomColor(double alpha) {
  const auto component = [] { return randomUnsignedInteger() % 255 / 255.0; };
  return {component(), component(), component(), alpha};
}

std::optional<UIColor> interpolateWithColor(const UIColor& color,
                                            const std::optional<UIColor>& other, double ratio) {
  if (!other || ratio <= epsilon) return other;
  if (ratio >= 1 - epsilon) return color;
  return UIColor(
      interpolateColor(color.getRedGreenBlueAlpha(), other->getRedGreenBlueAlpha(), ratio));
}

RGBA interpolateColor(const RGBA& first, const RGBA& second, double ratio) {
  const auto mixed = [ratio](double a, double b) { return a * ratio + b * (1 - ratio); };
  return {mixed(first.red, second.red), mixed(first.green, second.green),
          mixed(first.blue, second.blue), mixed(first.alpha, second.alpha)};
}

UIColor colorInverted(const UIColor& color) {
  const RGBA c = color.getRedGreenBlueAlpha();
  return {1 - c.red, 1 - c.green, 1 - c.blue, c.alpha};
}

UIColor addIntensity(const UIColor& color, double intensity) {
  const RGBA c = color.getRedGreenBlueAlpha();
  return {detail::clampedToUnit(c.red + intensity), detail::clampedToUnit(c.green + intensity),
          detail::clampedToUnit(c.blue + intensity), c.alpha};
}

bool isClearColor(const UIColor& color) { return color.getRedGreenBlueAlpha().alpha <= epsilon; }

bool isOpaque(const UIColor& color) { return color.getRedGreenBlueAlpha().alpha >= 1; }

UIColor multiplySaturationBy(const UIColor& color, double multiplier) {
  const RGBA c = color.getRedGreenBlueAlpha();
  return withAlpha(multiplySaturationOf({c.red, c.green, c.blue}, multiplier), c.alpha);
}

UIColor hslToUIColor(const HSL& color, double alpha) { return withAlpha(hslToRgb(color), alpha); }

}  // namespace FrameworkUtility
