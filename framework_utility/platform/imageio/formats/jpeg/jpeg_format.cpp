#include <framework_utility/platform/imageio/formats/jpeg/jpeg_format.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_encode.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_rows.h>
#include <framework_utility/platform/imageio/formats/single_image.h>

namespace FrameworkUtility::detail {

namespace {

constinit const UTType types[] = {UTType{"public.jpeg"}};

/// SOI and the beginning of another marker.
bool sniff(std::span<const std::byte> beginning) {
  return beginning.size() >= 3 && beginning[0] == std::byte{0xFF} &&
         beginning[1] == std::byte{0xD8} && beginning[2] == std::byte{0xFF};
}

std::unique_ptr<ImageReader> open(const ByteSource& source) {
  return std::make_unique<SingleImageReader>(UTTypeJPEG.identifier(), source, readJpegHeader,
                                             jpegRows);
}

std::unique_ptr<ImageWriter> create(std::string_view, std::size_t) {
  return std::make_unique<SingleImageWriter>(encodeJpeg);
}

}  // namespace

constinit const ImageFormat jpegFormat{types, sniff, open, create};

}  // namespace FrameworkUtility::detail
