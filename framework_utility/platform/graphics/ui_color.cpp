#include <framework_utility/platform/graphics/ui_color.h>

#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/graphics/unit_range.h>

#include <cmath>
#include <utility>

namespace FrameworkUtility {

namespace {

/// The hue's circle in six sectors: in each, one component is the brightness, one the least, and
/// one goes from the one to the other.
RGBA rgbaOf(double hue, double saturation, double brightness, double alpha) {
  const double place = hue * 6;
  const double sector = std::floor(place);
  const double way = place - sector;
  const double least = brightness * (1 - saturation);
  const double falling = brightness * (1 - way * saturation);
  const double rising = brightness * (1 - (1 - way) * saturation);
  if (std::isnan(hue)) return {falling, falling, falling, alpha};
  if (sector == 1) return {falling, brightness, least, alpha};
  if (sector == 2) return {least, brightness, rising, alpha};
  if (sector == 3) return {least, falling, brightness, alpha};
  if (sector == 4) return {rising, least, brightness, alpha};
  if (sector == 5) return {brightness, least, falling, alpha};
  return {brightness, rising, least, alpha};  // 0, and 6 for a hue of 1
}

}  // namespace

struct UIColor::Contents {
  RGBA components;
  std::function<UIColor(const UITraitCollection&)> provider;  // empty for a plain colour
};

UIColor::UIColor(std::shared_ptr<const Contents> contents) : contents_(std::move(contents)) {}

UIColor::UIColor(double red, double green, double blue, double alpha)
    : UIColor(RGBA{red, green, blue, alpha}) {}

UIColor::UIColor(const RGBA& components)
    : UIColor(std::make_shared<const Contents>(Contents{components, nullptr})) {}

UIColor UIColor::withHueSaturationBrightness(double hue, double saturation, double brightness,
                                             double alpha) {
  return UIColor(rgbaOf(detail::clampedToUnit(hue), detail::clampedToUnit(saturation),
                        detail::clampedToUnit(brightness), alpha));
}

UIColor UIColor::withDynamicProvider(std::function<UIColor(const UITraitCollection&)> provider) {
  if (!provider) stop("UIColor: a dynamic colour needs a provider");
  return UIColor(std::make_shared<const Contents>(Contents{{}, std::move(provider)}));
}

RGBA UIColor::getRedGreenBlueAlpha() const {
  return resolvedColorWithTraitCollection({}).contents_->components;
}

UIColor UIColor::resolvedColorWithTraitCollection(const UITraitCollection& traits) const {
  constexpr int most = 64;  // no app nests its colours as deep: a provider gives itself
  UIColor color = *this;
  for (int depth = 0; color.contents_->provider; ++depth) {
    if (depth == most) stop("UIColor: providers give dynamic colours without an end");
    color = color.contents_->provider(traits);
  }
  return color;
}

bool operator==(const UIColor& a, const UIColor& b) {
  return a.contents_ == b.contents_ || (!a.contents_->provider && !b.contents_->provider &&
                                        a.contents_->components == b.contents_->components);
}

}  // namespace FrameworkUtility
