// A PNG file from its signature to its pixels, and what was read of it written and read again.

#include <framework_utility/platform/imageio/formats/png/png_format.h>
#include <framework_utility/platform/imageio/row_decoding.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

using namespace FrameworkUtility;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto open = [](Data file) {
    return detail::pngFormat.open(detail::ByteSource(std::move(file)));
  };
  const auto reader = open(Data(std::as_bytes(std::span(data, size))));
  if (reader->count() == 0) return 0;
  const auto header = reader->headerAt(0);
  // Large pictures take long and show nothing that small ones do not.
  constexpr std::size_t largest = std::size_t{1} << 20;
  if (header->size.width > largest / header->size.height) return 0;
  detail::decodedReducedImage(*reader, 0, 7, {});
  const std::optional<CGImage> image = detail::decodedImage(*reader, 0, {});
  if (!image) return 0;

  detail::EncodeRequest request;
  request.iccProfile = header->iccProfile;
  request.properties = header->formatProperties;
  request.blocks = header->blocks;
  std::vector<std::byte> written;
  const auto writer = detail::pngFormat.create("public.png", 1);
  if (!writer->addImage(*image, request) || !writer->finish({}, written)) std::abort();
  const auto again = open(Data(std::move(written)));
  const auto other = again->headerAt(0);
  if (again->count() == 0 || other->size != header->size ||
      other->blocks.exif != header->blocks.exif || other->blocks.xmp != header->blocks.xmp ||
      !detail::decodedImage(*again, 0, {})) {
    std::abort();
  }
  return 0;
}
