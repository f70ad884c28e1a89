#pragma once

#include <framework_utility/platform/imageio/metadata/exif/tiff_layout.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <cstdint>
#include <vector>

namespace FrameworkUtility::detail {

/// The bytes of all that a block holds of old pixels: the directories behind the first one
/// (thumbnails) and below it (previews), their values, and the pixels of all of them. Of what is
/// damaged, or says that it has more bytes than such things have, none: they may be anybody's.
std::vector<ByteRange> exifPictures(const TiffReader& reader);

/// Whether the first directory is that of a TIFF file's own image.
bool holdsPixels(const TiffReader& reader);
/// A tag that leads to old pixels or to their profile, in any block.
bool leadsToPixels(std::uint16_t tag);
/// A tag that says how a TIFF file's own pixels are stored.
bool describesPixels(std::uint16_t tag);

}  // namespace FrameworkUtility::detail
