#include <framework_utility/platform/imageio/formats/image_codec.h>

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_codec.h>
#include <framework_utility/platform/imageio/formats/png/png_codec.h>

#include <array>

namespace FrameworkUtility::detail {

std::span<const ImageCodec* const> imageCodecs() {
  static const std::array<const ImageCodec*, 2> codecs = {&jpegCodec(), &pngCodec()};
  return codecs;
}

bool cannotEncode(std::string_view why, Error* error) {
  if (error) {
    *error = Error(NSCocoaErrorDomain, NSFileWriteUnknownError, {{NSLocalizedDescriptionKey, why}});
  }
  return false;
}

}  // namespace FrameworkUtility::detail
