#include <framework_utility/platform/imageio/metadata_codec.h>

#include <framework_utility/platform/imageio/xmp/xmp_extension.h>

#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

// The properties less the entries that XMP alone says and that are as it says them, so that a
// picture saved unchanged gets no second copy of them in EXIF or IPTC.
Dictionary withoutXmpEntries(const Dictionary& properties, const Dictionary& withXmp,
                             const Dictionary& withoutXmp) {
  Dictionary result = properties;
  for (const auto& [name, value] : withXmp) {
    const auto* all = value.as<Dictionary>();
    const auto* wanted = all ? properties.get<Dictionary>(name) : nullptr;
    if (!wanted) continue;
    const auto* own = withoutXmp.get<Dictionary>(name);
    Dictionary& kept = result.subdictionary(name);
    for (const auto& [key, entry] : *all) {
      const Value* after = wanted->find(key);
      if (after && *after == entry && !(own && own->find(key))) kept.remove(key);
    }
  }
  return result;
}

}  // namespace

void readMetadata(const MetadataBlocks& blocks, Dictionary& properties) {
  readExif(blocks.exif, properties);
  readImageResources(blocks.imageResources, properties);
  readXmp(blocks.xmp, properties);
  readXmp(blocks.extendedXmp, properties);
}

MetadataBlocks mergeMetadata(const MetadataBlocks* source, const Dictionary& properties,
                             const PixelFacts& pixels) {
  MetadataBlocks blocks;
  if (!source) {
    blocks.exif = Data(mergeExif({}, properties, pixels));
    blocks.imageResources = Data(mergeImageResources({}, properties));
    return blocks;
  }
  Dictionary withoutXmp;
  readExif(source->exif, withoutXmp);
  readImageResources(source->imageResources, withoutXmp);
  Dictionary before = withoutXmp;
  readXmp(source->xmp, before);
  readXmp(source->extendedXmp, before);
  const Dictionary rest = withoutXmpEntries(properties, before, withoutXmp);
  blocks.exif = Data(mergeExif(source->exif, rest, pixels));
  blocks.xmp = Data(mergeXmp(source->xmp, before, properties, pixels));
  blocks.extendedXmp = Data(mergeXmp(source->extendedXmp, before, properties, pixels));
  // The name is a digest of what it names.
  if (blocks.extendedXmp != source->extendedXmp)
    blocks.xmp = withXmpExtensionName(blocks.xmp, {}).value_or(blocks.xmp);
  blocks.imageResources = Data(mergeImageResources(source->imageResources, rest));
  blocks.format = source->format;
  blocks.formatParts = source->formatParts;
  return blocks;
}

}  // namespace FrameworkUtility::detail
