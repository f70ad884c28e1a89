#pragma once

#include <framework_utility/platform/graphics/cg_image.h>

#include <string>
#include <string_view>

namespace kvtool {

/// Writes a picture of this type under exactly this name; a file of that name is replaced. What
/// fails is reported.
[[nodiscard]] bool writePicture(const FrameworkUtility::CGImage& picture,
                                std::string_view typeIdentifier, const std::string& file);

}  // namespace kvtool
