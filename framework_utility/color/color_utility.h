#pragma once

#include <framework_utility/color/color.h>
#include <framework_utility/color/hsl.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/ui_color.h>

#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

// Operations on the toolkit's colours. Of a dynamic colour they take the components for an
// unspecified appearance, and what they give is plain. Components are not clamped unless it is
// said.
//
// Thread: any.

/// "#RRGGBB" or "RRGGBB". Absent unless the text is 7 UTF-16 units long with a "#", 6 without, and
/// for bytes that are not UTF-8. After "#" it is read as one hexadecimal number: leading white
/// space and line breaks and then "0x" are skipped, digits end at the first other character, and no
/// digit is 0. So " FF800" is 0FF800 and "orange" black. Selector: colorFromHexString:alpha:,
/// colorFromHexString:
std::optional<UIColor> colorFromHexString(std::string_view text, double alpha = 1);
/// "#FF0000": components times 255 in single precision, rounded to nearest where `KvColor`
/// truncates. Stops the process when a component is not finite or its product does not fit 64 bits.
/// Selector: hexString
std::string hexString(const UIColor& color);
/// The components, clamped.
/// Selector: kvColor
KvColor kvColor(const UIColor& color);
/// Three or four numbers in 0...255, or texts of them: decimal digits with an optional sign and
/// point, and nothing else. Absent for anything else in the list.
/// Selector: colorWithArray:
std::optional<UIColor> colorWithArray(const Array& components);
/// A hexadecimal text, a text of three or four numbers with one white-space character between each
/// two, or a list of them; absent for anything else. A text that can be hexadecimal is, so "1 2 34"
/// is 000001.
/// Selector: colorWithObject:
std::optional<UIColor> colorWithObject(const std::optional<Value>& object);
/// Components of at most 254/255: of 255 levels one is drawn, from 0, and divided by 255.
/// Selector: randomColor, randomColorWithAlpha:
UIColor randomColor(double alpha = 1);

/// `ratio` weights `color`, the opposite of `KvColor::interpolateWithColorWithColor`, on purpose:
/// at most 2^-52 gives `other`, at least 1 - 2^-52 gives `color`, each as it is, dynamic or not.
/// Absent without another colour.
/// Selector: interpolateWithColor:ratio:
std::optional<UIColor> interpolateWithColor(const UIColor& color,
                                            const std::optional<UIColor>& other, double ratio);
/// first · ratio + second · (1 - ratio), at any ratio.
/// Selector: interpolateColorR1:g1:b1:a1:r2:g2:b2:a2:ratio:
RGBA interpolateColor(const RGBA& first, const RGBA& second, double ratio);
/// 1 less each colour component; alpha is kept.
/// Selector: colorInverted
UIColor colorInverted(const UIColor& color);
/// Each colour component moved by `intensity` and clamped into 0...1; alpha is kept.
/// Selector: addIntensity:
UIColor addIntensity(const UIColor& color, double intensity);
/// Alpha of at most 2^-52.
/// Selector: isClearColor
bool isClearColor(const UIColor& color);
/// Alpha of at least 1, where `KvColor` takes 2^-52 less.
/// Selector: isOpaque
bool isOpaque(const UIColor& color);

/// What `multiplySaturationOf` gives; alpha is kept.
/// Selector: multiplySaturationBy:
UIColor multiplySaturationBy(const UIColor& color, double multiplier);
/// What `hslToRgb` gives, with this alpha.
/// Selector: hslToUIColor:s:l:alpha:
UIColor hslToUIColor(const HSL& color, double alpha);

}  // namespace FrameworkUtility
