#include <framework_utility/platform/imageio/formats/decode_request.h>

#include <framework_utility/platform/foundation/files/posix_error.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/image_source_error.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace FrameworkUtility::detail {

CGImageSourceLimits lowerLimits(const CGImageSourceLimits& a, const CGImageSourceLimits& b) {
  constexpr CGImageSourceLimits all;
  return {.mostPixels = std::min({a.mostPixels, b.mostPixels, all.mostPixels}),
          .mostMemory = std::min({a.mostMemory, b.mostMemory, all.mostMemory}),
          .mostScans = std::min({a.mostScans, b.mostScans, all.mostScans})};
}

std::nullopt_t failed(const DecodeRequest& request, const ErrorCode& code,
                      std::string_view description) {
  if (!request.error) return std::nullopt;
  Dictionary userInfo;
  userInfo.set(Key::withConstant(NSLocalizedDescriptionKey),
               description.empty() ? code.message : description);
  if (!request.path.empty()) userInfo.set(Key::withConstant(NSFilePathErrorKey), request.path);
  *request.error = Error(code.domain, code.code, std::move(userInfo));
  return std::nullopt;
}

std::nullopt_t failedForMemory(const DecodeRequest& request) {
  fail({ENOMEM, FileAccess::reading}, request.path, request.error);
  return std::nullopt;
}

bool isWithinLimits(const DecodeRequest& request, const PixelSize& size, std::uint64_t memory) {
  const auto& [mostPixels, mostMemory, mostScans] = request.limits;
  const std::uint64_t pixels = std::uint64_t{size.width} * size.height;
  if (pixels > mostPixels) {
    failed(request, CGImageSourceError::tooLarge,
           "The image has " + std::to_string(pixels) + " pixels, more than the limit of " +
               std::to_string(mostPixels) + ".");
    return false;
  }
  if (memory > mostMemory) {
    failed(request, CGImageSourceError::tooLarge,
           "The image takes " + std::to_string(memory) +
               " bytes of memory to decode, more than the limit of " + std::to_string(mostMemory) +
               ".");
    return false;
  }
  return true;
}

}  // namespace FrameworkUtility::detail
