#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace FrameworkUtility {

/// Components in 0...1, not premultiplied.
struct RGBA {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  bool operator==(const RGBA&) const = default;
};

enum class UIUserInterfaceStyle : std::int64_t { unspecified = 0, light = 1, dark = 2 };

/// What a colour may depend on where it is shown.
struct UITraitCollection {
  UIUserInterfaceStyle userInterfaceStyle = UIUserInterfaceStyle::unspecified;

  bool operator==(const UITraitCollection&) const = default;
};

/// A colour in the generic RGB space, which is sRGB. Components are kept as given, beyond 0...1
/// too.
struct CGColor {
  RGBA components;

  bool operator==(const CGColor&) const = default;
};

/// A Core Image colour, components as given.
struct CIColor {
  RGBA components;

  bool operator==(const CIColor&) const = default;
};

/// The toolkit's colour: four components, or a provider that chooses a colour for an appearance. An
/// immutable handle.
///
///     const auto ink = UIColor::withDynamicProvider([=](const UITraitCollection& traits) {
///       return traits.userInterfaceStyle == UIUserInterfaceStyle::dark ? chalk : coal;
///     });
///
/// Thread: any; a provider is called by the thread that asks.
class UIColor {
 public:
  /// The components are not clamped.
  /// Selector: colorWithRed:green:blue:alpha:
  UIColor(double red, double green, double blue, double alpha);
  explicit UIColor(const RGBA& components);
  // Copied only: a moved-from handle stays whole.
  UIColor(const UIColor&) = default;
  UIColor& operator=(const UIColor&) = default;

  /// Hue, saturation and brightness are clamped into 0...1, and a hue of 1 is red as 0 is: the
  /// hexcone model (A. R. Smith, Color Gamut Transform Pairs, 1978). One that is NaN gives NaN
  /// where a component depends on it.
  /// Selector: colorWithHue:saturation:brightness:alpha:
  static UIColor withHueSaturationBrightness(double hue, double saturation, double brightness,
                                             double alpha);
  /// Stops the process without a provider.
  /// Selector: colorWithDynamicProvider:
  static UIColor withDynamicProvider(std::function<UIColor(const UITraitCollection&)> provider);

  /// The components, of a dynamic colour those for an unspecified appearance.
  /// Selector: getRed:green:blue:alpha:
  RGBA getRedGreenBlueAlpha() const;
  /// A colour that depends on nothing any more, for providers may give dynamic colours. Stops the
  /// process where these never end.
  /// Selector: resolvedColorWithTraitCollection:
  UIColor resolvedColorWithTraitCollection(const UITraitCollection& traits) const;

  /// The same components; a dynamic colour is equal only to its own copies.
  friend bool operator==(const UIColor& a, const UIColor& b);

 private:
  struct Contents;
  explicit UIColor(std::shared_ptr<const Contents> contents);

  std::shared_ptr<const Contents> contents_;
};

}  // namespace FrameworkUtility
