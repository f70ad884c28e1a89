#pragma once

#include <framework_utility/platform/imageio/formats/image_codec.h>

namespace FrameworkUtility::detail {

/// Reads every JPEG that has 8 bits a component, writes baseline.
const ImageCodec& jpegCodec();

}  // namespace FrameworkUtility::detail
