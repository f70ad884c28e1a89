#include <framework_utility/platform/graphics/ui_graphics_image_renderer.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <cmath>

namespace FrameworkUtility {

namespace {

/// 0 when a bitmap could not be so long, or the length is not a number above 0.
std::size_t pixelsOf(double points, double scale) {
  const double pixels = std::ceil(points * scale);
  return pixels > 0 && pixels <= static_cast<double>(detail::maximumPixelBytes)
             ? static_cast<std::size_t>(pixels)
             : 0;
}

}  // namespace

UIGraphicsImageRenderer::UIGraphicsImageRenderer(Size size, UIGraphicsImageRendererFormat format)
    : size_(size), format_(format) {}

std::optional<UIImage> UIGraphicsImageRenderer::imageWithActions(
    const std::function<void(CGContext&)>& actions) const {
  const double scale = format_.scale <= 0 ? application().mainScreenScale : format_.scale;
  const std::size_t width = pixelsOf(size_.width, scale);
  const std::size_t height = pixelsOf(size_.height, scale);
  const auto context = CGContext::createBitmap(
      width, height,
      format_.opaque ? CGImageAlphaInfo::noneSkipLast : CGImageAlphaInfo::premultipliedLast);
  if (!context) return std::nullopt;
  context->concatCTM({scale, 0, 0, -scale, 0, static_cast<double>(height)});
  actions(*context);
  const std::optional<CGImage> image = context->createImage();
  return image ? std::optional(UIImage(*image, scale)) : std::nullopt;
}

}  // namespace FrameworkUtility
