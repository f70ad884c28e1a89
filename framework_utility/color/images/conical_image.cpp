// Conical gradients, and the two rules that they go by.

#include <framework_utility/color/images/conical_rows.h>
#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <cmath>
#include <numbers>

namespace FrameworkUtility {

namespace {

/// 0 when a bitmap could not be so long; stops the process when it is no 64-bit integer.
std::size_t pixelsOf(double points, double scale) {
  const std::int64_t pixels = Number(std::round(points * scale)).integerValue();
  return pixels > 0 && pixels <= static_cast<std::int64_t>(detail::maximumPixelBytes)
             ? static_cast<std::size_t>(pixels)
             : 0;
}

}  // namespace

std::optional<UIImage> conicalGradientImageWithColors(const std::vector<KvColor>& colors, Size size,
                                                      double scale) {
  if (colors.empty() || !(size.width > 0) || !(size.height > 0)) return std::nullopt;
  const std::size_t width = pixelsOf(size.width, scale);
  const std::size_t height = pixelsOf(size.height, scale);
  std::optional<detail::PixelBuffer> pixels = detail::PixelBuffer::allocate(height, 4 * width);
  if (!pixels) return std::nullopt;

  std::vector<KvColor> closed = colors;
  closed.push_back(colors.front());
  const detail::ConicalRows rows(std::move(closed), width, height);
  for (std::size_t y = 0; y < height; ++y) rows.fillRow(y, pixels->row(y));

  CGImageLayout layout;
  layout.width = width;
  layout.height = height;
  layout.bytesPerRow = 4 * width;
  const std::optional<CGImage> image =
      CGImage::create(layout, CGColorSpace::createDeviceRGB(), std::move(*pixels).share());
  return image ? std::optional(UIImage(*image, scale)) : std::nullopt;
}

std::optional<UIImage> conicalGradientImageWithSize(Size size, double scale) {
  const KvColor blue(51.0 / 255, 172.0 / 255, 201.0 / 255);
  const KvColor red(214.0 / 255, 77.0 / 255, 73.0 / 255);
  return conicalGradientImageWithColors({blue, red}, size, scale);
}

std::optional<UIImage> conicalGradientImageWithSize(Size size) {
  return conicalGradientImageWithSize(size, application().mainScreenScale);
}

std::optional<UIImage> conicalGradientImage() { return conicalGradientImageWithSize({40, 40}); }

std::optional<KvColor> interpolatedColor(double position, const std::vector<KvColor>& colors,
                                         const std::vector<double>& locations) {
  if (colors.empty()) return std::nullopt;
  if (colors.size() == 1) return colors.front();
  if (locations.size() > colors.size()) stop("interpolatedColor: a location has no color");
  const KvColor* lower = &colors.front();
  const KvColor* upper = &colors.back();
  double lowerLocation = 0;
  double upperLocation = 1;
  for (std::size_t i = 0; i < locations.size(); ++i) {
    const double location = locations[i];
    if (lowerLocation < location && location <= position) {
      lower = &colors[i];
      lowerLocation = location;
    }
    if (location < upperLocation && location >= position) {
      upper = &colors[i];
      upperLocation = location;
    }
  }
  const double part = lowerLocation == upperLocation
                          ? 0
                          : (position - lowerLocation) / (upperLocation - lowerLocation);
  return lower->interpolateWithColorWithColor(*upper, part);
}

double conicalGradientStop(Point pixel, Size size) {
  constexpr double turn = 2 * std::numbers::pi;
  // The angle of three o'clock: 0 for any size that a picture has.
  const bool isPlain = size.width > 0 && std::isfinite(size.height);
  const double reference = isPlain ? 0 : std::atan2(size.height * 0, size.width * 0.5);
  const double angle =
      std::atan2(pixel.y - size.height * 0.5, pixel.x - size.width * 0.5) - reference;
  return (angle < 0 ? angle + turn : angle) / turn;
}

}  // namespace FrameworkUtility
