#pragma once

#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/imageio/formats/image_header.h>
#include <framework_utility/platform/imageio/image_source_limits.h>

#include <cstddef>
#include <optional>

namespace FrameworkUtility::detail {

/// The thumbnail that the file keeps, as `decodedReducedImage` gives a picture, where it is large
/// enough and shows the whole image.
std::optional<CGImage> embeddedThumbnailImage(const ImageHeader& image, std::size_t maxPixelSize,
                                              const CGImageSourceLimits& limits);

}  // namespace FrameworkUtility::detail
