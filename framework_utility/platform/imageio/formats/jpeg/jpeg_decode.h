#pragma once

#include <framework_utility/platform/imageio/formats/image_codec.h>

#include <cstddef>
#include <optional>

namespace FrameworkUtility::detail {

/// Grey, RGB with a skipped fourth byte, or CMYK, each of 8 bits a component, in the space of the
/// file's profile where that fits them. Absent when pixels are damaged, cut off or beyond the
/// limits and for 12 bits a component.
std::optional<CGImage> decodeJpeg(const ByteSource& source, const ImageHeader& header,
                                  const DecodeRequest& request = {});

/// The same reduced so that no side exceeds `maxPixelSize`. Nothing of the full size is ever held,
/// but for the coefficients of files of several scans.
std::optional<CGImage> decodeJpegReduced(const ByteSource& source, const ImageHeader& header,
                                         std::size_t maxPixelSize,
                                         const DecodeRequest& request = {});

}  // namespace FrameworkUtility::detail
