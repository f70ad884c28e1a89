// Changes to the properties, entry by entry. None drops the metadata as stored: a save merges the
// changes into it.

#include <framework_utility/imageio/image_metadata.h>

#include <framework_utility/foundation/date_utility.h>
#include <framework_utility/imageio/image_orientation.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <cmath>

namespace FrameworkUtility {

void KvImageMetadata::setOrientation(std::optional<Number> orientation) {
  if (!orientation) return;
  edited().set(kCGImagePropertyOrientation, *orientation);
  edited(kCGImagePropertyTIFFDictionary).set(kCGImagePropertyTIFFOrientation, *orientation);
}

void KvImageMetadata::setImageOrientation(UIImageOrientation orientation) {
  const std::uint32_t exif = exifOrientationWithImageOrientation(orientation);
  setOrientation(exif == 0 ? 1 : exif);
}

void KvImageMetadata::setSoftware(std::optional<std::string_view> software) {
  if (!software) return;
  edited(kCGImagePropertyTIFFDictionary).set(kCGImagePropertyTIFFSoftware, *software);
}

void KvImageMetadata::setUserComment(std::optional<std::string_view> comment) {
  if (!comment) return;
  edited(kCGImagePropertyExifDictionary).set(kCGImagePropertyExifUserComment, *comment);
}

void KvImageMetadata::setDateDigitized(std::optional<Date> date) {
  if (!date) return;
  edited(kCGImagePropertyExifDictionary)
      .set(kCGImagePropertyExifDateTimeDigitized, dates::utcFormatted(*date));
}

void KvImageMetadata::setDateOriginal(std::optional<Date> date) {
  if (!date) return;
  const std::string text = dates::utcFormatted(*date);
  edited(kCGImagePropertyExifDictionary).set(kCGImagePropertyExifDateTimeOriginal, text);
  edited(kCGImagePropertyTIFFDictionary).set(kCGImagePropertyTIFFDateTime, text);
}

void KvImageMetadata::setLocation(const std::optional<CLLocation>& location) {
  if (!location) return;
  Dictionary& gps = edited(kCGImagePropertyGPSDictionary);
  gps.set(kCGImagePropertyGPSTimeStamp, dates::utcFormatted(location->timestamp));
  gps.set(kCGImagePropertyGPSLatitudeRef, location->latitude < 0 ? "S" : "N");
  gps.set(kCGImagePropertyGPSLatitude, std::abs(location->latitude));
  gps.set(kCGImagePropertyGPSLongitudeRef, location->longitude < 0 ? "W" : "E");
  gps.set(kCGImagePropertyGPSLongitude, std::abs(location->longitude));
  gps.set(kCGImagePropertyGPSDOP, location->horizontalAccuracy);
  // Signed and without a reference: the writer gives it one.
  gps.set(kCGImagePropertyGPSAltitude, location->altitude);
}

void KvImageMetadata::setLivePhotoIdentifier(std::optional<std::string_view> identifier) {
  if (!identifier) return;
  edited(kCGImagePropertyMakerAppleDictionary).set(livePhotoIdentifierKey, *identifier);
}

void KvImageMetadata::removeLivePhotosMetadata() {
  if (!properties_ || !properties_->get<Dictionary>(kCGImagePropertyMakerAppleDictionary)) return;
  Dictionary& makerNote = edited(kCGImagePropertyMakerAppleDictionary);
  makerNote.remove(livePhotoIdentifierKey);
  makerNote.remove(17);  // Other writers use the tag's number.
}

}  // namespace FrameworkUtility
