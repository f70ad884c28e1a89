#include <framework_utility/platform/imageio/embedded_image.h>

#include <framework_utility/platform/imageio/image_formats.h>
#include <framework_utility/platform/imageio/metadata/exif/embedded_thumbnail.h>
#include <framework_utility/platform/imageio/row_decoding.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace FrameworkUtility::detail {

namespace {

/// Whether a thumbnail shows the whole image and no more. Many cameras pad theirs with black to
/// 160 x 120.
bool hasShapeOf(const PixelSize& thumbnail, const PixelSize& image) {
  const double width = static_cast<double>(thumbnail.height) * static_cast<double>(image.width) /
                       static_cast<double>(image.height);
  return std::abs(width - static_cast<double>(thumbnail.width)) <= 1;
}

}  // namespace

std::optional<CGImage> embeddedThumbnailImage(const ImageHeader& image, std::size_t maxPixelSize,
                                              const CGImageSourceLimits& limits) {
  const Data bytes = Data::withBytesNoCopy(embeddedThumbnail(image.blocks.exif),
                                           std::make_shared<const Data>(image.blocks.exif));
  const ImageFormat* format = imageFormatOf(bytes);
  if (!format) return std::nullopt;
  const std::unique_ptr<ImageReader> reader = format->open(ByteSource(bytes));
  if (reader->count() == 0) return std::nullopt;
  const PixelSize size = reader->headerAt(0)->size;
  if (std::max(size.width, size.height) < maxPixelSize || !hasShapeOf(size, image.size)) {
    return std::nullopt;
  }
  return decodedReducedImage(*reader, 0, maxPixelSize, {.limits = limits});
}

}  // namespace FrameworkUtility::detail
