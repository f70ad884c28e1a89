// The operations of UIImage that read or write files; the rest stands beside its header.

#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/formats/image_codec.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace FrameworkUtility {

namespace {

/// By EXIF number less 1.
constexpr std::array orientations = {UIImageOrientation::up,
                                     UIImageOrientation::upMirrored,
                                     UIImageOrientation::down,
                                     UIImageOrientation::downMirrored,
                                     UIImageOrientation::leftMirrored,
                                     UIImageOrientation::right,
                                     UIImageOrientation::rightMirrored,
                                     UIImageOrientation::left};

UIImageOrientation orientationIn(const Dictionary& properties) {
  const Number* number = properties.get<Number>(kCGImagePropertyOrientation);
  const double exif = number ? number->doubleValue() : 1;
  return exif >= 1 && exif <= 8 ? orientations[static_cast<std::size_t>(exif) - 1]
                                : UIImageOrientation::up;
}

std::int64_t exifNumber(UIImageOrientation orientation) {
  const auto* found = std::find(orientations.begin(), orientations.end(), orientation);
  return found == orientations.end() ? 1 : std::distance(orientations.begin(), found) + 1;
}

}  // namespace

std::optional<UIImage> detail::uiImageFrom(const CGImageSource& source, Error* error) {
  const std::optional<CGImage> image = source.imageAtIndex(0, error);
  if (!image) return std::nullopt;
  return UIImage(*image, 1, orientationIn(source.propertiesAtIndex(0).value_or(Dictionary())));
}

std::optional<UIImage> UIImage::withContentsOfFile(std::string_view path, Error* error) {
  const auto source = CGImageSource::createWithURL(URL::fileURLWithPath(path), {}, error);
  return source ? detail::uiImageFrom(*source, error) : std::nullopt;
}

std::optional<UIImage> UIImage::withData(const Data& data, Error* error) {
  return detail::uiImageFrom(*CGImageSource::createWithData(data), error);
}

std::optional<Data> UIImageJPEGRepresentation(const UIImage& image, double quality, Error* error) {
  const std::unique_ptr<CGImageDestination> destination =
      CGImageDestination::createInMemory(UTTypeJPEG.identifier(), 1);
  if (!image.cgImage() || !destination) {
    detail::cannotEncode("the picture has no bitmap", error);
    return std::nullopt;
  }
  destination->addImage(*image.cgImage(),
                        {{kCGImageDestinationLossyCompressionQuality, quality},
                         {kCGImagePropertyOrientation, exifNumber(image.imageOrientation())}});
  return destination->finalize(error) ? destination->data() : std::nullopt;
}

}  // namespace FrameworkUtility
