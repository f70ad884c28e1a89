#pragma once

#include <cstddef>
#include <span>

namespace FrameworkUtility::detail {

/// The small JPEG file that an EXIF block keeps for previews, in its second directory; empty when
/// there is none.
std::span<const std::byte> embeddedThumbnail(std::span<const std::byte> exif);

}  // namespace FrameworkUtility::detail
