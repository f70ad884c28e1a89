#pragma once

#include <framework_utility/platform/foundation/files/posix_error.h>

#include <optional>
#include <string>

namespace FrameworkUtility::detail {

/// Copies a file, a link itself, or a folder with all in it, at any depth, with permissions and
/// modification dates. Both are system paths. The copy appears whole or not at all, and is on the
/// disk then. Pipes, sockets and devices are refused, and a folder into itself before anything is
/// written. Answers how it failed, if it did.
std::optional<PosixFailure> copyItem(const std::string& path, const std::string& toPath);

}  // namespace FrameworkUtility::detail
