#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/formats/image_header.h>

namespace FrameworkUtility::detail {

/// What the header and its blocks say, under the keys of property_keys.h; a fact that they do not
/// know, or that does not hold, is no entry.
Dictionary imageProperties(const ImageHeader& header);

}  // namespace FrameworkUtility::detail
