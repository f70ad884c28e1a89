#pragma once

#include <framework_utility/errors/error_factory.h>

#include <optional>
#include <string_view>

namespace FrameworkUtility::detail {

/// Fills `error` when there is one and gives the empty result: `return fail(error, code);`.
inline std::nullopt_t fail(Error* error, const ErrorCode& code,
                           std::optional<std::string_view> description = std::nullopt) {
  if (error) *error = errorWithCode(code, description);
  return std::nullopt;
}

/// The same where the file system or a codec is the cause.
inline std::nullopt_t fail(Error* error, const ErrorCode& code, const Error& cause) {
  if (error) *error = errorWithCode(code, std::nullopt, withDiskSpaceReport(cause));
  return std::nullopt;
}

}  // namespace FrameworkUtility::detail
