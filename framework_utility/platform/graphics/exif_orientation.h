#pragma once

#include <framework_utility/platform/graphics/ui_image.h>

#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

// The tag Orientation of EXIF numbers the eight ways to turn a picture from 1 to 8.

/// `up` for a number that is none of the eight.
UIImageOrientation imageOrientation(double exifOrientation);
/// Absent for an orientation that is none of the eight.
std::optional<std::uint32_t> exifOrientation(UIImageOrientation orientation);

}  // namespace FrameworkUtility::detail
