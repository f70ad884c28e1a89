#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/image_source.h>

#include <algorithm>
#include <cmath>

namespace FrameworkUtility {
namespace {

constexpr double thumbnailCompressionQuality = 0.95;

/// JPEG, unless the picture may be transparent.
UTType roundTripType(const UIImage& image) {
  if (!image.cgImage()) return UTTypeJPEG;
  switch (image.cgImage()->alphaInfo()) {
    case CGImageAlphaInfo::none:
    case CGImageAlphaInfo::noneSkipLast:
    case CGImageAlphaInfo::noneSkipFirst:
      return UTTypeJPEG;
    default:
      return UTTypePNG;
  }
}

}  // namespace

std::optional<UIImage> thumbnailForImageAtURL(const URL& url, Size size,
                                              const CGImageSourceLimits& limits, Error* error) {
  // Not a number where a side is none: then there is no thumbnail.
  const double side = std::isnan(size.height) ? size.height : std::max(size.width, size.height);
  const auto source = CGImageSource::createWithURL(url, {.limits = limits}, error);
  if (!source) return std::nullopt;
  const std::optional<CGImage> thumbnail =
      source->thumbnailAtIndex(0,
                               {.createThumbnailFromImageAlways = true,
                                .createThumbnailWithTransform = true,
                                .thumbnailMaxPixelSize = side},
                               error);
  if (!thumbnail) return std::nullopt;
  return UIImage(*thumbnail);
}

std::optional<UIImage> thumbnailWrittenOnDiskWithSize(const UIImage& image, Size size,
                                                      std::string_view sessionIdentifier,
                                                      Error* error) {
  KvImageMetadata metadata;
  metadata.setImageOrientation(image.imageOrientation());
  const std::optional<URL> written =
      writeToDiskWithFileName(image, std::nullopt, sessionIdentifier,
                              {.metadata = &metadata,
                               .compressionQuality = thumbnailCompressionQuality,
                               .uti = roundTripType(image)},
                              error);
  if (!written) return std::nullopt;
  std::optional<UIImage> thumbnail = thumbnailForImageAtURL(*written, size, {}, error);
  FileManager::defaultManager().removeItemAtPath(written->path().value_or(""), nullptr);
  return thumbnail;
}

}  // namespace FrameworkUtility
