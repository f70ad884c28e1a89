#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/color_space.h>
#include <framework_utility/platform/imageio/formats/image_source_status.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>

#include <cstddef>

namespace FrameworkUtility::detail {

/// What a file says of one of its images before any pixel is decoded.
struct ImageHeader {
  CGImageSourceStatus status = CGImageSourceStatus::unknownType;
  PixelSize size;  ///< As stored, before any rotation that the file asks for.
  std::size_t bitsPerComponent = 8;
  CGColorSpaceModel model = CGColorSpaceModel::rgb;
  bool hasAlpha = false;
  bool isIndexed = false;
  Data iccProfile;
  /// What the format alone knows, in the properties' shape: "{JFIF}", "{PNG}", DPIWidth and so on.
  Dictionary formatProperties;
  MetadataBlocks blocks;
};

}  // namespace FrameworkUtility::detail
