// A BMP file from its signature to its pixels.

#include <framework_utility/platform/imageio/formats/bmp/bmp_format.h>
#include <framework_utility/platform/imageio/row_decoding.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>

using namespace FrameworkUtility;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Data file(std::as_bytes(std::span(data, size)));
  const auto reader = detail::bmpFormat.open(detail::ByteSource(file));
  if (reader->count() == 0) return 0;
  const auto header = reader->headerAt(0);
  // Large pictures take long and show nothing that small ones do not.
  constexpr std::size_t largest = std::size_t{1} << 20;
  const bool isLarge = header->size.width > largest / header->size.height;
  const detail::DecodeRequest request{.limits = {.mostPixels = isLarge ? largest : largest * 2}};
  const std::optional<CGImage> image = detail::decodedImage(*reader, 0, request);
  if (image.has_value() != detail::decodedReducedImage(*reader, 0, 7, request).has_value()) {
    std::abort();
  }
  if (image &&
      (isLarge || image->width() != header->size.width || image->height() != header->size.height ||
       header->hasAlpha != (image->alphaInfo() == CGImageAlphaInfo::last))) {
    std::abort();
  }
  return 0;
}
