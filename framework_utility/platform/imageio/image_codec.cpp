#include <framework_utility/platform/imageio/image_codec.h>

#include <framework_utility/platform/imageio/jpeg_codec.h>

#include <array>

namespace FrameworkUtility::detail {

std::span<const ImageCodec* const> imageCodecs() {
  static const std::array<const ImageCodec*, 1> codecs = {&jpegCodec()};
  return codecs;
}

}  // namespace FrameworkUtility::detail
