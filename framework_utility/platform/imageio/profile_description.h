#pragma once

#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>

#include <cstddef>
#include <span>
#include <string>

namespace FrameworkUtility::detail {

/// An ICC profile's name, English where there is a choice; empty when it has none or is no profile.
/// Reads that one tag, so that naming a profile does not cost what using it does.
std::string profileDescription(std::span<const std::byte> profile, MetadataBudget& budget);

}  // namespace FrameworkUtility::detail
