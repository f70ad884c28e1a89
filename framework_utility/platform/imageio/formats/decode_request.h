#pragma once

#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/imageio/image_source.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace FrameworkUtility::detail {

/// What a decoder may take, and where it says why there is no image. The same for all formats.
struct DecodeRequest {
  CGImageSourceLimits limits = {};
  std::string_view path = {};  ///< Of the file, for the error; empty for bytes.
  Error* error = nullptr;
};

/// How the description of `CGImageSourceError::corruptFile` reads where bytes are missing.
inline constexpr std::string_view cutOff = "The file is cut off.";

/// The lower ones, and none above the default.
CGImageSourceLimits lowerLimits(const CGImageSourceLimits& a, const CGImageSourceLimits& b);

/// The way out of a decoder: fills the request's error, with the code's message unless there is
/// more to say. `return failed(request, CGImageSourceError::corruptFile);`
std::nullopt_t failed(const DecodeRequest& request, const ErrorCode& code,
                      std::string_view description = {});
std::nullopt_t failedForMemory(const DecodeRequest& request);

/// Whether an image of this size may be decoded, for which `memory` bytes are needed at once: the
/// result, the rows on their way, and what the codec keeps. Asked before anything is allocated;
/// when not, the error says by how much.
bool isWithinLimits(const DecodeRequest& request, const PixelSize& size, std::uint64_t memory);

}  // namespace FrameworkUtility::detail
