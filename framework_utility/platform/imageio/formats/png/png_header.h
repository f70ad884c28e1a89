#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/image_header.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <array>
#include <string_view>

namespace FrameworkUtility::detail {

/// The texts that "{PNG}" holds, under their keywords in the file.
inline constexpr std::array<std::string_view, 10> pngTextKeywords{
    kCGImagePropertyPNGTitle,      kCGImagePropertyPNGAuthor,       kCGImagePropertyPNGDescription,
    kCGImagePropertyPNGCopyright,  kCGImagePropertyPNGCreationTime, kCGImagePropertyPNGSoftware,
    kCGImagePropertyPNGDisclaimer, kCGImagePropertyPNGWarning,      kCGImagePropertyPNGSource,
    kCGImagePropertyPNGComment};

inline constexpr std::string_view pngXmpKeyword = "XML:com.adobe.xmp";

/// What the chunks around the pixels say; the pixels' chunks are stepped over.
///
/// The status is unknownType without the signature, incomplete when the file ends before the first
/// chunk of pixels, and invalidData when the chunks contradict themselves. Metadata may follow the
/// pixels. A chunk of metadata whose checksum is wrong is none. Of chunks of a kind the first
/// counts, and a block of metadata in a chunk of its own before one in a text. Texts, and what the
/// standard marks as safe to copy beside other pixels, are the blocks' parts.
ImageHeader readPngHeader(const ByteSource& source);

}  // namespace FrameworkUtility::detail
