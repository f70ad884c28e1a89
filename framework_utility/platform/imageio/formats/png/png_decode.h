#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/image_codec.h>

#include <cstddef>
#include <optional>

namespace FrameworkUtility::detail {

/// All that the file has: 8 or 16 bits, straight alpha. What a palette stands for takes its place.
std::optional<CGImage> decodePng(const ByteSource& source, const ImageHeader& header,
                                 const DecodeRequest& request);

/// 8-bit grey or RGBA with premultiplied alpha; only an interlaced picture is ever held whole.
std::optional<CGImage> decodePngReduced(const ByteSource& source, const ImageHeader& header,
                                        std::size_t maxPixelSize, const DecodeRequest& request);

}  // namespace FrameworkUtility::detail
