#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/fail.h>
#include <framework_utility/platform/graphics/exif_orientation.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

namespace FrameworkUtility {

std::optional<UIImage> imageWithContentsOfFile(std::string_view path, Error* error) {
  const auto source = CGImageSource::createWithURL(URL::fileURLWithPath(path), {}, error);
  return source ? imageWithImageSource(*source, error) : std::nullopt;
}

std::optional<UIImage> imageWithData(const Data& data, Error* error) {
  return imageWithImageSource(*CGImageSource::createWithData(data), error);
}

std::optional<UIImage> imageWithImageSource(const CGImageSource& source, Error* error) {
  const std::optional<CGImage> image = source.imageAtIndex(0, error);
  if (!image) return std::nullopt;
  const Dictionary properties = source.propertiesAtIndex(0).value_or(Dictionary());
  const Number* orientation = properties.get<Number>(kCGImagePropertyOrientation);
  return UIImage(*image, 1, detail::imageOrientation(orientation ? orientation->doubleValue() : 1));
}

std::optional<Data> UIImageJPEGRepresentation(const UIImage& image, double quality, Error* error) {
  if (!image.cgImage()) {
    return detail::fail(error, {NSCocoaErrorDomain, NSFileWriteUnknownError, {}},
                        "the picture has no bitmap");
  }
  const auto destination = CGImageDestination::createInMemory(UTTypeJPEG.identifier(), 1);
  const std::uint32_t orientation = detail::exifOrientation(image.imageOrientation()).value_or(1);
  destination->addImage(*image.cgImage(), {{kCGImageDestinationLossyCompressionQuality, quality},
                                           {kCGImagePropertyOrientation, orientation}});
  return destination->finalize(error) ? destination->data() : std::nullopt;
}

}  // namespace FrameworkUtility
