#pragma once

#include <framework_utility/platform/foundation/values/failure.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <string_view>

namespace FrameworkUtility::detail {

// How the platform fails. The library's own parts have errors/fail.h.

/// Described by `description`, or where that is empty by the code's message, if it has one; then
/// what else is known.
Error platformError(const ErrorCode& code, std::string_view description = {},
                    const Dictionary& userInfo = {});

/// Fills `error` when there is one: `return fail(error, PropertyListError::readCorrupt);`
Failure fail(Error* error, const ErrorCode& code, std::string_view description = {},
             const Dictionary& userInfo = {});

}  // namespace FrameworkUtility::detail
