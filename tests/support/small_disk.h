#pragma once

#include <functional>
#include <optional>
#include <string>

namespace FrameworkUtility::testing {

/// Runs `body` in a child that has a disk of 256 KiB in memory mounted on `folder`, which nobody
/// else sees and which goes with the child. Whether all that `body` expected held; absent where the
/// system lets nobody mount anything.
std::optional<bool> runOnSmallDisk(const std::string& folder, const std::function<void()>& body);

}  // namespace FrameworkUtility::testing
