#include <framework_utility/platform/imageio/image_properties.h>

#include <framework_utility/platform/imageio/metadata/metadata.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/profile_description.h>

#include <string>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

/// As the properties name it; null for one that they do not name.
const char* colorModelName(CGColorSpaceModel model) {
  switch (model) {
    case CGColorSpaceModel::monochrome:
      return "Gray";
    case CGColorSpaceModel::rgb:
    case CGColorSpaceModel::indexed:  // its table is of RGB; IsIndexed tells
      return "RGB";
    case CGColorSpaceModel::cmyk:
      return "CMYK";
    case CGColorSpaceModel::lab:
      return "Lab";
    case CGColorSpaceModel::unknown:
      break;
  }
  return nullptr;
}

}  // namespace

Dictionary imageProperties(const ImageHeader& header) {
  constexpr std::size_t usual = 16;
  Dictionary properties;
  properties.reserve(usual);
  const auto append = [&](std::string_view key, auto&& value) {
    properties.append(Key::withConstant(key), std::forward<decltype(value)>(value));
  };
  if (const char* model = colorModelName(header.model)) append(kCGImagePropertyColorModel, model);
  append(kCGImagePropertyDepth, header.bitsPerComponent);
  append(kCGImagePropertyPixelWidth, header.size.width);
  append(kCGImagePropertyPixelHeight, header.size.height);
  if (header.hasAlpha) append(kCGImagePropertyHasAlpha, true);
  if (header.isIndexed) append(kCGImagePropertyIsIndexed, true);
  MetadataBudget budget;
  if (std::string name = profileDescription(header.iccProfile, budget); !name.empty()) {
    append(kCGImagePropertyProfileName, std::move(name));
  }
  for (const auto& [key, value] : header.formatProperties) properties.set(key, value);
  budget.tell(properties);
  readMetadata(header.blocks, properties);
  return properties;
}

}  // namespace FrameworkUtility::detail
