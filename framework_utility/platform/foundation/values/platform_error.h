#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <optional>

namespace FrameworkUtility::detail {

/// Fills `error`, when it is not null, with `code` and its message. The empty result of a fallible
/// operation: `return failed(error, PropertyListError::readCorrupt);`
std::nullopt_t failed(Error* error, const ErrorCode& code);

}  // namespace FrameworkUtility::detail
