#pragma once

#include <framework_utility/color/color.h>
#include <framework_utility/color/gradient.h>
#include <framework_utility/plane/point.h>
#include <framework_utility/plane/size.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/raw_value.h>
#include <framework_utility/platform/graphics/ui_image.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace FrameworkUtility {

// New images of gradients. Sizes and points are in points of the image, y downwards; `scale` is
// pixels a point, 0 or less being the main screen's. No image when there are no colours, not one
// location for each, a rounded side is below one point or not a number, a location, point or
// component is not finite, or there is no memory for so many pixels; nothing else reports it. The
// image is opaque, and so without alpha, when every colour is. Thread: any.

/// From `startPoint` to `endPoint` and beyond both; where they are the same, the last colour.
/// Selector: generateGradientImageOfSize:scale:colors:locations:startPoint:endPoint:
std::optional<UIImage> generateGradientImageOfSize(Size size, double scale,
                                                   const std::vector<KvColor>& colors,
                                                   const std::vector<double>& locations,
                                                   Point startPoint, Point endPoint);
/// The same as JPEG at quality 0.7, on purpose not the writers' 0.85.
/// Selector: generateGradientJpgDataOfSize:scale:colors:locations:startPoint:endPoint:
std::optional<Data> generateGradientJpgDataOfSize(Size size, double scale,
                                                  const std::vector<KvColor>& colors,
                                                  const std::vector<double>& locations,
                                                  Point startPoint, Point endPoint);
/// Reaches half the diagonal of the rounded size from `centerPoint`. `radiusPoint` is ignored, on
/// purpose.
/// Selector: generateRadialGradientImageOfSize:scale:colors:locations:centerPoint:radiusPoint:
std::optional<UIImage> generateRadialGradientImageOfSize(Size size, double scale,
                                                         const std::vector<KvColor>& colors,
                                                         const std::vector<double>& locations,
                                                         Point centerPoint, Point radiusPoint);
/// The gradient's points are fractions of `size` as given. A radial gradient reaches half the
/// diagonal; its end point does not count.
/// Selector: generateGradientImageOfSize:scale:gradient:
std::optional<UIImage> generateGradientImageOfSize(Size size, double scale,
                                                   const KvGradient& gradient);

// Strips run from edge to edge at the main screen's scale and are at least one point wide and high.

/// Selector: generateGradientImageOfSize:vertical:colors:locations:
std::optional<UIImage> generateGradientImageOfSize(Size size, GradientDirection direction,
                                                   const std::vector<KvColor>& colors,
                                                   const std::vector<double>& locations);
/// Evenly spaced as in `KvGradient`. Stops the process without colours.
/// Selector: generateGradientImageOfSize:vertical:colors:
std::optional<UIImage> generateGradientImageOfSize(Size size, GradientDirection direction,
                                                   const std::vector<KvColor>& colors);
/// Every hue, in eleven stops; saturation and brightness in 0...1, as in
/// `KvColor::withHueSaturationBrightness`.
/// Selector: generateHueGradientImageOfSize:vertical:saturation:brightness:,
/// generateHueGradientImageOfSize:vertical:
std::optional<UIImage> generateHueGradientImageOfSize(Size size, GradientDirection direction,
                                                      double saturation = 1, double brightness = 1);
/// Black to white.
/// Selector: generateSelectiveLightnessGradientImageOfSize:vertical:
std::optional<UIImage> generateSelectiveLightnessGradientImageOfSize(Size size,
                                                                     GradientDirection direction);

/// A sixth of the hue circle, by its middle: (raw value - 1) times 60 degrees.
enum class SelectiveHsl : std::int64_t {
  red = 1,
  yellow = 2,
  green = 3,
  cyan = 4,
  blue = 5,
  magenta = 6,
};

template <>
std::optional<SelectiveHsl> fromRawValue<SelectiveHsl>(std::int64_t rawValue);

/// Seven hues from the opposite one through `hue` back to it, 60 degrees apart. Stops the process
/// at a raw value outside 1...6.
/// Selector: colorsForGradientOfSelectiveHue:
std::vector<KvColor> colorsForGradientOfSelectiveHue(SelectiveHsl hue);
/// A strip of those colours, evenly spaced.
/// Selector: selectiveHueGradientImageForType:size:vertical:
std::optional<UIImage> selectiveHueGradientImageForType(SelectiveHsl hue, Size size,
                                                        GradientDirection direction);

// Conical gradients are computed for each pixel's top left corner and not its centre, rounded down
// and always opaque: alpha is 255, and the colours' own alpha does not count.

/// Clockwise from three o'clock through the colours, evenly spaced, back to the first. Each side
/// has the rounded product of its points and `scale` as pixels; no image when one is below 1.
/// Stops the process where such a product does not fit 64 bits, or a colour is met that is not
/// finite.
/// Selector: conicalGradientImageWithColors:size:scale:
std::optional<UIImage> conicalGradientImageWithColors(const std::vector<KvColor>& colors, Size size,
                                                      double scale);
/// From blue, (51, 172, 201) / 255, to red, (214, 77, 73) / 255.
/// Selector: conicalGradientImageWithSize:scale:
std::optional<UIImage> conicalGradientImageWithSize(Size size, double scale);
/// At the main screen's scale.
/// Selector: conicalGradientImageWithSize:
std::optional<UIImage> conicalGradientImageWithSize(Size size);
/// 40 by 40 points.
/// Selector: conicalGradientImage
std::optional<UIImage> conicalGradientImage();

/// The colour at `position`, the first colour standing at 0 and the last at 1 whatever their
/// locations; of stops at one place the first is used, on both sides, unlike in a drawn gradient.
/// Absent without colours. With two colours or more, stops the process when there are more
/// locations.
/// Selector: interpolatedColor:colors:locations:
std::optional<KvColor> interpolatedColor(double position, const std::vector<KvColor>& colors,
                                         const std::vector<double>& locations);
/// The turn of a pixel about the centre of `size`, in 0...1 from three o'clock, growing with y: so
/// clockwise.
/// Selector: conicalGradientStop:size:
double conicalGradientStop(Point pixel, Size size);

}  // namespace FrameworkUtility
