#pragma once

#include <framework_utility/platform/foundation/values/fail.h>

#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

enum class FileAccess { reading, writing };

/// How the system refused, by its error number, and whether it was asked to read or to write.
struct PosixFailure {
  int number;
  FileAccess access;
};

/// Fills `error` when there is one: the one place where error numbers become the platform's codes.
Failure fail(Error* error, const PosixFailure& failure, std::string_view path);

/// `path` as the system takes it: without slashes at the end, which would make it follow a link.
/// A path with a NUL fails, for its end would be cut off.
std::optional<std::string> systemPath(std::string_view path, FileAccess access, Error* error);

/// Not the root, "." or "..": to remove those takes more away than was asked for.
bool isRemovable(std::string_view path);

}  // namespace FrameworkUtility::detail
