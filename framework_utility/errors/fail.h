#pragma once

#include <framework_utility/errors/error_factory.h>
#include <framework_utility/platform/foundation/values/failure.h>

#include <optional>
#include <string_view>

namespace FrameworkUtility::detail {

// How the library's own parts fail.

/// Fills `error` when there is one: `return fail(error, code);`. A cause that is a full disk is
/// described by the disk report.
inline Failure fail(Error* error, const ErrorCode& code,
                    std::optional<std::string_view> description = std::nullopt,
                    const std::optional<Error>& cause = std::nullopt) {
  if (!error) return {};
  const auto reported = cause ? std::optional(withDiskSpaceReport(*cause)) : std::nullopt;
  *error = errorWithCode(code, description, reported);
  return {};
}
inline Failure fail(Error* error, const ErrorCode& code, const Error& cause) {
  return fail(error, code, std::nullopt, cause);
}

}  // namespace FrameworkUtility::detail
