#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>
#include <tools/kvtool/picture_file.h>

#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/imageio/type_utility.h>
#include <framework_utility/platform/foundation/path.h>

#include <cmath>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// The sixth of the hue circle that a colour is nearest to; red's without one.
SelectiveHsl nearestHue(const std::vector<KvColor>& colors) {
  const double hue = colors.empty() ? 0 : colors.front().getHueSaturationLightness().hue;
  return static_cast<SelectiveHsl>(std::lround(hue * 6) % 6 + 1);
}

/// Evenly spaced from the middle to the corners.
std::optional<UIImage> radialImage(Size size, const std::vector<KvColor>& colors) {
  KvGradient gradient(colors, GradientDirection::horizontal);
  gradient.type = KvGradientType::radial;
  gradient.startPointNormalized = {0.5, 0.5};
  return generateGradientImageOfSize(size, 1, gradient);
}

std::optional<UIImage> draw(const GradientOptions& options) {
  const Size size{static_cast<double>(options.size.first),
                  static_cast<double>(options.size.second)};
  const auto direction =
      options.isVertical ? GradientDirection::vertical : GradientDirection::horizontal;
  std::vector<KvColor> colors;
  for (const std::string& text : options.colors) {
    if (const auto color = KvColor::withHexString(text)) colors.push_back(*color);
  }
  if (options.kind == "linear") return generateGradientImageOfSize(size, direction, colors);
  if (options.kind == "radial") return radialImage(size, colors);
  if (options.kind == "conical") return conicalGradientImageWithColors(colors, size, 1);
  if (options.kind == "hue") return generateHueGradientImageOfSize(size, direction);
  if (options.kind == "lightness")
    return generateSelectiveLightnessGradientImageOfSize(size, direction);
  return selectiveHueGradientImageForType(nearestHue(colors), size, direction);
}

}  // namespace

bool writeGradient(const GradientOptions& options) {
  const std::optional<UIImage> image = draw(options);
  if (!image) {
    printProblem(options.out, "there is no memory for so large a picture");
    return false;
  }
  const UTType type = robustType(paths::pathExtension(options.out)).value_or(UTTypePNG);
  return writePicture(*image->cgImage(), type.identifier(), options.out);
}

}  // namespace kvtool
