#include <framework_utility/platform/imageio/metadata/xmp/xmp_mapping.h>

#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <span>

namespace FrameworkUtility::detail {
namespace {

using enum XmpForm;

constexpr std::string_view tiff = kCGImagePropertyTIFFDictionary;
constexpr std::string_view exif = kCGImagePropertyExifDictionary;
constexpr std::string_view gps = kCGImagePropertyGPSDictionary;
constexpr std::string_view iptc = kCGImagePropertyIPTCDictionary;
constexpr std::string_view aux = kCGImagePropertyExifAuxDictionary;

/// XMP specification part 2: the TIFF and EXIF schemas. What describes the encoding of the pixels
/// or of the EXIF block itself (Compression, ExifVersion, ...) is left out: of another file it is
/// wrong.
constexpr XmpMapping tiffProperties[] = {
    {"Make", text, tiff, kCGImagePropertyTIFFMake},
    {"Model", text, tiff, kCGImagePropertyTIFFModel},
    {"Software", text, tiff, kCGImagePropertyTIFFSoftware},
    {"Artist", text, tiff, kCGImagePropertyTIFFArtist},
    {"Copyright", languages, tiff, kCGImagePropertyTIFFCopyright},
    {"ImageDescription", languages, tiff, kCGImagePropertyTIFFImageDescription},
    {"DateTime", dateTime, tiff, kCGImagePropertyTIFFDateTime},
    {"Orientation", integer, tiff, kCGImagePropertyTIFFOrientation},
    {"XResolution", rational, tiff, kCGImagePropertyTIFFXResolution},
    {"YResolution", rational, tiff, kCGImagePropertyTIFFYResolution},
    {"ResolutionUnit", integer, tiff, kCGImagePropertyTIFFResolutionUnit},
    {"ImageWidth", pixelWidth},
    {"ImageLength", pixelHeight},
};

constexpr XmpMapping exifProperties[] = {
    {"DateTimeOriginal", dateTime, exif, kCGImagePropertyExifDateTimeOriginal},
    {"DateTimeDigitized", dateTime, exif, kCGImagePropertyExifDateTimeDigitized},
    {"ExposureTime", rational, exif, kCGImagePropertyExifExposureTime},
    {"FNumber", rational, exif, kCGImagePropertyExifFNumber},
    {"ExposureProgram", integer, exif, kCGImagePropertyExifExposureProgram},
    {"ISOSpeedRatings", integers, exif, kCGImagePropertyExifISOSpeedRatings},
    {"ShutterSpeedValue", rational, exif, kCGImagePropertyExifShutterSpeedValue},
    {"ApertureValue", rational, exif, kCGImagePropertyExifApertureValue},
    {"BrightnessValue", rational, exif, kCGImagePropertyExifBrightnessValue},
    {"ExposureBiasValue", rational, exif, kCGImagePropertyExifExposureBiasValue},
    {"MaxApertureValue", rational, exif, kCGImagePropertyExifMaxApertureValue},
    {"SubjectDistance", rational, exif, kCGImagePropertyExifSubjectDistance},
    {"SubjectArea", integers, exif, kCGImagePropertyExifSubjectArea},
    {"MeteringMode", integer, exif, kCGImagePropertyExifMeteringMode},
    {"LightSource", integer, exif, kCGImagePropertyExifLightSource},
    {"FocalLength", rational, exif, kCGImagePropertyExifFocalLength},
    {"FocalLengthIn35mmFilm", integer, exif, kCGImagePropertyExifFocalLenIn35mmFilm},
    {"FocalPlaneXResolution", rational, exif, kCGImagePropertyExifFocalPlaneXResolution},
    {"FocalPlaneYResolution", rational, exif, kCGImagePropertyExifFocalPlaneYResolution},
    {"FocalPlaneResolutionUnit", integer, exif, kCGImagePropertyExifFocalPlaneResolutionUnit},
    {"ColorSpace", integer, exif, kCGImagePropertyExifColorSpace},
    {"PixelXDimension", pixelWidth, exif, kCGImagePropertyExifPixelXDimension},
    {"PixelYDimension", pixelHeight, exif, kCGImagePropertyExifPixelYDimension},
    {"SensingMethod", integer, exif, kCGImagePropertyExifSensingMethod},
    {"FileSource", integer, exif, kCGImagePropertyExifFileSource},
    {"SceneType", integer, exif, kCGImagePropertyExifSceneType},
    {"CustomRendered", integer, exif, kCGImagePropertyExifCustomRendered},
    {"ExposureMode", integer, exif, kCGImagePropertyExifExposureMode},
    {"WhiteBalance", integer, exif, kCGImagePropertyExifWhiteBalance},
    {"DigitalZoomRatio", rational, exif, kCGImagePropertyExifDigitalZoomRatio},
    {"SceneCaptureType", integer, exif, kCGImagePropertyExifSceneCaptureType},
    {"GainControl", integer, exif, kCGImagePropertyExifGainControl},
    {"Contrast", integer, exif, kCGImagePropertyExifContrast},
    {"Saturation", integer, exif, kCGImagePropertyExifSaturation},
    {"Sharpness", integer, exif, kCGImagePropertyExifSharpness},
    {"SubjectDistanceRange", integer, exif, kCGImagePropertyExifSubjectDistRange},
    {"UserComment", languages, exif, kCGImagePropertyExifUserComment},
    {"ImageUniqueID", text, exif, kCGImagePropertyExifImageUniqueID},
    {"RelatedSoundFile", text, exif, kCGImagePropertyExifRelatedSoundFile},
    {"GPSLatitude", coordinate, gps, kCGImagePropertyGPSLatitude, kCGImagePropertyGPSLatitudeRef},
    {"GPSLongitude", coordinate, gps, kCGImagePropertyGPSLongitude,
     kCGImagePropertyGPSLongitudeRef},
    {"GPSAltitude", altitude, gps, kCGImagePropertyGPSAltitude, kCGImagePropertyGPSAltitudeRef},
    {"GPSAltitudeRef", altitudeRef, gps, kCGImagePropertyGPSAltitudeRef,
     kCGImagePropertyGPSAltitude},
    {"GPSTimeStamp", gpsDate, gps, kCGImagePropertyGPSTimeStamp, kCGImagePropertyGPSDateStamp},
    {"GPSDOP", rational, gps, kCGImagePropertyGPSDOP},
    {"GPSSpeed", rational, gps, kCGImagePropertyGPSSpeed},
    {"GPSSpeedRef", text, gps, kCGImagePropertyGPSSpeedRef},
    {"GPSTrack", rational, gps, kCGImagePropertyGPSTrack},
    {"GPSTrackRef", text, gps, kCGImagePropertyGPSTrackRef},
    {"GPSImgDirection", rational, gps, kCGImagePropertyGPSImgDirection},
    {"GPSImgDirectionRef", text, gps, kCGImagePropertyGPSImgDirectionRef},
    {"GPSDestLatitude", coordinate, gps, kCGImagePropertyGPSDestLatitude,
     kCGImagePropertyGPSDestLatitudeRef},
    {"GPSDestLongitude", coordinate, gps, kCGImagePropertyGPSDestLongitude,
     kCGImagePropertyGPSDestLongitudeRef},
    {"GPSDestBearing", rational, gps, kCGImagePropertyGPSDestBearing},
    {"GPSDestBearingRef", text, gps, kCGImagePropertyGPSDestBearingRef},
    {"GPSDestDistance", rational, gps, kCGImagePropertyGPSDestDistance},
    {"GPSDestDistanceRef", text, gps, kCGImagePropertyGPSDestDistanceRef},
    {"GPSHPositioningError", rational, gps, kCGImagePropertyGPSHPositioningError},
    {"GPSMapDatum", text, gps, kCGImagePropertyGPSMapDatum},
    {"GPSSatellites", text, gps, kCGImagePropertyGPSSatellites},
    {"GPSStatus", text, gps, kCGImagePropertyGPSStatus},
    {"GPSMeasureMode", text, gps, kCGImagePropertyGPSMeasureMode},
    {"GPSProcessingMethod", text, gps, kCGImagePropertyGPSProcessingMethod},
    {"GPSAreaInformation", text, gps, kCGImagePropertyGPSAreaInformation},
    {"GPSDifferential", integer, gps, kCGImagePropertyGPSDifferental},
};

/// CIPA DC-010: what EXIF 2.3 added.
constexpr XmpMapping exifExProperties[] = {
    {"PhotographicSensitivity", integers, exif, kCGImagePropertyExifISOSpeedRatings},
    {"SensitivityType", integer, exif, kCGImagePropertyExifSensitivityType},
    {"ISOSpeed", integer, exif, kCGImagePropertyExifISOSpeed},
    {"CameraOwnerName", text, exif, kCGImagePropertyExifCameraOwnerName},
    {"BodySerialNumber", text, exif, kCGImagePropertyExifBodySerialNumber},
    {"LensMake", text, exif, kCGImagePropertyExifLensMake},
    {"LensModel", text, exif, kCGImagePropertyExifLensModel},
    {"LensSerialNumber", text, exif, kCGImagePropertyExifLensSerialNumber},
    {"LensSpecification", rationals, exif, kCGImagePropertyExifLensSpecification},
    {"Gamma", rational, exif, kCGImagePropertyExifGamma},
    {"CompositeImage", integer, exif, kCGImagePropertyExifCompositeImage},
};

constexpr XmpMapping auxProperties[] = {
    {"Lens", text, aux, kCGImagePropertyExifAuxLensModel},
    {"LensInfo", lensInfo, aux, kCGImagePropertyExifAuxLensInfo},
    {"LensID", text, aux, kCGImagePropertyExifAuxLensID},
    {"LensSerialNumber", text, aux, kCGImagePropertyExifAuxLensSerialNumber},
    {"SerialNumber", text, aux, kCGImagePropertyExifAuxSerialNumber},
    {"ImageNumber", text, aux, kCGImagePropertyExifAuxImageNumber},
    {"FlashCompensation", rational, aux, kCGImagePropertyExifAuxFlashCompensation},
    {"OwnerName", text, aux, kCGImagePropertyExifAuxOwnerName},
    {"Firmware", text, aux, kCGImagePropertyExifAuxFirmware},
};

/// IPTC Photo Metadata Standard: the core properties and the IIM datasets that they continue.
constexpr XmpMapping dublinCoreProperties[] = {
    {"creator", list, iptc, kCGImagePropertyIPTCByline},
    {"subject", list, iptc, kCGImagePropertyIPTCKeywords},
    {"title", languages, iptc, kCGImagePropertyIPTCObjectName},
    {"description", languages, iptc, kCGImagePropertyIPTCCaptionAbstract},
    {"rights", languages, iptc, kCGImagePropertyIPTCCopyrightNotice},
};

constexpr XmpMapping photoshopProperties[] = {
    {"DateCreated", iptcDate, iptc, kCGImagePropertyIPTCDateCreated,
     kCGImagePropertyIPTCTimeCreated},
    {"Headline", text, iptc, kCGImagePropertyIPTCHeadline},
    {"Credit", text, iptc, kCGImagePropertyIPTCCredit},
    {"Source", text, iptc, kCGImagePropertyIPTCSource},
    {"City", text, iptc, kCGImagePropertyIPTCCity},
    {"State", text, iptc, kCGImagePropertyIPTCProvinceState},
    {"Country", text, iptc, kCGImagePropertyIPTCCountryPrimaryLocationName},
    {"Instructions", text, iptc, kCGImagePropertyIPTCSpecialInstructions},
    {"CaptionWriter", text, iptc, kCGImagePropertyIPTCWriterEditor},
};

constexpr XmpMapping iptcCoreProperties[] = {
    {"Location", text, iptc, kCGImagePropertyIPTCSubLocation},
    {"CountryCode", text, iptc, kCGImagePropertyIPTCCountryPrimaryLocationCode},
};

/// The dates and the tool of this schema are those of the file, not of the photo: they fill
/// nothing.
constexpr XmpMapping basicProperties[] = {
    {"Rating", integer, iptc, kCGImagePropertyIPTCStarRating},
    {"Thumbnails", obsolete},
};

constexpr XmpMapping noteProperties[] = {
    {"HasExtendedXMP", extensionName},
};

struct Namespace {
  std::string_view uri;
  std::span<const XmpMapping> properties;
  XmpUse use = XmpUse::merging;
};

/// What is read is merged too.
bool isUsedFor(const Namespace& space, XmpUse use) {
  return use == XmpUse::merging || space.use == XmpUse::reading;
}

constexpr Namespace namespaces[] = {
    {"http://ns.adobe.com/tiff/1.0/", tiffProperties, XmpUse::reading},
    {"http://ns.adobe.com/exif/1.0/", exifProperties, XmpUse::reading},
    {"http://cipa.jp/exif/1.0/", exifExProperties, XmpUse::reading},
    {"http://ns.adobe.com/exif/1.0/aux/", auxProperties, XmpUse::reading},
    {"http://purl.org/dc/elements/1.1/", dublinCoreProperties},
    {"http://ns.adobe.com/photoshop/1.0/", photoshopProperties},
    {"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/", iptcCoreProperties},
    {"http://ns.adobe.com/xap/1.0/", basicProperties},
    {"http://ns.adobe.com/xmp/note/", noteProperties},
};

}  // namespace

const XmpMapping* findXmpMapping(std::string_view name) {
  const std::size_t bar = name.rfind('|');
  if (bar == std::string_view::npos) return nullptr;
  for (const Namespace& space : namespaces) {
    if (space.uri != name.substr(0, bar)) continue;
    for (const XmpMapping& mapping : space.properties) {
      if (mapping.name == name.substr(bar + 1)) return &mapping;
    }
  }
  return nullptr;
}

bool mentionsMappedNamespace(std::string_view packet, XmpUse use) {
  constexpr std::string_view scheme = "http://";
  for (std::size_t at = 0; (at = packet.find(scheme, at)) != packet.npos; at += scheme.size()) {
    for (const Namespace& space : namespaces) {
      if (isUsedFor(space, use) && packet.substr(at, space.uri.size()) == space.uri) return true;
    }
  }
  return false;
}

}  // namespace FrameworkUtility::detail
