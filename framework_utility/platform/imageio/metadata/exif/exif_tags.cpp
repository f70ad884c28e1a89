#include <framework_utility/platform/imageio/metadata/exif/exif_tags.h>

#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <array>
#include <optional>

namespace FrameworkUtility::detail {
namespace {

// Tags, types and counts: CIPA DC-008 (Exif 2.32) and TIFF 6.0. Keys: the platform's.

using enum ExifShape;
using enum TiffType;

constexpr ExifTag imageTags[] = {
    {0x0103, kCGImagePropertyTIFFCompression, layout},
    {0x0106, kCGImagePropertyTIFFPhotometricInterpretation, layout},
    {0x010D, kCGImagePropertyTIFFDocumentName, text},
    {0x010E, kCGImagePropertyTIFFImageDescription, text},
    {0x010F, kCGImagePropertyTIFFMake, text},
    {0x0110, kCGImagePropertyTIFFModel, text},
    {0x0112, kCGImagePropertyTIFFOrientation, number, unsignedShort},
    {0x011A, kCGImagePropertyTIFFXResolution, number, unsignedRational},
    {0x011B, kCGImagePropertyTIFFYResolution, number, unsignedRational},
    {0x0128, kCGImagePropertyTIFFResolutionUnit, number, unsignedShort},
    {0x012D, kCGImagePropertyTIFFTransferFunction, array, unsignedShort, 768},
    {0x0131, kCGImagePropertyTIFFSoftware, text},
    {0x0132, kCGImagePropertyTIFFDateTime, text},
    {0x013B, kCGImagePropertyTIFFArtist, text},
    {0x013C, kCGImagePropertyTIFFHostComputer, text},
    {0x013E, kCGImagePropertyTIFFWhitePoint, array, unsignedRational, 2},
    {0x013F, kCGImagePropertyTIFFPrimaryChromaticities, array, unsignedRational, 6},
    {0x0142, kCGImagePropertyTIFFTileWidth, layout},
    {0x0143, kCGImagePropertyTIFFTileLength, layout},
    {0x8298, kCGImagePropertyTIFFCopyright, text},
};

constexpr ExifTag pictureTags[] = {
    {0x829A, kCGImagePropertyExifExposureTime, number, unsignedRational},
    {0x829D, kCGImagePropertyExifFNumber, number, unsignedRational},
    {0x8822, kCGImagePropertyExifExposureProgram, number, unsignedShort},
    {0x8824, kCGImagePropertyExifSpectralSensitivity, text},
    {0x8827, kCGImagePropertyExifISOSpeedRatings, array, unsignedShort},
    {0x8830, kCGImagePropertyExifSensitivityType, number, unsignedShort},
    {0x8831, kCGImagePropertyExifStandardOutputSensitivity, number, unsignedLong},
    {0x8832, kCGImagePropertyExifRecommendedExposureIndex, number, unsignedLong},
    {0x8833, kCGImagePropertyExifISOSpeed, number, unsignedLong},
    {0x8834, kCGImagePropertyExifISOSpeedLatitudeyyy, number, unsignedLong},
    {0x8835, kCGImagePropertyExifISOSpeedLatitudezzz, number, unsignedLong},
    {0x9000, kCGImagePropertyExifVersion, version, undefined},
    {0x9003, kCGImagePropertyExifDateTimeOriginal, text},
    {0x9004, kCGImagePropertyExifDateTimeDigitized, text},
    {0x9010, kCGImagePropertyExifOffsetTime, text},
    {0x9011, kCGImagePropertyExifOffsetTimeOriginal, text},
    {0x9012, kCGImagePropertyExifOffsetTimeDigitized, text},
    {0x9101, kCGImagePropertyExifComponentsConfiguration, array, undefined, 4},
    {0x9102, kCGImagePropertyExifCompressedBitsPerPixel, number, unsignedRational},
    {0x9201, kCGImagePropertyExifShutterSpeedValue, number, signedRational},
    {0x9202, kCGImagePropertyExifApertureValue, number, unsignedRational},
    {0x9203, kCGImagePropertyExifBrightnessValue, number, signedRational},
    {0x9204, kCGImagePropertyExifExposureBiasValue, number, signedRational},
    {0x9205, kCGImagePropertyExifMaxApertureValue, number, unsignedRational},
    {0x9206, kCGImagePropertyExifSubjectDistance, number, unsignedRational},
    {0x9207, kCGImagePropertyExifMeteringMode, number, unsignedShort},
    {0x9208, kCGImagePropertyExifLightSource, number, unsignedShort},
    {0x9209, kCGImagePropertyExifFlash, number, unsignedShort},
    {0x920A, kCGImagePropertyExifFocalLength, number, unsignedRational},
    {0x9214, kCGImagePropertyExifSubjectArea, array, unsignedShort},
    {0x9286, kCGImagePropertyExifUserComment, comment, undefined},
    {0x9290, kCGImagePropertyExifSubsecTime, text},
    {0x9291, kCGImagePropertyExifSubsecTimeOriginal, text},
    {0x9292, kCGImagePropertyExifSubsecTimeDigitized, text},
    {0xA000, kCGImagePropertyExifFlashPixVersion, version, undefined},
    {0xA001, kCGImagePropertyExifColorSpace, number, unsignedShort},
    {0xA002, kCGImagePropertyExifPixelXDimension, number, unsignedLong},
    {0xA003, kCGImagePropertyExifPixelYDimension, number, unsignedLong},
    {0xA004, kCGImagePropertyExifRelatedSoundFile, text},
    {0xA20B, kCGImagePropertyExifFlashEnergy, number, unsignedRational},
    {0xA20E, kCGImagePropertyExifFocalPlaneXResolution, number, unsignedRational},
    {0xA20F, kCGImagePropertyExifFocalPlaneYResolution, number, unsignedRational},
    {0xA210, kCGImagePropertyExifFocalPlaneResolutionUnit, number, unsignedShort},
    {0xA214, kCGImagePropertyExifSubjectLocation, array, unsignedShort, 2},
    {0xA215, kCGImagePropertyExifExposureIndex, number, unsignedRational},
    {0xA217, kCGImagePropertyExifSensingMethod, number, unsignedShort},
    {0xA300, kCGImagePropertyExifFileSource, number, undefined},
    {0xA301, kCGImagePropertyExifSceneType, number, undefined},
    {0xA401, kCGImagePropertyExifCustomRendered, number, unsignedShort},
    {0xA402, kCGImagePropertyExifExposureMode, number, unsignedShort},
    {0xA403, kCGImagePropertyExifWhiteBalance, number, unsignedShort},
    {0xA404, kCGImagePropertyExifDigitalZoomRatio, number, unsignedRational},
    {0xA405, kCGImagePropertyExifFocalLenIn35mmFilm, number, unsignedShort},
    {0xA406, kCGImagePropertyExifSceneCaptureType, number, unsignedShort},
    {0xA407, kCGImagePropertyExifGainControl, number, unsignedShort},
    {0xA408, kCGImagePropertyExifContrast, number, unsignedShort},
    {0xA409, kCGImagePropertyExifSaturation, number, unsignedShort},
    {0xA40A, kCGImagePropertyExifSharpness, number, unsignedShort},
    {0xA40C, kCGImagePropertyExifSubjectDistRange, number, unsignedShort},
    {0xA420, kCGImagePropertyExifImageUniqueID, text},
    {0xA430, kCGImagePropertyExifCameraOwnerName, text, ascii, 0, kCGImagePropertyExifAuxOwnerName},
    {0xA431, kCGImagePropertyExifBodySerialNumber, text, ascii, 0,
     kCGImagePropertyExifAuxSerialNumber},
    {0xA432, kCGImagePropertyExifLensSpecification, array, unsignedRational, 4,
     kCGImagePropertyExifAuxLensInfo},
    {0xA433, kCGImagePropertyExifLensMake, text},
    {0xA434, kCGImagePropertyExifLensModel, text, ascii, 0, kCGImagePropertyExifAuxLensModel},
    {0xA435, kCGImagePropertyExifLensSerialNumber, text, ascii, 0,
     kCGImagePropertyExifAuxLensSerialNumber},
    {0xA460, kCGImagePropertyExifCompositeImage, number, unsignedShort},
    {0xA500, kCGImagePropertyExifGamma, number, unsignedRational},
};

constexpr ExifTag gpsTags[] = {
    {0x00, kCGImagePropertyGPSVersion, array, unsignedByte, 4},
    {0x01, kCGImagePropertyGPSLatitudeRef, text},
    {0x02, kCGImagePropertyGPSLatitude, degrees, unsignedRational},
    {0x03, kCGImagePropertyGPSLongitudeRef, text},
    {0x04, kCGImagePropertyGPSLongitude, degrees, unsignedRational},
    {0x05, kCGImagePropertyGPSAltitudeRef, number, unsignedByte},
    {0x06, kCGImagePropertyGPSAltitude, number, unsignedRational},
    {0x07, kCGImagePropertyGPSTimeStamp, time, unsignedRational},
    {0x08, kCGImagePropertyGPSSatellites, text},
    {0x09, kCGImagePropertyGPSStatus, text},
    {0x0A, kCGImagePropertyGPSMeasureMode, text},
    {0x0B, kCGImagePropertyGPSDOP, number, unsignedRational},
    {0x0C, kCGImagePropertyGPSSpeedRef, text},
    {0x0D, kCGImagePropertyGPSSpeed, number, unsignedRational},
    {0x0E, kCGImagePropertyGPSTrackRef, text},
    {0x0F, kCGImagePropertyGPSTrack, number, unsignedRational},
    {0x10, kCGImagePropertyGPSImgDirectionRef, text},
    {0x11, kCGImagePropertyGPSImgDirection, number, unsignedRational},
    {0x12, kCGImagePropertyGPSMapDatum, text},
    {0x13, kCGImagePropertyGPSDestLatitudeRef, text},
    {0x14, kCGImagePropertyGPSDestLatitude, degrees, unsignedRational},
    {0x15, kCGImagePropertyGPSDestLongitudeRef, text},
    {0x16, kCGImagePropertyGPSDestLongitude, degrees, unsignedRational},
    {0x17, kCGImagePropertyGPSDestBearingRef, text},
    {0x18, kCGImagePropertyGPSDestBearing, number, unsignedRational},
    {0x19, kCGImagePropertyGPSDestDistanceRef, text},
    {0x1A, kCGImagePropertyGPSDestDistance, number, unsignedRational},
    {0x1B, kCGImagePropertyGPSProcessingMethod, comment, undefined},
    {0x1C, kCGImagePropertyGPSAreaInformation, comment, undefined},
    {0x1D, kCGImagePropertyGPSDateStamp, text},
    {0x1E, kCGImagePropertyGPSDifferental, number, unsignedShort},
    {0x1F, kCGImagePropertyGPSHPositioningError, number, unsignedRational},
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
