#pragma once

#include <framework_utility/platform/graphics/cg_image.h>

#include <cstddef>
#include <optional>

namespace FrameworkUtility::detail {

/// The picture as it looks upright: pixels moved as an EXIF orientation of 1 to 8 asks, in their
/// own layout without padding. Any other number means 1. Absent when memory is short.
std::optional<CGImage> uprightImage(const CGImage& image, std::size_t exifOrientation);

}  // namespace FrameworkUtility::detail
