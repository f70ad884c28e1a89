#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/image_header.h>

#include <string_view>

namespace FrameworkUtility::detail {

// How an application segment begins; behind it stands what the metadata blocks hold.
inline constexpr std::string_view jpegExifSignature{"Exif\0\0", 6};
inline constexpr std::string_view jpegXmpSignature{"http://ns.adobe.com/xap/1.0/\0", 29};
inline constexpr std::string_view jpegExtendedXmpSignature{"http://ns.adobe.com/xmp/extension/\0",
                                                           35};
inline constexpr std::string_view jpegProfileSignature{"ICC_PROFILE\0", 12};
inline constexpr std::string_view jpegResourcesSignature{"Photoshop 3.0\0", 14};

/// What the segments before the first scan say. Segments that say nothing of interest are stepped
/// over unread.
///
/// The status is unknownType without the signature, incomplete when the file ends before the first
/// scan or has no frame, and invalidData when the segments contradict themselves. Only a complete
/// header has a size. Of EXIF, XMP and JFIF the first counts. A profile with a missing or repeated
/// chunk is none, and so is extended XMP. Comments and all other application segments are the
/// blocks' parts, but for those that belong to the pixels: Adobe's, which says how they are coded,
/// small and large pictures of the same, and the index of pictures that stand behind this one.
ImageHeader readJpegHeader(const ByteSource& source);

}  // namespace FrameworkUtility::detail
