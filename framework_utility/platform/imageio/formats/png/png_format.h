#pragma once

#include <framework_utility/platform/imageio/formats/image_format.h>

namespace FrameworkUtility::detail {

extern const ImageFormat pngFormat;

}  // namespace FrameworkUtility::detail
