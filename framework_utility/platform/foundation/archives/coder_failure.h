#pragma once

#include <framework_utility/platform/foundation/archives/coder_error.h>
#include <framework_utility/platform/foundation/values/fail.h>

#include <string_view>

namespace FrameworkUtility::detail {

/// The error of a coder, with `reason` for the developer.
inline Error coderError(const ErrorCode& code, std::string_view reason) {
  return platformError(code, {}, {{NSDebugDescriptionErrorKey, reason}});
}

}  // namespace FrameworkUtility::detail
