#pragma once

#include <framework_utility/platform/imageio/formats/image_format.h>

namespace FrameworkUtility::detail {

/// Only read.
extern const ImageFormat bmpFormat;

}  // namespace FrameworkUtility::detail
