#include <framework_utility/platform/imageio/metadata/xmp/xmp_mapping.h>

#include <span>

namespace FrameworkUtility::detail {
namespace {

using enum XmpForm;

constexpr std::string_view tiff = "{TIFF}", exif = "{Exif}", gps = "{GPS}", iptc = "{IPTC}",
                           aux = "{ExifAux}";

/// XMP specification part 2: the TIFF and EXIF schemas. What describes the encoding of the pixels
/// or of the EXIF block itself (Compression, ExifVersion, ...) is left out: of another file it is
/// wrong.
constexpr XmpMapping tiffProperties[] = {
    {"Make", text, tiff, "Make"},
    {"Model", text, tiff, "Model"},
    {"Software", text, tiff, "Software"},
    {"Artist", text, tiff, "Artist"},
    {"Copyright", languages, tiff, "Copyright"},
    {"ImageDescription", languages, tiff, "ImageDescription"},
    {"DateTime", dateTime, tiff, "DateTime"},
    {"Orientation", integer, tiff, "Orientation"},
    {"XResolution", rational, tiff, "XResolution"},
    {"YResolution", rational, tiff, "YResolution"},
    {"ResolutionUnit", integer, tiff, "ResolutionUnit"},
    {"ImageWidth", pixelWidth},
    {"ImageLength", pixelHeight},
};

constexpr XmpMapping exifProperties[] = {
    {"DateTimeOriginal", dateTime, exif, "DateTimeOriginal"},
    {"DateTimeDigitized", dateTime, exif, "DateTimeDigitized"},
    {"ExposureTime", rational, exif, "ExposureTime"},
    {"FNumber", rational, exif, "FNumber"},
    {"ExposureProgram", integer, exif, "ExposureProgram"},
    {"ISOSpeedRatings", integers, exif, "ISOSpeedRatings"},
    {"ShutterSpeedValue", rational, exif, "ShutterSpeedValue"},
    {"ApertureValue", rational, exif, "ApertureValue"},
    {"BrightnessValue", rational, exif, "BrightnessValue"},
    {"ExposureBiasValue", rational, exif, "ExposureBiasValue"},
    {"MaxApertureValue", rational, exif, "MaxApertureValue"},
    {"SubjectDistance", rational, exif, "SubjectDistance"},
    {"SubjectArea", integers, exif, "SubjectArea"},
    {"MeteringMode", integer, exif, "MeteringMode"},
    {"LightSource", integer, exif, "LightSource"},
    {"FocalLength", rational, exif, "FocalLength"},
    {"FocalLengthIn35mmFilm", integer, exif, "FocalLenIn35mmFilm"},
    {"FocalPlaneXResolution", rational, exif, "FocalPlaneXResolution"},
    {"FocalPlaneYResolution", rational, exif, "FocalPlaneYResolution"},
    {"FocalPlaneResolutionUnit", integer, exif, "FocalPlaneResolutionUnit"},
    {"ColorSpace", integer, exif, "ColorSpace"},
    {"PixelXDimension", pixelWidth, exif, "PixelXDimension"},
    {"PixelYDimension", pixelHeight, exif, "PixelYDimension"},
    {"SensingMethod", integer, exif, "SensingMethod"},
    {"FileSource", integer, exif, "FileSource"},
    {"SceneType", integer, exif, "SceneType"},
    {"CustomRendered", integer, exif, "CustomRendered"},
    {"ExposureMode", integer, exif, "ExposureMode"},
    {"WhiteBalance", integer, exif, "WhiteBalance"},
    {"DigitalZoomRatio", rational, exif, "DigitalZoomRatio"},
    {"SceneCaptureType", integer, exif, "SceneCaptureType"},
    {"GainControl", integer, exif, "GainControl"},
    {"Contrast", integer, exif, "Contrast"},
    {"Saturation", integer, exif, "Saturation"},
    {"Sharpness", integer, exif, "Sharpness"},
    {"SubjectDistanceRange", integer, exif, "SubjectDistRange"},
    {"UserComment", languages, exif, "UserComment"},
    {"ImageUniqueID", text, exif, "ImageUniqueID"},
    {"RelatedSoundFile", text, exif, "RelatedSoundFile"},
    {"GPSLatitude", coordinate, gps, "Latitude", "LatitudeRef"},
    {"GPSLongitude", coordinate, gps, "Longitude", "LongitudeRef"},
    {"GPSAltitude", altitude, gps, "Altitude", "AltitudeRef"},
    {"GPSAltitudeRef", altitudeRef, gps, "AltitudeRef", "Altitude"},
    {"GPSTimeStamp", gpsDate, gps, "TimeStamp", "DateStamp"},
    {"GPSDOP", rational, gps, "DOP"},
    {"GPSSpeed", rational, gps, "Speed"},
    {"GPSSpeedRef", text, gps, "SpeedRef"},
    {"GPSTrack", rational, gps, "Track"},
    {"GPSTrackRef", text, gps, "TrackRef"},
    {"GPSImgDirection", rational, gps, "ImgDirection"},
    {"GPSImgDirectionRef", text, gps, "ImgDirectionRef"},
    {"GPSDestLatitude", coordinate, gps, "DestLatitude", "DestLatitudeRef"},
    {"GPSDestLongitude", coordinate, gps, "DestLongitude", "DestLongitudeRef"},
    {"GPSDestBearing", rational, gps, "DestBearing"},
    {"GPSDestBearingRef", text, gps, "DestBearingRef"},
    {"GPSDestDistance", rational, gps, "DestDistance"},
    {"GPSDestDistanceRef", text, gps, "DestDistanceRef"},
    {"GPSHPositioningError", rational, gps, "HPositioningError"},
    {"GPSMapDatum", text, gps, "MapDatum"},
    {"GPSSatellites", text, gps, "Satellites"},
    {"GPSStatus", text, gps, "Status"},
    {"GPSMeasureMode", text, gps, "MeasureMode"},
    {"GPSProcessingMethod", text, gps, "ProcessingMethod"},
    {"GPSAreaInformation", text, gps, "AreaInformation"},
    {"GPSDifferential", integer, gps, "Differential"},
};

/// CIPA DC-010: what EXIF 2.3 added.
constexpr XmpMapping exifExProperties[] = {
    {"PhotographicSensitivity", integers, exif, "ISOSpeedRatings"},
    {"SensitivityType", integer, exif, "SensitivityType"},
    {"ISOSpeed", integer, exif, "ISOSpeed"},
    {"CameraOwnerName", text, exif, "CameraOwnerName"},
    {"BodySerialNumber", text, exif, "BodySerialNumber"},
    {"LensMake", text, exif, "LensMake"},
    {"LensModel", text, exif, "LensModel"},
    {"LensSerialNumber", text, exif, "LensSerialNumber"},
    {"LensSpecification", rationals, exif, "LensSpecification"},
    {"Gamma", rational, exif, "Gamma"},
    {"CompositeImage", integer, exif, "CompositeImage"},
};

constexpr XmpMapping auxProperties[] = {
    {"Lens", text, aux, "LensModel"},
    {"LensInfo", lensInfo, aux, "LensInfo"},
    {"LensID", text, aux, "LensID"},
    {"LensSerialNumber", text, aux, "LensSerialNumber"},
    {"SerialNumber", text, aux, "SerialNumber"},
    {"ImageNumber", text, aux, "ImageNumber"},
    {"FlashCompensation", rational, aux, "FlashCompensation"},
    {"OwnerName", text, aux, "OwnerName"},
    {"Firmware", text, aux, "Firmware"},
};

/// IPTC Photo Metadata Standard: the core properties and the IIM datasets that they continue.
constexpr XmpMapping dublinCoreProperties[] = {
    {"creator", list, iptc, "Byline"},
    {"subject", list, iptc, "Keywords"},
    {"title", languages, iptc, "ObjectName"},
    {"description", languages, iptc, "Caption/Abstract"},
    {"rights", languages, iptc, "CopyrightNotice"},
};

constexpr XmpMapping photoshopProperties[] = {
    {"DateCreated", iptcDate, iptc, "DateCreated", "TimeCreated"},
    {"Headline", text, iptc, "Headline"},
    {"Credit", text, iptc, "Credit"},
    {"Source", text, iptc, "Source"},
    {"City", text, iptc, "City"},
    {"State", text, iptc, "Province/State"},
    {"Country", text, iptc, "Country/PrimaryLocationName"},
    {"Instructions", text, iptc, "SpecialInstructions"},
    {"CaptionWriter", text, iptc, "Writer/Editor"},
};

constexpr XmpMapping iptcCoreProperties[] = {
    {"Location", text, iptc, "SubLocation"},
    {"CountryCode", text, iptc, "Country/PrimaryLocationCode"},
};

/// The dates and the tool of this schema are those of the file, not of the photo: they fill
/// nothing.
constexpr XmpMapping basicProperties[] = {
    {"Rating", integer, iptc, "StarRating"},
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
