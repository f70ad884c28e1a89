#pragma once

#include <framework_utility/platform/foundation/values/failure.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/imageio/formats/image_reader.h>
#include <framework_utility/platform/imageio/image_source_limits.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace FrameworkUtility::detail {

// From a format's rows to an image: limits, profiles, reduction and turning, once for all formats.

/// What decoding may take, and where it says why there is no image.
struct DecodeRequest {
  CGImageSourceLimits limits = {};
  std::string_view path = {};  ///< Of the file, for the error; empty for bytes.
  Error* error = nullptr;
};

/// How the description of `CGImageSourceError::corruptFile` reads where bytes are missing.
inline constexpr std::string_view cutOff = "The file is cut off.";

/// The lower ones, and none above the default.
CGImageSourceLimits lowerLimits(const CGImageSourceLimits& a, const CGImageSourceLimits& b);

/// Fills the request's error, with the code's message unless there is more to say.
/// `return failed(request, CGImageSourceError::corruptFile);`
Failure failed(const DecodeRequest& request, const ErrorCode& code,
               std::string_view description = {});

// Absent when the pixels are damaged, cut off or beyond the limits, which are asked before anything
// is allocated, and when memory is short.

/// All that the file has of it, in the space of its profile where that fits the components.
std::optional<CGImage> decodedImage(const ImageReader& reader, std::size_t index,
                                    const DecodeRequest& request);
/// Reduced so that no side exceeds `maxPixelSize`, never enlarged: 8 bits, alpha premultiplied. The
/// whole picture is held only where the codec gives its rows all at once.
std::optional<CGImage> decodedReducedImage(const ImageReader& reader, std::size_t index,
                                           std::size_t maxPixelSize, const DecodeRequest& request);
/// The picture as it looks upright.
std::optional<CGImage> turnedImage(const CGImage& image, std::size_t exifOrientation,
                                   const DecodeRequest& request);

}  // namespace FrameworkUtility::detail
