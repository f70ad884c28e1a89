#pragma once

#include <string>

namespace FrameworkUtility::detail {

/// Whether folders that their owner has closed to himself are opened: right for what we made only.
enum class ClosedFolders { keep, open };

/// Removes `name` in the folder that `at` is open on (`AT_FDCWD`: a path): a file, a link itself,
/// or a folder with all in it, at any depth. Stops at the first refusal and answers 0 or its
/// number.
int removeItem(int at, const std::string& name, ClosedFolders closed = ClosedFolders::keep);

}  // namespace FrameworkUtility::detail
