#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/values/pixel_facts.h>

namespace FrameworkUtility::detail {

// Each block is read into a properties dictionary in the platform's shape, and a changed dictionary
// is merged back into the block: entries that read the same as before keep their bytes, changed
// ones are written, missing ones are removed, and what the library does not know stays as it was.
// Every reader takes any bytes, and leaves out what the budget does not hold. What reads as nothing
// is kept by a merge unless the dictionary says something there, and so is what was left out.

/// EXIF wins over XMP.
void readMetadata(const MetadataBlocks& blocks, Dictionary& properties);
/// `source` is null for properties that came from no file. What XMP alone says, and still says, is
/// not copied into EXIF or IPTC.
MetadataBlocks mergeMetadata(const MetadataBlocks* source, const Dictionary& properties,
                             const PixelFacts& pixels);

}  // namespace FrameworkUtility::detail
