#pragma once

#include <framework_utility/platform/imageio/formats/image_writer.h>

#include <cstddef>
#include <string>
#include <vector>

namespace FrameworkUtility::detail {

/// Writes the image as baseline JPEG, colours 4:2:0, with the tables of `request.quality` times
/// 100. Grey stays grey, CMYK of 8 bits stays CMYK, everything else becomes RGB; what is
/// transparent is laid on white. False for a side above 65,500 pixels, for Lab,
/// and when memory is short.
///
/// What does not fit the format is left out, the file stays whole: EXIF of more than 65,527 bytes,
/// XMP of more than 65,504 with its extension, a single piece of the extension above 65,533, a
/// profile above 16.7 MB or of other components than those written. JFIF is written only without
/// EXIF, whose place is the same.
bool encodeJpeg(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
                std::string& problem);

}  // namespace FrameworkUtility::detail
