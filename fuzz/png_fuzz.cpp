// A PNG file from its signature to its pixels, and what was read of it written and read again.

#include <framework_utility/platform/imageio/formats/png/png_codec.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>
#include <vector>

using namespace FrameworkUtility;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const detail::ByteSource source(Data(std::as_bytes(std::span(data, size))));
  const detail::ImageCodec& codec = detail::pngCodec();
  const detail::ImageHeader header = codec.readHeader(source);
  // Large pictures take long and show nothing that small ones do not.
  constexpr std::size_t largest = std::size_t{1} << 20;
  if (header.status != CGImageSourceStatus::complete || header.width > largest / header.height) {
    return 0;
  }
  codec.decodeReduced(source, header, 7, {});
  const std::optional<CGImage> image = codec.decode(source, header, {});
  if (!image) return 0;

  detail::EncodeRequest request;
  request.iccProfile = header.iccProfile;
  request.properties = header.formatProperties;
  request.blocks = header.blocks;
  std::vector<std::byte> written;
  if (!codec.encode(*image, request, written, nullptr)) std::abort();
  const detail::ByteSource again{Data(std::move(written))};
  const detail::ImageHeader other = codec.readHeader(again);
  if (other.status != CGImageSourceStatus::complete || other.width != header.width ||
      other.height != header.height || other.blocks.exif != header.blocks.exif ||
      other.blocks.xmp != header.blocks.xmp || !codec.decode(again, other, {})) {
    std::abort();
  }
  return 0;
}
