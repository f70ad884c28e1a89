#include <framework_utility/platform/imageio/metadata/metadata.h>

#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/iptc/image_resources.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_extension.h>

#include <utility>

namespace FrameworkUtility::detail {
namespace {

/// The properties less the entries that XMP alone says and that are as it says them, so that a
/// picture saved unchanged gets no second copy of them in EXIF or IPTC.
Dictionary withoutXmpEntries(const Dictionary& properties, const Dictionary& fromXmp) {
  Dictionary result = properties;
  for (const auto& [name, entries] : fromXmp) {
    if (!properties.get<Dictionary>(name)) continue;
    Dictionary& kept = result.subdictionary(name);
    for (const auto& [key, entry] : *entries.as<Dictionary>()) {
      const Value* after = kept.find(key);
      if (after && *after == entry) kept.remove(key);
    }
  }
  return result;
}

/// Adds to the properties what XMP alone says, and gives it.
Dictionary readBothXmp(const MetadataBlocks& blocks, Dictionary& properties,
                       MetadataBudget& budget) {
  Dictionary all;
  for (const Data& packet : {blocks.xmp, blocks.extendedXmp}) {
    Dictionary entries = readXmp(packet, properties, budget);
    addXmp(Dictionary(entries), properties);
    addXmp(std::move(entries), all);
  }
  return all;
}

}  // namespace

void readMetadata(const MetadataBlocks& blocks, Dictionary& properties) {
  MetadataBudget budget;
  readExif(blocks.exif, properties, budget);
  readImageResources(blocks.imageResources, properties, budget);
  addXmp(readXmp(blocks.xmp, properties, budget), properties);
  addXmp(readXmp(blocks.extendedXmp, properties, budget), properties);
  budget.tell(properties);
}

MetadataBlocks mergeMetadata(const MetadataBlocks* source, const Dictionary& properties,
                             const PixelFacts& pixels) {
  MetadataBlocks blocks;
  if (!source) {
    blocks.exif = Data(mergeExif({}, properties, pixels));
    blocks.imageResources = Data(mergeImageResources({}, properties));
    return blocks;
  }
  // Read as `readMetadata` reads, with the same budget.
  MetadataBudget budget;
  Dictionary before;
  readExif(source->exif, before, budget);
  const MetadataBudget atResources = budget;
  readImageResources(source->imageResources, before, budget);
  const Dictionary fromXmp = readBothXmp(*source, before, budget);
  {
    const Dictionary rest = withoutXmpEntries(properties, fromXmp);
    blocks.exif = Data(mergeExif(source->exif, rest, pixels));
    blocks.imageResources = Data(mergeImageResources(source->imageResources, rest, atResources));
  }
  blocks.xmp = Data(mergeXmp(source->xmp, before, properties, pixels));
  blocks.extendedXmp = Data(mergeXmp(source->extendedXmp, before, properties, pixels));
  // The name is a digest of what it names.
  if (blocks.extendedXmp != source->extendedXmp) {
    blocks.xmp = withXmpExtensionName(blocks.xmp, {}).value_or(blocks.xmp);
  }
  blocks.format = source->format;
  blocks.formatParts = source->formatParts;
  return blocks;
}

}  // namespace FrameworkUtility::detail
