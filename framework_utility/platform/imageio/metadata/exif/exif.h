#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>
#include <framework_utility/platform/imageio/metadata/values/pixel_facts.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// Adds "{Exif}", "{TIFF}", "{GPS}", "{ExifAux}", "{MakerApple}", Orientation, DPIWidth and
/// DPIHeight as present.
void readExif(std::span<const std::byte> tiff, Dictionary& properties, MetadataBudget& budget);
/// What `readExif` gives as the top level's Orientation, without reading anything else.
std::optional<Number> readExifOrientation(std::span<const std::byte> tiff);
/// What XResolution or YResolution of "{TIFF}" say in dots an inch; 0 when they say nothing of it.
double tiffDotsPerInch(const Dictionary& properties, std::string_view key);
/// The block for these properties; `tiff` may be empty. Empty when there is nothing to store.
std::vector<std::byte> mergeExif(std::span<const std::byte> tiff, const Dictionary& properties,
                                 const PixelFacts& pixels);

}  // namespace FrameworkUtility::detail
