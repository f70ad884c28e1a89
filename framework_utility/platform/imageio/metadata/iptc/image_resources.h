#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>

#include <cstddef>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

/// Adds "{IPTC}" when the resources hold a record.
void readImageResources(std::span<const std::byte> resources, Dictionary& properties,
                        MetadataBudget& budget);
/// Drops the old picture's thumbnails and profile, and the record's digest when the record changes.
/// `budget` is as it was before the resources were read.
std::vector<std::byte> mergeImageResources(std::span<const std::byte> resources,
                                           const Dictionary& properties,
                                           MetadataBudget budget = {});

}  // namespace FrameworkUtility::detail
