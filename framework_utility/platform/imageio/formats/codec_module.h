#pragma once

#include <string>

namespace FrameworkUtility::detail {

/// Where the module with the HEIC and AVIF codecs is looked for, and nowhere else: the path that
/// the app configures, else the install directory.
std::string codecModulePath();

/// Whether a file is there. What can be written depends on it, so an answer about HEIC that is
/// remembered counts only while this does not change.
bool isCodecModulePresent();

}  // namespace FrameworkUtility::detail
