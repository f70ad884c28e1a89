#include <framework_utility/color/color.h>

#include <framework_utility/color/color_utility.h>
#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/number_text.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/graphics/unit_range.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace FrameworkUtility {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr auto darkStyle = static_cast<std::int64_t>(UIUserInterfaceStyle::dark);

/// `component` in units of 1/`steps`, truncated towards zero. Stops the process where that is no
/// 64-bit integer.
std::int64_t truncated(double component, double steps) {
  return Number(component * steps).integerValue();
}

/// What makes a colour itself. 0.29, 0.57 and 0.58 count as a hundredth less, for their products
/// lie just below 29, 57 and 58; rounding would
/// change the identities that apps have stored.
std::array<std::int64_t, 4> identity(const KvColor& color) {
  return {truncated(color.red, 100), truncated(color.green, 100), truncated(color.blue, 100),
          truncated(color.alpha, 100)};
}

}  // namespace

KvColor::KvColor(double r, double g, double b, double a)
    : red(detail::clampedToUnit(r)),
      green(detail::clampedToUnit(g)),
      blue(detail::clampedToUnit(b)),
      alpha(detail::clampedToUnit(a)) {}

KvColor::KvColor(const RGBA& components)
    : KvColor(components.red, components.green, components.blue, components.alpha) {}

KvColor::KvColor(const UIColor& color) : KvColor(color.getRedGreenBlueAlpha()) {}

KvColor KvColor::withWhite(double white, double alpha) { return {white, white, white, alpha}; }

KvColor KvColor::withHueSaturationBrightness(double hue, double saturation, double brightness,
                                             double alpha) {
  return KvColor(UIColor::withHueSaturationBrightness(hue, saturation, brightness, alpha));
}

KvColor KvColor::withHueSaturationLightness(double hue, double saturation, double lightness,
                                            double alpha) {
  KvColor color = blackColor();
  color.setHueSaturationLightness({hue, saturation, lightness});
  color.alpha = alpha;
  return color;
}

std::optional<KvColor> KvColor::withHexString(std::string_view text) {
  const std::optional<UIColor> color = colorFromHexString(text);
  if (!color) return std::nullopt;
  return KvColor(*color);
}

KvColor KvColor::blackColor() { return {0, 0, 0}; }

KvColor KvColor::whiteColor() { return {1, 1, 1}; }

KvColor KvColor::random() { return {randomUnitReal(), randomUnitReal(), randomUnitReal()}; }

KvColor KvColor::colorForDefaultInterface(const KvColor& color,
                                          const std::optional<KvColor>& darkColor) {
  KvColor result = color.copy();
  if (darkColor) {
    result.others =
        std::make_shared<const KvColorVariants>(KvColorVariants{{darkStyle, *darkColor}});
  }
  return result;
}

KvColor KvColor::whiteColorDarkModeEnabledWithWhite(double white, double alpha) {
  return colorForDefaultInterface(withWhite(white, alpha), withWhite(1 - white, alpha));
}

std::vector<KvColor> KvColor::kvColorsWithColors(const std::vector<UIColor>& colors) {
  std::vector<KvColor> result;
  result.reserve(colors.size());
  for (const UIColor& color : colors) result.emplace_back(color);
  return result;
}

UIColor KvColor::uiColor() const {
  const UIColor plain = uiColorWithAlpha(alpha);
  if (!others) return plain;
  const auto variant = others->find(darkStyle);
  if (variant == others->end()) return plain;
  return UIColor::withDynamicProvider(
      [plain, dark = variant->second.uiColor()](const UITraitCollection& traits) {
        return traits.userInterfaceStyle == UIUserInterfaceStyle::dark ? dark : plain;
      });
}

UIColor KvColor::uiColorWithAlpha(double newAlpha) const { return {red, green, blue, newAlpha}; }

UIColor KvColor::getUIColorWithAlphaMultipliedBy(double factor) const {
  return uiColorWithAlpha(alpha * factor);
}

CGColor KvColor::cgColor() const { return {rgba()}; }

std::vector<CGColor> KvColor::cgColors(const std::vector<KvColor>& colors) {
  std::vector<CGColor> result;
  result.reserve(colors.size());
  for (const KvColor& color : colors) result.push_back(color.cgColor());
  return result;
}

CIColor KvColor::ciColor() const { return {rgba()}; }

std::string KvColor::hexStringWithoutHash() const { return hexString().substr(1); }

std::string KvColor::hexString() const {
  const std::int64_t number =
      truncated(red, 255) << 16 | truncated(green, 255) << 8 | truncated(blue, 255);
  char text[10];
  std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned>(number));
  return text;
}

std::string KvColor::identifier() const {
  const auto [r, g, b, a] = identity(*this);
  return std::to_string(r) + '.' + std::to_string(g) + '.' + std::to_string(b) + '.' +
         std::to_string(a);
}

HSL KvColor::getHueSaturationLightness() const { return rgbToHsl(rgb()); }

std::string KvColor::description() const {
  return "KvColor: r " + textOfDouble(red) + ", g " + textOfDouble(green) + ", b " +
         textOfDouble(blue) + ", a " + textOfDouble(alpha);
}

bool KvColor::isLight() const { return isLightnessLight(lightness()); }

bool KvColor::isDark() const { return lightness() < 0.3; }

bool KvColor::isVeryLight() const { return lightness() > 0.9; }

bool KvColor::isVeryDark() const { return lightness() < 0.1; }

bool KvColor::isWhite() const {
  const HSL hsl = getHueSaturationLightness();
  return hsl.lightness > 1 - epsilon && hsl.saturation < epsilon;
}

bool KvColor::isOpaque() const { return alpha > 1 - epsilon; }

bool KvColor::isNoColor() const {
  return red < epsilon && green < epsilon && blue < epsilon && alpha < epsilon;
}

bool KvColor::isLightnessLight(double lightness) { return lightness > 0.5; }

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

bool operator==(const KvColor& a, const KvColor& b) { return identity(a) == identity(b); }

bool KvColor::isEqualDiscardAlpha(const KvColor& other) const {
  const auto hundredths = [](const KvColor& color) {
    return std::array{truncated(color.red, 100), truncated(color.green, 100),
                      truncated(color.blue, 100)};
  };
  return hundredths(*this) == hundredths(other);
}

KvColor KvColor::copy() const { return {red, green, blue, alpha}; }

RGB KvColor::rgb() const { return {red, green, blue}; }

RGBA KvColor::rgba() const { return {red, green, blue, alpha}; }

double KvColor::lightness() const { return getHueSaturationLightness().lightness; }

void KvColor::setHueSaturationLightness(const HSL& color) {
  const RGB rgb = hslToRgb(color);
  red = rgb.red;
  green = rgb.green;
  blue = rgb.blue;
}

}  // namespace FrameworkUtility

std::size_t std::hash<FrameworkUtility::KvColor>::operator()(
    const FrameworkUtility::KvColor& color) const {
  return std::hash<std::string>()(color.identifier());
}
