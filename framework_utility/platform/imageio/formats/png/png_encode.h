#pragma once

#include <framework_utility/platform/imageio/formats/image_writer.h>

#include <cstddef>
#include <string>
#include <vector>

namespace FrameworkUtility::detail {

/// Writes 8 or 16 bits as the image has them, grey as grey, CMYK as RGB, alpha straight. Of the
/// properties it takes the texts and the time of "{PNG}" and the resolution.
bool encodePng(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
               std::string& problem);

}  // namespace FrameworkUtility::detail
