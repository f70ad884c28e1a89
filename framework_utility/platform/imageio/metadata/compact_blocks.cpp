#include <framework_utility/platform/imageio/metadata/compact_blocks.h>

#include <framework_utility/platform/imageio/metadata/exif/embedded_thumbnail.h>

#include <cstddef>
#include <memory>
#include <span>

namespace FrameworkUtility::detail {

MetadataBlocks compactBlocks(const MetadataBlocks& stored) {
  std::size_t left = std::size_t{4} << 20;
  const auto compact = [&left](const Data& block, std::span<const std::byte> part) {
    if (part.size() > left) return Data::withBytesNoCopy(part, std::make_shared<const Data>(block));
    left -= part.size();
    return Data(part);
  };
  MetadataBlocks blocks;
  blocks.exif = compact(stored.exif, withoutEmbeddedThumbnail(stored.exif));
  blocks.xmp = compact(stored.xmp, stored.xmp);
  blocks.extendedXmp = compact(stored.extendedXmp, stored.extendedXmp);
  blocks.imageResources = compact(stored.imageResources, stored.imageResources);
  blocks.format = stored.format;
  for (const auto& [kind, contents] : stored.formatParts) {
    blocks.formatParts.push_back({kind, compact(contents, contents)});
  }
  return blocks;
}

}  // namespace FrameworkUtility::detail
