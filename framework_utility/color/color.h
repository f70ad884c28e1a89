#pragma once

#include <framework_utility/color/hsl.h>
#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/description.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/graphics/ui_color.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

class KvColor;

/// Colours by interface style. Only `UIUserInterfaceStyle::dark`, 2, is used.
using KvColorVariants = std::map<std::int64_t, KvColor>;

/// Red, green, blue, alpha in 0...1, not premultiplied, and perhaps a variant for dark interfaces.
///
///     if (auto orange = KvColor::withHexString("#FF8000")) label.color = orange->uiColor();
///
/// A plain record: constructors and the operations that give a new colour clamp, fields do not.
/// Copying it in C++ keeps the variants, `copy()` drops them. Equal are colours whose components
/// times 100, truncated, are the same, so 0.501 and 0.509; variants do not count. Comparing,
/// hashing and the hexadecimal and identifying texts stop the process when a component is not
/// finite, or so large that its product does not fit 64 bits.
///
/// Thread: any.
class KvColor {
 public:
  double red;                                     ///< Selector: red, setRed:
  double green;                                   ///< Selector: green, setGreen:
  double blue;                                    ///< Selector: blue, setBlue:
  double alpha;                                   ///< Selector: alpha, setAlpha:
  std::shared_ptr<const KvColorVariants> others;  ///< Null when there are none.

  KvColor() = delete;

  /// Each component clamped into 0...1; NaN stays.
  /// Selector: initWithRed:green:blue:alpha:, initWithRed:green:blue:,
  /// colorWithRed:green:blue:alpha:
  KvColor(double red, double green, double blue, double alpha = 1);
  /// The components for an unspecified appearance, clamped.
  /// Selector: initWithColor:
  explicit KvColor(const UIColor& color);

  /// The grey of this lightness, clamped.
  /// Selector: initWithWhite:alpha:, colorWithWhite:alpha:
  static KvColor withWhite(double white, double alpha);
  /// The colour of `UIColor::withHueSaturationBrightness`, alpha clamped too.
  /// Selector: initWithHue:saturation:brightness:alpha:
  static KvColor withHueSaturationBrightness(double hue, double saturation, double brightness,
                                             double alpha);
  /// What `hslToRgb` gives, and alpha, neither clamped.
  /// Selector: initWithHue:saturation:lightness:alpha:, initWithHue:saturation:lightness:
  static KvColor withHueSaturationLightness(double hue, double saturation, double lightness,
                                            double alpha = 1);
  /// `colorFromHexString` with alpha 1; absent for a text of the wrong length, an empty one
  /// included.
  /// Selector: initWithHexString:
  static std::optional<KvColor> withHexString(std::string_view text);
  /// "R", "G", "B" in single precision, not clamped; where one of them is missing, "H", "S", "L",
  /// as they were written once. Alpha is 1 without "A". Absent when neither three are complete.
  /// Selector: initWithCoder:
  static std::optional<KvColor> withCoder(NSKeyedUnarchiver& coder);

  /// (0, 0, 0, 1). Selector: blackColor
  static KvColor blackColor();
  /// (1, 1, 1, 1). Selector: whiteColor
  static KvColor whiteColor();
  /// Three components uniform in 0...1, alpha 1, from the system's generator.
  /// Selector: random
  static KvColor random();
  /// `color` without its variants, and `darkColor` as its dark one when there is one.
  /// Selector: colorForDefaultInterface:darkInterface:
  static KvColor colorForDefaultInterface(const KvColor& color,
                                          const std::optional<KvColor>& darkColor);
  /// The grey, and 1 - white for dark interfaces.
  /// Selector: whiteColorDarkModeEnabledWithWhite:alpha:
  static KvColor whiteColorDarkModeEnabledWithWhite(double white, double alpha);
  /// Each colour as the constructor takes it, in order.
  /// Selector: kvColorsWithColors:
  static std::vector<KvColor> kvColorsWithColors(const std::vector<UIColor>& colors);

  /// Dynamic when there is a dark variant.
  /// Selector: uiColor
  UIColor uiColor() const;
  /// Without the variants; alpha as given.
  /// Selector: uiColorWithAlpha:
  UIColor uiColorWithAlpha(double alpha) const;
  /// Without the variants; the product is not clamped.
  /// Selector: getUIColorWithAlphaMultipliedBy:
  UIColor getUIColorWithAlphaMultipliedBy(double factor) const;
  /// The components as they are, without the variants; so are the next two.
  /// Selector: cgColor
  CGColor cgColor() const;
  /// Selector: cgColors(colors:)
  static std::vector<CGColor> cgColors(const std::vector<KvColor>& colors);
  /// Selector: ciColor
  CIColor ciColor() const;

  /// "FE0000": components times 255, truncated where the toolkit colour's text rounds. Of
  /// components outside 0...1 it shows the low 32 bits of red · 2^16 | green · 2^8 | blue.
  /// Selector: hexStringWithoutHash
  std::string hexStringWithoutHash() const;
  /// "#FE0000", likewise.
  /// Selector: hexString
  std::string hexString() const;
  /// "100.50.0.100": components times 100, truncated.
  /// Selector: identifier
  std::string identifier() const;
  /// What `rgbToHsl` gives.
  /// Selector: getHue:saturation:lightness:
  HSL getHueSaturationLightness() const;
  /// "KvColor: r 1.0, g 0.5, b 0.0, a 1.0"
  /// Selector: description
  std::string description() const;

  bool isLight() const;      ///< Lightness above 0.5. Selector: isLight
  bool isDark() const;       ///< Below 0.3: 0.3...0.5 is neither, on purpose. Selector: isDark
  bool isVeryLight() const;  ///< Above 0.9. Selector: isVeryLight
  bool isVeryDark() const;   ///< Below 0.1. Selector: isVeryDark
  /// Lightness above 1 - 2^-52 and no saturation.
  /// Selector: isWhite
  bool isWhite() const;
  bool isOpaque() const;  ///< Alpha above 1 - 2^-52. Selector: isOpaque
  /// Transparent black: all components below 2^-52, negative ones too.
  /// Selector: isNoColor
  bool isNoColor() const;
  /// Above 0.5.
  /// Selector: isLightnessLight:
  static bool isLightnessLight(double lightness);

  // Each of these gives a new, clamped colour without variants, of the same alpha unless it is
  // said.

  /// With another alpha.
  /// Selector: withAlphaComponent:, colorWithAlphaComponent:
  [[nodiscard]] KvColor withAlphaComponent(double alpha) const;
  /// Each colour component moved by `intensity`.
  /// Selector: addIntensity:
  [[nodiscard]] KvColor addIntensity(double intensity) const;
  /// The mean of the three components.
  /// Selector: greyscale
  [[nodiscard]] KvColor greyscale() const;
  /// 1 less each component.
  /// Selector: negative
  [[nodiscard]] KvColor negative() const;
  /// What `multiplySaturationOf` gives.
  /// Selector: getColorWithSaturationMultipliedBy:
  [[nodiscard]] KvColor getColorWithSaturationMultipliedBy(double factor) const;
  /// self + value (other - self), `value` clamped: 0 gives this colour, 1 the other but for
  /// rounding; alpha moves too. The opposite of the toolkit colours' `interpolateWithColor`, on
  /// purpose.
  /// Selector: interpolateWithColorWithColor:value:
  [[nodiscard]] KvColor interpolateWithColorWithColor(const KvColor& other, double value) const;
  /// The mean of the three differences; 0 without a colour.
  /// Selector: intensityDifferenceWithColor:
  double intensityDifferenceWithColor(const std::optional<KvColor>& other) const;

  /// In place. Saturation and lightness are bounded above only, as the apps' saved edits were made;
  /// a grey has hue 0, so saturation makes it red.
  /// Selector: addSaturation:lightness:
  void addSaturation(double saturation, double lightness);
  /// In place, bounded likewise.
  /// Selector: multiplySaturationBy:lightnessBy:
  void multiplySaturationBy(double saturation, double lightness);

  /// Selector: isEqual:
  friend bool operator==(const KvColor& a, const KvColor& b);
  /// Whether red, green and blue are equal likewise; alpha may be anything.
  /// Selector: isEqualDiscardAlpha:
  bool isEqualDiscardAlpha(const KvColor& other) const;
  /// Clamped, and without the variants.
  /// Selector: copyWithZone:
  KvColor copy() const;

  /// A secure keyed archive, in single precision and without the variants: 47 of the hundredths
  /// from 0 to 1 come back with another identity, bytes of 255 all with their own. Fails with
  /// `ArchiveError::archivingFailed`.
  /// Selector: archivedDataAndReturnError:
  [[nodiscard]] std::optional<Data> archivedData(Error* error = nullptr) const;
  /// Fails with `ArchiveError`: `dataIsNil`; `unarchivingFailed` for bytes that are no archive, or
  /// one of another class; `colorIsNil` for an archive of a number, or of a colour without
  /// components.
  /// Selector: unarchivedData:error:
  [[nodiscard]] static std::optional<KvColor> unarchivedData(const std::optional<Data>& data,
                                                             Error* error = nullptr);
  /// "R", "G", "B", "A" in single precision.
  /// Selector: encodeWithCoder:
  void encodeWithCoder(NSKeyedArchiver& coder) const;
  /// As archives say it.
  static std::string_view className();
  /// True at first.
  /// Selector: supportsSecureCoding
  static bool supportsSecureCoding();
  /// For the whole process: without it neither archiving nor unarchiving works.
  /// Selector: setSupportsSecureCoding:
  static void setSupportsSecureCoding(bool supported);
  /// What reading an archive allows: colours and numbers.
  /// Selector: unarchivedObjectOfClasses
  static ClassNames unarchivedObjectOfClasses();

 private:
  explicit KvColor(const RGBA& components);

  RGB rgb() const;
  RGBA rgba() const;
  double lightness() const;
  void setHueSaturationLightness(const HSL& color);
};

}  // namespace FrameworkUtility

/// That of the identifier, so equal colours have equal hashes.
/// Selector: hash
template <>
struct std::hash<FrameworkUtility::KvColor> {
  std::size_t operator()(const FrameworkUtility::KvColor& color) const;
};
