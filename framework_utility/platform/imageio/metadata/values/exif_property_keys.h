#pragma once

#include <string_view>

namespace FrameworkUtility {

// Keys of the EXIF dictionary, as CIPA DC-008 defines them.

/// Seconds.
inline constexpr std::string_view kCGImagePropertyExifExposureTime = "ExposureTime";
inline constexpr std::string_view kCGImagePropertyExifFNumber = "FNumber";
inline constexpr std::string_view kCGImagePropertyExifExposureProgram = "ExposureProgram";
inline constexpr std::string_view kCGImagePropertyExifSpectralSensitivity = "SpectralSensitivity";
/// An array of numbers.
inline constexpr std::string_view kCGImagePropertyExifISOSpeedRatings = "ISOSpeedRatings";
inline constexpr std::string_view kCGImagePropertyExifSensitivityType = "SensitivityType";
inline constexpr std::string_view kCGImagePropertyExifStandardOutputSensitivity =
    "StandardOutputSensitivity";
inline constexpr std::string_view kCGImagePropertyExifRecommendedExposureIndex =
    "RecommendedExposureIndex";
inline constexpr std::string_view kCGImagePropertyExifISOSpeed = "ISOSpeed";
inline constexpr std::string_view kCGImagePropertyExifISOSpeedLatitudeyyy = "ISOSpeedLatitudeyyy";
inline constexpr std::string_view kCGImagePropertyExifISOSpeedLatitudezzz = "ISOSpeedLatitudezzz";
/// An array: 2.31 is [2, 3, 1].
inline constexpr std::string_view kCGImagePropertyExifVersion = "ExifVersion";
/// When the picture was taken, "yyyy:MM:dd HH:mm:ss".
inline constexpr std::string_view kCGImagePropertyExifDateTimeOriginal = "DateTimeOriginal";
/// When it was stored, in the same form.
inline constexpr std::string_view kCGImagePropertyExifDateTimeDigitized = "DateTimeDigitized";
/// From universal time, "+02:00": of the TIFF dictionary's DateTime.
inline constexpr std::string_view kCGImagePropertyExifOffsetTime = "OffsetTime";
inline constexpr std::string_view kCGImagePropertyExifOffsetTimeOriginal = "OffsetTimeOriginal";
inline constexpr std::string_view kCGImagePropertyExifOffsetTimeDigitized = "OffsetTimeDigitized";
inline constexpr std::string_view kCGImagePropertyExifComponentsConfiguration =
    "ComponentsConfiguration";
inline constexpr std::string_view kCGImagePropertyExifCompressedBitsPerPixel =
    "CompressedBitsPerPixel";
/// APEX: minus the binary logarithm of the seconds.
inline constexpr std::string_view kCGImagePropertyExifShutterSpeedValue = "ShutterSpeedValue";
/// APEX: twice the binary logarithm of the F number.
inline constexpr std::string_view kCGImagePropertyExifApertureValue = "ApertureValue";
/// APEX.
inline constexpr std::string_view kCGImagePropertyExifBrightnessValue = "BrightnessValue";
/// APEX: stops.
inline constexpr std::string_view kCGImagePropertyExifExposureBiasValue = "ExposureBiasValue";
/// APEX.
inline constexpr std::string_view kCGImagePropertyExifMaxApertureValue = "MaxApertureValue";
/// Metres.
inline constexpr std::string_view kCGImagePropertyExifSubjectDistance = "SubjectDistance";
inline constexpr std::string_view kCGImagePropertyExifMeteringMode = "MeteringMode";
inline constexpr std::string_view kCGImagePropertyExifLightSource = "LightSource";
inline constexpr std::string_view kCGImagePropertyExifFlash = "Flash";
/// Millimetres.
inline constexpr std::string_view kCGImagePropertyExifFocalLength = "FocalLength";
inline constexpr std::string_view kCGImagePropertyExifSubjectArea = "SubjectArea";
inline constexpr std::string_view kCGImagePropertyExifUserComment = "UserComment";
/// Decimals of a second: of the TIFF dictionary's DateTime.
inline constexpr std::string_view kCGImagePropertyExifSubsecTime = "SubsecTime";
inline constexpr std::string_view kCGImagePropertyExifSubsecTimeOriginal = "SubsecTimeOriginal";
inline constexpr std::string_view kCGImagePropertyExifSubsecTimeDigitized = "SubsecTimeDigitized";
/// An array: 1.0 is [1, 0].
inline constexpr std::string_view kCGImagePropertyExifFlashPixVersion = "FlashPixVersion";
/// 1 sRGB, 65535 any other.
inline constexpr std::string_view kCGImagePropertyExifColorSpace = "ColorSpace";
/// Follows the pixels.
inline constexpr std::string_view kCGImagePropertyExifPixelXDimension = "PixelXDimension";
inline constexpr std::string_view kCGImagePropertyExifPixelYDimension = "PixelYDimension";
inline constexpr std::string_view kCGImagePropertyExifRelatedSoundFile = "RelatedSoundFile";
/// Beam candle power seconds.
inline constexpr std::string_view kCGImagePropertyExifFlashEnergy = "FlashEnergy";
inline constexpr std::string_view kCGImagePropertyExifFocalPlaneXResolution =
    "FocalPlaneXResolution";
inline constexpr std::string_view kCGImagePropertyExifFocalPlaneYResolution =
    "FocalPlaneYResolution";
/// As of the TIFF dictionary.
inline constexpr std::string_view kCGImagePropertyExifFocalPlaneResolutionUnit =
    "FocalPlaneResolutionUnit";
inline constexpr std::string_view kCGImagePropertyExifSubjectLocation = "SubjectLocation";
inline constexpr std::string_view kCGImagePropertyExifExposureIndex = "ExposureIndex";
inline constexpr std::string_view kCGImagePropertyExifSensingMethod = "SensingMethod";
inline constexpr std::string_view kCGImagePropertyExifFileSource = "FileSource";
inline constexpr std::string_view kCGImagePropertyExifSceneType = "SceneType";
inline constexpr std::string_view kCGImagePropertyExifCustomRendered = "CustomRendered";
inline constexpr std::string_view kCGImagePropertyExifExposureMode = "ExposureMode";
inline constexpr std::string_view kCGImagePropertyExifWhiteBalance = "WhiteBalance";
inline constexpr std::string_view kCGImagePropertyExifDigitalZoomRatio = "DigitalZoomRatio";
/// Millimetres.
inline constexpr std::string_view kCGImagePropertyExifFocalLenIn35mmFilm = "FocalLenIn35mmFilm";
inline constexpr std::string_view kCGImagePropertyExifSceneCaptureType = "SceneCaptureType";
inline constexpr std::string_view kCGImagePropertyExifGainControl = "GainControl";
inline constexpr std::string_view kCGImagePropertyExifContrast = "Contrast";
inline constexpr std::string_view kCGImagePropertyExifSaturation = "Saturation";
inline constexpr std::string_view kCGImagePropertyExifSharpness = "Sharpness";
inline constexpr std::string_view kCGImagePropertyExifSubjectDistRange = "SubjectDistRange";
inline constexpr std::string_view kCGImagePropertyExifImageUniqueID = "ImageUniqueID";
inline constexpr std::string_view kCGImagePropertyExifCameraOwnerName = "CameraOwnerName";
inline constexpr std::string_view kCGImagePropertyExifBodySerialNumber = "BodySerialNumber";
/// Shortest and longest focal length, and the F number at each.
inline constexpr std::string_view kCGImagePropertyExifLensSpecification = "LensSpecification";
inline constexpr std::string_view kCGImagePropertyExifLensMake = "LensMake";
inline constexpr std::string_view kCGImagePropertyExifLensModel = "LensModel";
inline constexpr std::string_view kCGImagePropertyExifLensSerialNumber = "LensSerialNumber";
inline constexpr std::string_view kCGImagePropertyExifCompositeImage = "CompositeImage";
inline constexpr std::string_view kCGImagePropertyExifGamma = "Gamma";

// Keys of the ExifAux dictionary, which repeats what is known of the camera and its lens.
inline constexpr std::string_view kCGImagePropertyExifAuxFirmware = "Firmware";
inline constexpr std::string_view kCGImagePropertyExifAuxFlashCompensation = "FlashCompensation";
inline constexpr std::string_view kCGImagePropertyExifAuxImageNumber = "ImageNumber";
inline constexpr std::string_view kCGImagePropertyExifAuxLensID = "LensID";
/// As the EXIF dictionary's LensSpecification.
inline constexpr std::string_view kCGImagePropertyExifAuxLensInfo = "LensInfo";
inline constexpr std::string_view kCGImagePropertyExifAuxLensModel = "LensModel";
inline constexpr std::string_view kCGImagePropertyExifAuxLensSerialNumber = "LensSerialNumber";
inline constexpr std::string_view kCGImagePropertyExifAuxOwnerName = "OwnerName";
inline constexpr std::string_view kCGImagePropertyExifAuxSerialNumber = "SerialNumber";

}  // namespace FrameworkUtility
