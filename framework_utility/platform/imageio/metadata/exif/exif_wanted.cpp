#include <framework_utility/platform/imageio/metadata/exif/exif_wanted.h>

#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <string>
#include <string_view>

namespace FrameworkUtility::detail {
namespace {

constexpr int aboveSeaLevel = 0;
constexpr int belowSeaLevel = 1;

Dictionary copied(const Dictionary& properties, std::string_view key) {
  const Dictionary* dictionary = properties.get<Dictionary>(key);
  return dictionary ? *dictionary : Dictionary();
}

bool isSame(const Value* a, const Value* b) { return a && b ? *a == *b : a == b; }

void splitTimeStamp(Dictionary& gps) {
  constexpr std::string_view pattern = "yyyy:MM:dd ";
  const std::string* stamp = gps.get<std::string>(kCGImagePropertyGPSTimeStamp);
  if (!stamp || stamp->size() <= pattern.size()) return;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = (*stamp)[i];
    const bool isDigit = c >= '0' && c <= '9';
    if (pattern[i] == ':' || pattern[i] == ' ' ? c != pattern[i] : !isDigit) return;
  }
  const std::string date = stamp->substr(0, pattern.size() - 1);
  const std::string time = stamp->substr(pattern.size());
  gps.set(kCGImagePropertyGPSDateStamp, date);
  gps.set(kCGImagePropertyGPSTimeStamp, time);
}

/// An altitude that comes without a reference of its own, as from a location, has a sign instead.
void splitAltitude(const Dictionary& before, Dictionary& gps) {
  const Number* altitude = gps.get<Number>(kCGImagePropertyGPSAltitude);
  if (!altitude) return;
  const double metres = altitude->doubleValue();
  if (metres < 0) {
    gps.set(kCGImagePropertyGPSAltitude, -metres);
    gps.set(kCGImagePropertyGPSAltitudeRef, belowSeaLevel);
  } else if (!isSame(gps.find(kCGImagePropertyGPSAltitude),
                     before.find(kCGImagePropertyGPSAltitude)) &&
             isSame(gps.find(kCGImagePropertyGPSAltitudeRef),
                    before.find(kCGImagePropertyGPSAltitudeRef))) {
    gps.set(kCGImagePropertyGPSAltitudeRef, aboveSeaLevel);
  }
}

}  // namespace

ExifWanted exifWanted(const Dictionary& before, const Dictionary& properties) {
  ExifWanted wanted{.image = copied(properties, kCGImagePropertyTIFFDictionary),
                    .exif = copied(properties, kCGImagePropertyExifDictionary),
                    .gps = copied(properties, kCGImagePropertyGPSDictionary),
                    .makerNote = copied(properties, kCGImagePropertyMakerAppleDictionary)};
  if (const Number* orientation = properties.get<Number>(kCGImagePropertyOrientation)) {
    wanted.image.set(kCGImagePropertyTIFFOrientation, *orientation);
  }
  splitTimeStamp(wanted.gps);
  splitAltitude(copied(before, kCGImagePropertyGPSDictionary), wanted.gps);
  return wanted;
}

}  // namespace FrameworkUtility::detail
