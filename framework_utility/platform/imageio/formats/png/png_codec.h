#pragma once

#include <framework_utility/platform/imageio/formats/image_codec.h>

namespace FrameworkUtility::detail {

/// Reads and writes every PNG; of an animated one it reads the picture that stands for it.
const ImageCodec& pngCodec();

}  // namespace FrameworkUtility::detail
