#pragma once

namespace FrameworkUtility {

// Hue, saturation and lightness by the double hexcone (G. H. Joblove and D. Greenberg, Color Spaces
// for Computer Graphics, 1978). Components are taken and given as they are, never clamped.
//
// Thread: any.

/// All in 0...1; a hue of 0 is red, 1/3 green, 2/3 blue. Greys have hue 0.
struct HSL {
  double hue = 0;
  double saturation = 0;
  double lightness = 0;

  bool operator==(const HSL&) const = default;
};

/// All in 0...1.
struct RGB {
  double red = 0;
  double green = 0;
  double blue = 0;

  bool operator==(const RGB&) const = default;
};

/// Of components in 0...1, all three in 0...1.
/// Selector: rgbToHsl:green:blue:hue:saturation:lightness:
HSL rgbToHsl(const RGB& color);
/// Three times the lightness for a saturation below 2^-52. A hue outside -2/3...5/3 is not brought
/// back onto the circle.
/// Selector: hslToRgb:saturation:lightness:red:green:blue:
RGB hslToRgb(const HSL& color);

/// The saturation boost: min(s + m s (1 - s), 1), which moves pale and full colours least.
/// Selector: saturation:multipliedBy:
double saturationMultipliedBy(double saturation, double multiplier);
/// The colour with its saturation boosted.
/// Selector: multiplySaturationOf:green:blue:multiplier:
RGB multiplySaturationOf(const RGB& color, double multiplier);

}  // namespace FrameworkUtility
