#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

namespace FrameworkUtility::testing {

/// Matches an error with this domain, code and description.
MATCHER_P3(IsError, domain, code, message, "") {
  *result_listener << "which is " << arg.domain() << ' ' << arg.code() << " \""
                   << arg.localizedDescription() << '"';
  return arg.domain() == domain && arg.code() == code && arg.localizedDescription() == message;
}

/// Matches an error made of a documented failure, its message as it stands.
inline auto IsError(const ErrorCode& code) {
  return IsError(std::string(code.domain), code.code, std::string(code.message));
}

}  // namespace FrameworkUtility::testing
