#pragma once

#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

// Tags of an EXIF block that lead to other structures.
inline constexpr std::uint16_t exifPointerTag = 0x8769;     // In the image directory.
inline constexpr std::uint16_t gpsPointerTag = 0x8825;      // In the image directory.
inline constexpr std::uint16_t interopPointerTag = 0xA005;  // In the EXIF directory.
inline constexpr std::uint16_t makerNoteTag = 0x927C;       // In the EXIF directory.

/// Where an EXIF block's directories stand; 0 for one that it does not have.
struct ExifDirectories {
  std::uint32_t image = 0;
  std::uint32_t exif = 0;
  std::uint32_t gps = 0;
  std::uint32_t interop = 0;
};

/// No two are the same: a pointer back to a directory on the way to it is refused.
ExifDirectories exifDirectories(const TiffReader& reader);

}  // namespace FrameworkUtility::detail
