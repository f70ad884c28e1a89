#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>
#include <framework_utility/platform/imageio/metadata/values/pixel_facts.h>

#include <cstddef>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

/// Entries of "{TIFF}", "{Exif}", "{GPS}", "{ExifAux}" and "{IPTC}" that `properties` does not have
/// yet. UTF-8 and UTF-16 packets; nothing comes of one that cannot be parsed.
Dictionary readXmp(std::span<const std::byte> packet, const Dictionary& properties,
                   MetadataBudget& budget);
/// Adds what `readXmp` gave.
void addXmp(Dictionary&& entries, Dictionary& properties);
/// `before` is what the blocks read as before the change, `after` what the caller wants: a property
/// of the packet whose entry differs between them is changed or removed in place. The old picture's
/// thumbnails go. A packet that cannot be parsed stays as it is.
std::vector<std::byte> mergeXmp(std::span<const std::byte> packet, const Dictionary& before,
                                const Dictionary& after, const PixelFacts& pixels);

}  // namespace FrameworkUtility::detail
