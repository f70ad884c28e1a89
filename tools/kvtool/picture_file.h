#pragma once

#include <framework_utility/platform/graphics/cg_image.h>

#include <string>
#include <string_view>

namespace kvtool {

/// Says that there is no such file, or, when there is, that it has no `what` that can be decoded.
void printNoPicture(const std::string& file, std::string_view what);

/// Writes a picture of this type under exactly this name; a file of that name is replaced. What
/// fails is reported.
[[nodiscard]] bool writePicture(const FrameworkUtility::CGImage& picture,
                                std::string_view typeIdentifier, const std::string& file);

}  // namespace kvtool
