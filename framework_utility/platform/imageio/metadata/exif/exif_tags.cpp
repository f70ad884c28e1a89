#include <framework_utility/platform/imageio/metadata/exif/exif_tags.h>

#include <framework_utility/platform/imageio/metadata/property_keys.h>

#include <array>
#include <optional>

namespace FrameworkUtility::detail {
namespace {

// Tags, types and counts: CIPA DC-008 (Exif 2.32) and TIFF 6.0. Keys: the platform's.

using enum ExifShape;
using enum TiffType;

constexpr ExifTag imageTags[] = {
    {0x0103, "Compression", layout},
    {0x0106, "PhotometricInterpretation", layout},
    {0x010D, "DocumentName", text},
    {0x010E, "ImageDescription", text},
    {0x010F, "Make", text},
    {0x0110, "Model", text},
    {0x0112, "Orientation", number, unsignedShort},
    {0x011A, "XResolution", number, unsignedRational},
    {0x011B, "YResolution", number, unsignedRational},
    {0x0128, "ResolutionUnit", number, unsignedShort},
    {0x012D, "TransferFunction", array, unsignedShort, 768},
    {0x0131, "Software", text},
    {0x0132, "DateTime", text},
    {0x013B, "Artist", text},
    {0x013C, "HostComputer", text},
    {0x013E, "WhitePoint", array, unsignedRational, 2},
    {0x013F, "PrimaryChromaticities", array, unsignedRational, 6},
    {0x0142, "TileWidth", layout},
    {0x0143, "TileLength", layout},
    {0x8298, "Copyright", text},
};

constexpr ExifTag pictureTags[] = {
    {0x829A, "ExposureTime", number, unsignedRational},
    {0x829D, "FNumber", number, unsignedRational},
    {0x8822, "ExposureProgram", number, unsignedShort},
    {0x8824, "SpectralSensitivity", text},
    {0x8827, "ISOSpeedRatings", array, unsignedShort},
    {0x8830, "SensitivityType", number, unsignedShort},
    {0x8831, "StandardOutputSensitivity", number, unsignedLong},
    {0x8832, "RecommendedExposureIndex", number, unsignedLong},
    {0x8833, "ISOSpeed", number, unsignedLong},
    {0x8834, "ISOSpeedLatitudeyyy", number, unsignedLong},
    {0x8835, "ISOSpeedLatitudezzz", number, unsignedLong},
    {0x9000, "ExifVersion", version, undefined},
    {0x9003, "DateTimeOriginal", text},
    {0x9004, "DateTimeDigitized", text},
    {0x9010, "OffsetTime", text},
    {0x9011, "OffsetTimeOriginal", text},
    {0x9012, "OffsetTimeDigitized", text},
    {0x9101, "ComponentsConfiguration", array, undefined, 4},
    {0x9102, "CompressedBitsPerPixel", number, unsignedRational},
    {0x9201, "ShutterSpeedValue", number, signedRational},
    {0x9202, "ApertureValue", number, unsignedRational},
    {0x9203, "BrightnessValue", number, signedRational},
    {0x9204, "ExposureBiasValue", number, signedRational},
    {0x9205, "MaxApertureValue", number, unsignedRational},
    {0x9206, "SubjectDistance", number, unsignedRational},
    {0x9207, "MeteringMode", number, unsignedShort},
    {0x9208, "LightSource", number, unsignedShort},
    {0x9209, "Flash", number, unsignedShort},
    {0x920A, "FocalLength", number, unsignedRational},
    {0x9214, "SubjectArea", array, unsignedShort},
    {0x9286, "UserComment", comment, undefined},
    {0x9290, "SubsecTime", text},
    {0x9291, "SubsecTimeOriginal", text},
    {0x9292, "SubsecTimeDigitized", text},
    {0xA000, "FlashPixVersion", version, undefined},
    {0xA001, "ColorSpace", number, unsignedShort},
    {0xA002, "PixelXDimension", number, unsignedLong},
    {0xA003, "PixelYDimension", number, unsignedLong},
    {0xA004, "RelatedSoundFile", text},
    {0xA20B, "FlashEnergy", number, unsignedRational},
    {0xA20E, "FocalPlaneXResolution", number, unsignedRational},
    {0xA20F, "FocalPlaneYResolution", number, unsignedRational},
    {0xA210, "FocalPlaneResolutionUnit", number, unsignedShort},
    {0xA214, "SubjectLocation", array, unsignedShort, 2},
    {0xA215, "ExposureIndex", number, unsignedRational},
    {0xA217, "SensingMethod", number, unsignedShort},
    {0xA300, "FileSource", number, undefined},
    {0xA301, "SceneType", number, undefined},
    {0xA401, "CustomRendered", number, unsignedShort},
    {0xA402, "ExposureMode", number, unsignedShort},
    {0xA403, "WhiteBalance", number, unsignedShort},
    {0xA404, "DigitalZoomRatio", number, unsignedRational},
    {0xA405, "FocalLenIn35mmFilm", number, unsignedShort},
    {0xA406, "SceneCaptureType", number, unsignedShort},
    {0xA407, "GainControl", number, unsignedShort},
    {0xA408, "Contrast", number, unsignedShort},
    {0xA409, "Saturation", number, unsignedShort},
    {0xA40A, "Sharpness", number, unsignedShort},
    {0xA40C, "SubjectDistRange", number, unsignedShort},
    {0xA420, "ImageUniqueID", text},
    {0xA430, "CameraOwnerName", text, ascii, 0, "OwnerName"},
    {0xA431, "BodySerialNumber", text, ascii, 0, "SerialNumber"},
    {0xA432, "LensSpecification", array, unsignedRational, 4, "LensInfo"},
    {0xA433, "LensMake", text},
    {0xA434, "LensModel", text, ascii, 0, "LensModel"},
    {0xA435, "LensSerialNumber", text, ascii, 0, "LensSerialNumber"},
    {0xA460, "CompositeImage", number, unsignedShort},
    {0xA500, "Gamma", number, unsignedRational},
};

constexpr ExifTag gpsTags[] = {
    {0x00, "GPSVersion", array, unsignedByte, 4},
    {0x01, "LatitudeRef", text},
    {0x02, "Latitude", degrees, unsignedRational},
    {0x03, "LongitudeRef", text},
    {0x04, "Longitude", degrees, unsignedRational},
    {0x05, "AltitudeRef", number, unsignedByte},
    {0x06, "Altitude", number, unsignedRational},
    {0x07, "TimeStamp", time, unsignedRational},
    {0x08, "Satellites", text},
    {0x09, "Status", text},
    {0x0A, "MeasureMode", text},
    {0x0B, "DOP", number, unsignedRational},
    {0x0C, "SpeedRef", text},
    {0x0D, "Speed", number, unsignedRational},
    {0x0E, "TrackRef", text},
    {0x0F, "Track", number, unsignedRational},
    {0x10, "ImgDirectionRef", text},
    {0x11, "ImgDirection", number, unsignedRational},
    {0x12, "MapDatum", text},
    {0x13, "DestLatitudeRef", text},
    {0x14, "DestLatitude", degrees, unsignedRational},
    {0x15, "DestLongitudeRef", text},
    {0x16, "DestLongitude", degrees, unsignedRational},
    {0x17, "DestBearingRef", text},
    {0x18, "DestBearing", number, unsignedRational},
    {0x19, "DestDistanceRef", text},
    {0x1A, "DestDistance", number, unsignedRational},
    {0x1B, "ProcessingMethod", comment, undefined},
    {0x1C, "AreaInformation", comment, undefined},
    {0x1D, "DateStamp", text},
    {0x1E, "Differental", number, unsignedShort},  // The platform's spelling.
    {0x1F, "HPositioningError", number, unsignedRational},
};

/// Finds a tag's record by one division: no two tags of a table leave the same remainder.
template <std::size_t Buckets>
class Index {
 public:
  consteval explicit Index(std::span<const ExifTag> tags) {
    std::size_t previous = 0;
    for (std::size_t i = 0; i < tags.size(); ++i) {
      std::uint8_t& place = places_[tags[i].tag % Buckets];
      if (place != 0) throw "two tags share a bucket: choose another number of buckets";
      if (i > 0 && tags[i].tag <= previous) throw "the tags are not in ascending order";
      previous = tags[i].tag;
      place = static_cast<std::uint8_t>(i + 1);
    }
    if (tags.size() > exifTagLimit) throw "more tags than exifTagLimit";
  }

  const ExifTag* find(std::span<const ExifTag> tags, std::uint16_t tag) const {
    const std::size_t place = places_[tag % Buckets];
    return place != 0 && tags[place - 1].tag == tag ? &tags[place - 1] : nullptr;
  }

 private:
  std::array<std::uint8_t, Buckets> places_{};
};

constexpr Index<58> imageIndex(imageTags);
constexpr Index<300> pictureIndex(pictureTags);
constexpr Index<32> gpsIndex(gpsTags);

}  // namespace

std::string_view exifDictionaryKey(ExifDirectory directory) {
  constexpr std::string_view keys[exifDirectoryCount] = {kCGImagePropertyTIFFDictionary,
                                                         kCGImagePropertyExifDictionary,
                                                         kCGImagePropertyGPSDictionary};
  return keys[static_cast<std::size_t>(directory)];
}

std::span<const ExifTag> exifTags(ExifDirectory directory) {
  switch (directory) {
    case ExifDirectory::image:
      return imageTags;
    case ExifDirectory::exif:
      return pictureTags;
    case ExifDirectory::gps:
      return gpsTags;
  }
  return {};
}

const ExifTag* exifTag(ExifDirectory directory, std::uint16_t tag) {
  switch (directory) {
    case ExifDirectory::image:
      return imageIndex.find(imageTags, tag);
    case ExifDirectory::exif:
      return pictureIndex.find(pictureTags, tag);
    case ExifDirectory::gps:
      return gpsIndex.find(gpsTags, tag);
  }
  return nullptr;
}

const ExifTag* exifTag(ExifDirectory directory, const Key& key) {
  const std::optional<std::string_view> text = key.text();
  for (const ExifTag& tag : exifTags(directory)) {
    if (text == tag.key) return &tag;
  }
  return nullptr;
}

}  // namespace FrameworkUtility::detail
