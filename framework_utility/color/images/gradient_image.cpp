// Linear and radial gradients.

#include <framework_utility/color/images/gradient_image.h>

#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/graphics/ui_graphics_image_renderer.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <algorithm>
#include <cmath>

namespace FrameworkUtility {

namespace {

constexpr double jpegQuality = 0.7;

bool isFinite(Point point) { return std::isfinite(point.x) && std::isfinite(point.y); }

std::optional<CGGradient> cgGradient(const std::vector<KvColor>& colors,
                                     const std::vector<double>& locations) {
  return CGGradient::createWithColors(KvColor::cgColors(colors), locations);
}

/// What all of these images are: `draw(context, size)` on `size` rounded, opaque when `colors` are.
template <class Draw>
std::optional<UIImage> imageOfSize(Size size, double scale, const std::vector<KvColor>& colors,
                                   const Draw& draw) {
  const Size rounded = size.rounded();
  const bool isOpaque = std::all_of(colors.begin(), colors.end(),
                                    [](const KvColor& color) { return color.isOpaque(); });
  return UIGraphicsImageRenderer(rounded, {.scale = scale, .opaque = isOpaque})
      .imageWithActions([&](CGContext& context) { draw(context, rounded); });
}

std::optional<UIImage> linearImage(Size size, double scale, const std::vector<KvColor>& colors,
                                   const std::optional<CGGradient>& gradient, Point start,
                                   Point end) {
  if (!gradient || !isFinite(start) || !isFinite(end)) return std::nullopt;
  return imageOfSize(size, scale, colors, [&](CGContext& context, Size) {
    context.drawLinearGradient(*gradient, start, end);
  });
}

std::optional<UIImage> radialImage(Size size, double scale, const std::vector<KvColor>& colors,
                                   const std::optional<CGGradient>& gradient, Point center) {
  if (!gradient || !isFinite(center)) return std::nullopt;
  return imageOfSize(size, scale, colors, [&](CGContext& context, Size rounded) {
    context.drawRadialGradient(*gradient, center, rounded.diagonalLenght());
  });
}

Point scaled(Point point, Size size) { return {point.x * size.width, point.y * size.height}; }

}  // namespace

std::optional<UIImage> generateGradientImageOfSize(Size size, double scale,
                                                   const std::vector<KvColor>& colors,
                                                   const std::vector<double>& locations,
                                                   Point startPoint, Point endPoint) {
  return linearImage(size, scale, colors, cgGradient(colors, locations), startPoint, endPoint);
}

std::optional<Data> generateGradientJpgDataOfSize(Size size, double scale,
                                                  const std::vector<KvColor>& colors,
                                                  const std::vector<double>& locations,
                                                  Point startPoint, Point endPoint) {
  const std::optional<UIImage> image =
      generateGradientImageOfSize(size, scale, colors, locations, startPoint, endPoint);
  return image ? UIImageJPEGRepresentation(*image, jpegQuality) : std::nullopt;
}

std::optional<UIImage> generateRadialGradientImageOfSize(Size size, double scale,
                                                         const std::vector<KvColor>& colors,
                                                         const std::vector<double>& locations,
                                                         Point centerPoint, Point) {
  return radialImage(size, scale, colors, cgGradient(colors, locations), centerPoint);
}

std::optional<UIImage> generateGradientImageOfSize(Size size, double scale,
                                                   const KvGradient& gradient) {
  const Point start = scaled(gradient.startPointNormalized, size);
  switch (gradient.type) {
    case KvGradientType::linear:
      return linearImage(size, scale, gradient.colors, gradient.cgGradient(), start,
                         scaled(gradient.endPointNormalized, size));
    case KvGradientType::radial:
      return radialImage(size, scale, gradient.colors, gradient.cgGradient(), start);
  }
  stop("generateGradientImageOfSize: the gradient's type is neither linear nor radial");
}

}  // namespace FrameworkUtility
