#pragma once

#include <cstddef>
#include <span>

namespace FrameworkUtility::detail {

/// The JPEG file that these bytes begin with, up to its end marker and zeros that fill up the rest;
/// all of them when it is cut off. Empty when they begin with none.
std::span<const std::byte> leadingJpeg(std::span<const std::byte> bytes);

/// The small JPEG file that an EXIF block keeps for previews, in its second directory; empty when
/// there is none.
std::span<const std::byte> embeddedThumbnail(std::span<const std::byte> exif);

/// The block up to its thumbnail, when that is its last part, as it is in what phones write: two
/// thirds of the bytes, which no save keeps. Else all of it.
std::span<const std::byte> withoutEmbeddedThumbnail(std::span<const std::byte> exif);

}  // namespace FrameworkUtility::detail
