#pragma once

#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/image_source.h>

#include <optional>

namespace FrameworkUtility::detail {

/// The first image of the source, turned as its properties say.
std::optional<UIImage> uiImageFrom(const CGImageSource& source, Error* error);

}  // namespace FrameworkUtility::detail
