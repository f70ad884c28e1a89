#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/metadata_budget.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

// Each block is read into a properties dictionary in the platform's shape, and a changed dictionary
// is merged back into the block: entries that read the same as before keep their bytes, changed
// ones are written, missing ones are removed, and what the library does not know stays as it was.
// Every reader takes any bytes, and leaves out what the budget does not hold. What reads as nothing
// is kept by a merge unless the dictionary says something there, and so is what was left out.

/// Facts about the new pixels, which replace those about the old ones.
struct PixelFacts {
  std::size_t width = 0;
  std::size_t height = 0;
};

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

/// Adds "{IPTC}" when the resources hold a record.
void readImageResources(std::span<const std::byte> resources, Dictionary& properties,
                        MetadataBudget& budget);
/// Drops the old picture's thumbnails and profile, and the record's digest when the record changes.
/// `budget` is as it was before the resources were read.
std::vector<std::byte> mergeImageResources(std::span<const std::byte> resources,
                                           const Dictionary& properties,
                                           MetadataBudget budget = {});

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

/// All blocks together. EXIF wins over XMP.
void readMetadata(const MetadataBlocks& blocks, Dictionary& properties);
/// `source` is null for properties that came from no file. What XMP alone says, and still says, is
/// not copied into EXIF or IPTC.
MetadataBlocks mergeMetadata(const MetadataBlocks* source, const Dictionary& properties,
                             const PixelFacts& pixels);

}  // namespace FrameworkUtility::detail
