// What the properties say, entry by entry.

#include <framework_utility/imageio/image_metadata.h>

#include <framework_utility/foundation/date_utility.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <utility>

namespace FrameworkUtility {
namespace {

/// The entry under `key` of the dictionary under `dictionaryKey`; null when it is missing or of
/// another type.
template <Held T>
const T* find(const std::optional<Dictionary>& properties, std::string_view dictionaryKey,
              std::string_view key) {
  const Dictionary* dictionary = properties ? properties->get<Dictionary>(dictionaryKey) : nullptr;
  return dictionary ? dictionary->get<T>(key) : nullptr;
}

template <Held T>
const T* find(const std::optional<Dictionary>& properties, std::string_view key) {
  return properties ? properties->get<T>(key) : nullptr;
}

template <Held T>
std::optional<T> copied(const T* value) {
  return value ? std::optional<T>(*value) : std::nullopt;
}

double wholeOrZero(const std::optional<Number>& number) {
  return number ? static_cast<double>(number->integerValue()) : 0;
}

}  // namespace

std::optional<Number> KvImageMetadata::width() const {
  return copied(find<Number>(properties_, kCGImagePropertyPixelWidth));
}

std::optional<Number> KvImageMetadata::height() const {
  return copied(find<Number>(properties_, kCGImagePropertyPixelHeight));
}

Size KvImageMetadata::size() const { return {wholeOrZero(width()), wholeOrZero(height())}; }

Size KvImageMetadata::sizeOriented() const {
  const Size stored = size();
  const std::uint32_t orientation = exifOrientation();
  return orientation >= 5 && orientation <= 8 ? Size{stored.height, stored.width} : stored;
}

std::optional<Number> KvImageMetadata::orientation() const {
  if (const Number* number = find<Number>(properties_, kCGImagePropertyOrientation)) return *number;
  return copied(
      find<Number>(properties_, kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFOrientation));
}

std::uint32_t KvImageMetadata::exifOrientation() const {
  const std::optional<Number> number = orientation();
  return number ? number->unsignedIntValue() : 1;
}

std::optional<Number> KvImageMetadata::fileSize() const {
  return copied(find<Number>(properties_, kCGImagePropertyFileSize));
}

std::optional<std::string> KvImageMetadata::cameraMake() const {
  return copied(
      find<std::string>(properties_, kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFMake));
}

std::optional<std::string> KvImageMetadata::cameraModel() const {
  return copied(
      find<std::string>(properties_, kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFModel));
}

std::optional<std::string> KvImageMetadata::software() const {
  return copied(
      find<std::string>(properties_, kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFSoftware));
}

std::optional<Number> KvImageMetadata::fNumber() const {
  return copied(
      find<Number>(properties_, kCGImagePropertyExifDictionary, kCGImagePropertyExifFNumber));
}

std::optional<Number> KvImageMetadata::focalLength() const {
  return copied(
      find<Number>(properties_, kCGImagePropertyExifDictionary, kCGImagePropertyExifFocalLength));
}

std::optional<Number> KvImageMetadata::iso() const {
  if (const Number* speed =
          find<Number>(properties_, kCGImagePropertyExifDictionary, kCGImagePropertyExifISOSpeed)) {
    return *speed;
  }
  const Array* ratings =
      find<Array>(properties_, kCGImagePropertyExifDictionary, kCGImagePropertyExifISOSpeedRatings);
  if (!ratings || ratings->empty()) return std::nullopt;
  return copied(ratings->front().as<Number>());
}

std::optional<std::string> KvImageMetadata::userComment() const {
  return copied(find<std::string>(properties_, kCGImagePropertyExifDictionary,
                                  kCGImagePropertyExifUserComment));
}

std::optional<Date> KvImageMetadata::date() const {
  // Without an EXIF dictionary the TIFF date does not count either.
  if (!find<Dictionary>(properties_, kCGImagePropertyExifDictionary)) return std::nullopt;
  for (const auto& [dictionary, key] :
       {std::pair{kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeDigitized},
        {kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeOriginal},
        {kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFDateTime}}) {
    if (const std::string* text = find<std::string>(properties_, dictionary, key)) {
      return dates::dateFromTextInUTC(*text);  // Written as local time, as the header says.
    }
  }
  return std::nullopt;
}

std::optional<CLLocation> KvImageMetadata::location() const {
  const auto number = [&](std::string_view key) {
    return find<Number>(properties_, kCGImagePropertyGPSDictionary, key);
  };
  const auto text = [&](std::string_view key) {
    return find<std::string>(properties_, kCGImagePropertyGPSDictionary, key);
  };
  const Number* latitude = number(kCGImagePropertyGPSLatitude);
  const Number* longitude = number(kCGImagePropertyGPSLongitude);
  const std::string* latitudeRef = text(kCGImagePropertyGPSLatitudeRef);
  const std::string* longitudeRef = text(kCGImagePropertyGPSLongitudeRef);
  if (!latitude || !longitude || !latitudeRef || !longitudeRef) return std::nullopt;
  const auto withSign = [](double value, bool negative) { return negative ? -value : value; };
  return CLLocation{.latitude = withSign(latitude->doubleValue(), *latitudeRef == "S"),
                    .longitude = withSign(longitude->doubleValue(), *longitudeRef == "W")};
}

std::optional<std::string> KvImageMetadata::livePhotoIdentifier() const {
  return copied(
      find<std::string>(properties_, kCGImagePropertyMakerAppleDictionary, livePhotoIdentifierKey));
}

bool KvImageMetadata::hasDepthOrDisparityInformation() const {
  return auxiliaryDataInfoDepth_ || auxiliaryDataInfoDisparity_;
}

}  // namespace FrameworkUtility
