#include <tools/kvtool/photos/facts.h>

#include <tools/kvtool/console/photo_date.h>

#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <optional>
#include <tuple>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// The offset of the date that `KvImageMetadata::date` gives: of the first text that is there.
std::optional<std::string> offsetOfDate(const Dictionary& properties) {
  for (const auto& [dictionary, key, offset] :
       {std::tuple{kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeDigitized,
                   kCGImagePropertyExifOffsetTimeDigitized},
        {kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeOriginal,
         kCGImagePropertyExifOffsetTimeOriginal},
        {kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFDateTime,
         kCGImagePropertyExifOffsetTime}}) {
    const auto* entries = properties.get<Dictionary>(dictionary);
    if (!entries || !entries->get<std::string>(key)) continue;
    const auto* exif = properties.get<Dictionary>(kCGImagePropertyExifDictionary);
    const auto* text = exif ? exif->get<std::string>(offset) : nullptr;
    return text && isOffset(*text) ? std::optional(*text) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

Dictionary facts(const KvImageMetadata& metadata, std::string_view path) {
  Dictionary facts;
  const Dictionary none;
  const Dictionary& properties = metadata.properties() ? *metadata.properties() : none;
  const auto add = [&](std::string_view name, const auto& value) {
    if (value) facts.set(name, Value(*value));
  };
  add("width", metadata.width());
  add("height", metadata.height());
  add("orientation", metadata.orientation());
  if (const std::optional<Date> date = metadata.date()) {
    facts.set("date", textOf({*date, offsetOfDate(properties)}));
  }
  add("make", metadata.cameraMake());
  add("model", metadata.cameraModel());
  add("software", metadata.software());
  add("iso", metadata.iso());
  add("fNumber", metadata.fNumber());
  add("focalLength", metadata.focalLength());
  if (const std::optional<CLLocation> location = metadata.location()) {
    facts.set("latitude", location->latitude);
    facts.set("longitude", location->longitude);
  }
  add("livePhotoIdentifier", metadata.livePhotoIdentifier());
  if (const auto* profile = properties.get<std::string>(kCGImagePropertyProfileName)) {
    facts.set("profile", *profile);
  }
  // A file's size is no property of its first image.
  if (const auto attributes = FileManager::defaultManager().attributesOfItemAtPath(path, nullptr)) {
    facts.set("fileSize", attributes->size);
  }
  return facts;
}

}  // namespace kvtool
