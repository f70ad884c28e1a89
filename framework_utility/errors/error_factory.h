#pragma once

#include <framework_utility/platform/foundation/values/error.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

/// The domain of an error that is made without one. Named after a view controller: the apps compare
/// with this text.
inline constexpr std::string_view defaultErrorDomain = "NSTervixActivityViewControllerErrorDomain";

/// A new error. Without a domain it has `defaultErrorDomain`; an empty domain is kept. With a code
/// from 5000 to 5999 its description is `diskSpaceReport(description)`.
///
/// Thread: any.
/// Selector: errorWithDomain:code:description:underlyingError:, errorWithDomain:code:description:
Error errorWithDomain(std::optional<std::string_view> domain, std::int64_t code,
                      std::optional<std::string_view> description = std::nullopt,
                      const std::optional<Error>& underlyingError = std::nullopt);

/// The error of a documented failure. `description` stands for the code's message where that goes
/// on with a status or a type. Thread: any.
Error errorWithCode(const ErrorCode& code,
                    std::optional<std::string_view> description = std::nullopt,
                    const std::optional<Error>& underlyingError = std::nullopt);

/// "(disk space used U, free F, total T)" of the volume of the home directory, or of `path`, after
/// `lead` and a blank when a lead, even an empty one, is given. The amounts are in the user's
/// language. Thread: any.
/// Selector: addDiskSpaceInformationToString:
std::string diskSpaceReport(std::optional<std::string_view> lead = std::nullopt,
                            std::optional<std::string_view> path = std::nullopt);

/// What the file manager said, as the underlying error of what failed by it: a full disk
/// (`NSFileWriteOutOfSpaceError`) is described by the disk report of the volume that the file was
/// to be on, every other error comes back as it is. Thread: any.
Error withDiskSpaceReport(const Error& cause);

}  // namespace FrameworkUtility
