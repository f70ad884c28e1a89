#pragma once

#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>

namespace FrameworkUtility::detail {

/// Copies of the blocks, less the embedded thumbnail, that keep nothing else of their file alive;
/// past 4 MiB they are shared with it.
MetadataBlocks compactBlocks(const MetadataBlocks& stored);

}  // namespace FrameworkUtility::detail
