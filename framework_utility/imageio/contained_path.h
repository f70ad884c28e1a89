#pragma once

#include <string_view>

namespace FrameworkUtility::detail {

/// Whether a path with this text behind its folder stays in the folder: no ".." of it climbs out.
/// Names come from outside; "a/b" and "a/../b" stay, "../a" and "a/../../b" do not.
bool staysInFolder(std::string_view relativePath);

}  // namespace FrameworkUtility::detail
