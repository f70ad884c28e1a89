#pragma once

#include <framework_utility/platform/foundation/archives/coder_error.h>

#include <string_view>

namespace FrameworkUtility::detail {

/// The error of a coder, with `reason` for the developer.
Error coderError(const ErrorCode& code, std::string_view reason);

}  // namespace FrameworkUtility::detail
