// A JPEG file from its signature to its pixels, as an app reads it.

#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <cstddef>
#include <cstdint>
#include <span>

using namespace FrameworkUtility;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto source = CGImageSource::createWithData(Data(std::as_bytes(std::span(data, size))));
  const auto properties = source->propertiesAtIndex(0);
  if (!properties) return 0;
  source->metadataBlocksAtIndex(0);
  // Large pictures take long and show nothing that small ones do not.
  const auto width = properties->get<Number>(kCGImagePropertyPixelWidth)->doubleValue();
  const auto height = properties->get<Number>(kCGImagePropertyPixelHeight)->doubleValue();
  if (width * height <= 1 << 20) {
    source->imageAtIndex(0);
    source->thumbnailAtIndex(0, {.createThumbnailWithTransform = true, .thumbnailMaxPixelSize = 7});
  }
  return 0;
}
