#include <tools/kvtool/facts.h>

#include <tools/kvtool/json.h>

#include <framework_utility/platform/foundation/files.h>
#include <framework_utility/platform/imageio/property_keys.h>

#include <optional>

namespace kvtool {

using namespace FrameworkUtility;

Dictionary facts(const KvImageMetadata& metadata, std::string_view path) {
  Dictionary facts;
  const auto add = [&](std::string_view name, const auto& value) {
    if (value) facts.set(name, Value(*value));
  };
  add("width", metadata.width());
  add("height", metadata.height());
  add("orientation", metadata.orientation());
  if (const std::optional<Date> date = metadata.date()) facts.set("date", isoText(*date));
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
  if (metadata.properties())
    add("profile", metadata.properties()->get<std::string>(kCGImagePropertyProfileName));
  // A file's size is no property of its first image.
  if (const auto attributes = FileManager::defaultManager().attributesOfItemAtPath(path, nullptr))
    facts.set("fileSize", attributes->size);
  return facts;
}

}  // namespace kvtool
