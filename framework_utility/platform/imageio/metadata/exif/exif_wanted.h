#pragma once

#include <framework_utility/platform/foundation/values/value.h>

namespace FrameworkUtility::detail {

/// What a caller wants an EXIF block to say, in the terms of its directories.
struct ExifWanted {
  Dictionary image;
  Dictionary exif;
  Dictionary gps;
  Dictionary makerNote;
};

/// `before` is what the block reads as. The top level's orientation wins over that of "{TIFF}"; a
/// GPS time stamp "yyyy:MM:dd HH:mm:ss" becomes date and time; a negative altitude becomes a
/// positive one below sea level, and a new one that is not negative leaves an old reference behind.
/// "{ExifAux}", DPIWidth and DPIHeight only repeat what other entries say, and are not looked at.
ExifWanted exifWanted(const Dictionary& before, const Dictionary& properties);

}  // namespace FrameworkUtility::detail
