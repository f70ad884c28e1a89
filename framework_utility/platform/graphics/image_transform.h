#pragma once

#include <framework_utility/platform/graphics/cg_image.h>

#include <cstddef>
#include <optional>

namespace FrameworkUtility::detail {

/// The picture as it looks upright: pixels moved as an EXIF orientation of 1 to 8 asks, in their
/// own layout without padding. Any other number means 1. Absent when memory is short.
std::optional<CGImage> uprightImage(const CGImage& image, std::size_t exifOrientation);

/// The picture reduced so that no side exceeds `maxPixelSize`, each pixel the average of its area;
/// one that is small enough comes back as it is. Grey without alpha stays 8-bit grey, all else
/// becomes 8-bit RGBA, premultiplied or without alpha. Absent for Lab and when memory is short.
std::optional<CGImage> reducedImage(const CGImage& image, std::size_t maxPixelSize);

}  // namespace FrameworkUtility::detail
