#pragma once

#include <framework_utility/imageio/image_metadata.h>

#include <string_view>

namespace kvtool {

/// What most people ask of a photo: width, height, orientation, date, make, model, software, iso,
/// fNumber, focalLength, latitude, longitude, livePhotoIdentifier, profile, fileSize. A fact that
/// is not known is not there.
FrameworkUtility::Dictionary facts(const FrameworkUtility::KvImageMetadata& metadata,
                                   std::string_view path);

}  // namespace kvtool
