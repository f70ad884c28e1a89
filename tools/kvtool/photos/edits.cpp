#include <tools/kvtool/photos/edits.h>

#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <cmath>
#include <cstddef>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// Of the dates that a save sets. A fraction of a second belongs to the date that was there.
void setOffsets(Dictionary& exif, const std::optional<std::string>& offset) {
  for (const std::string_view key :
       {kCGImagePropertyExifOffsetTime, kCGImagePropertyExifOffsetTimeOriginal,
        kCGImagePropertyExifOffsetTimeDigitized}) {
    if (offset) {
      exif.set(key, *offset);
    } else {
      exif.remove(key);
    }
  }
  for (const std::string_view key :
       {kCGImagePropertyExifSubsecTime, kCGImagePropertyExifSubsecTimeOriginal,
        kCGImagePropertyExifSubsecTimeDigitized}) {
    exif.remove(key);
  }
}

/// Without `setLocation`, which writes an altitude, a time and a precision too.
void setPlace(Dictionary& gps, const Place& place) {
  gps.set(kCGImagePropertyGPSLatitude, std::abs(place.latitude));
  gps.set(kCGImagePropertyGPSLatitudeRef, place.latitude < 0 ? "S" : "N");
  gps.set(kCGImagePropertyGPSLongitude, std::abs(place.longitude));
  gps.set(kCGImagePropertyGPSLongitudeRef, place.longitude < 0 ? "W" : "E");
  if (!place.altitude) return;
  // Signed, as a save takes it that finds a reference to an old altitude.
  gps.set(kCGImagePropertyGPSAltitude, *place.altitude);
  gps.set(kCGImagePropertyGPSAltitudeRef, *place.altitude < 0 ? 1 : 0);
}

}  // namespace

Reader photoDate(std::optional<PhotoDate>& target, std::string shape) {
  return {std::move(shape), "like 2024-05-06T07:08:09 or 2024-05-06T07:08:09+02:00",
          [&target](const std::string& text) {
            target = photoDateFrom(text);
            return target.has_value();
          }};
}

Reader place(std::optional<Place>& target, std::string shape) {
  return {std::move(shape), "like 48.2082,16.3738 or 48.2082,16.3738,171",
          [&target](const std::string& text) {
            const std::vector<double> numbers = numbersIn(text, 2, 3);
            if (numbers.empty() || std::abs(numbers[0]) > 90 || std::abs(numbers[1]) > 180) {
              return false;
            }
            target = Place{.latitude = numbers[0], .longitude = numbers[1]};
            if (numbers.size() == 3) target->altitude = numbers[2];
            return true;
          }};
}

Dictionary edited(KvImageMetadata metadata, const Edits& edits) {
  if (edits.orientation) metadata.setOrientation(*edits.orientation);
  if (edits.date) {
    metadata.setDateOriginal(edits.date->clock);
    metadata.setDateDigitized(edits.date->clock);
  }
  metadata.setSoftware(edits.software);
  if (edits.removesLivePhoto) metadata.removeLivePhotosMetadata();
  Dictionary properties = metadata.properties().value_or(Dictionary());
  if (edits.date) {
    setOffsets(properties.subdictionary(kCGImagePropertyExifDictionary), edits.date->offset);
  }
  if (edits.place) setPlace(properties.subdictionary(kCGImagePropertyGPSDictionary), *edits.place);
  return properties;
}

}  // namespace kvtool
