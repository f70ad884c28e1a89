#include <framework_utility/color/color.h>

#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/graphics/unit_range.h>

#include <limits>

namespace FrameworkUtility {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr auto darkStyle = static_cast<std::int64_t>(UIUserInterfaceStyle::dark);

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

HSL KvColor::getHueSaturationLightness() const { return rgbToHsl(rgb()); }

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
