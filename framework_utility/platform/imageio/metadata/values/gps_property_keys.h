#pragma once

#include <string_view>

namespace FrameworkUtility {

// Keys of the GPS dictionary. A reference says how the entry of its name is to be read.

/// Four numbers: [2, 3, 0, 0].
inline constexpr std::string_view kCGImagePropertyGPSVersion = "GPSVersion";
/// "N" or "S".
inline constexpr std::string_view kCGImagePropertyGPSLatitudeRef = "LatitudeRef";
/// Degrees, never negative.
inline constexpr std::string_view kCGImagePropertyGPSLatitude = "Latitude";
/// "E" or "W".
inline constexpr std::string_view kCGImagePropertyGPSLongitudeRef = "LongitudeRef";
/// Degrees, never negative.
inline constexpr std::string_view kCGImagePropertyGPSLongitude = "Longitude";
/// 0 above sea level, 1 below.
inline constexpr std::string_view kCGImagePropertyGPSAltitudeRef = "AltitudeRef";
/// Metres.
inline constexpr std::string_view kCGImagePropertyGPSAltitude = "Altitude";
/// Universal time, "HH:mm:ss".
inline constexpr std::string_view kCGImagePropertyGPSTimeStamp = "TimeStamp";
inline constexpr std::string_view kCGImagePropertyGPSSatellites = "Satellites";
inline constexpr std::string_view kCGImagePropertyGPSStatus = "Status";
inline constexpr std::string_view kCGImagePropertyGPSMeasureMode = "MeasureMode";
/// Dilution of precision.
inline constexpr std::string_view kCGImagePropertyGPSDOP = "DOP";
/// "K" kilometres an hour, "M" miles, "N" knots.
inline constexpr std::string_view kCGImagePropertyGPSSpeedRef = "SpeedRef";
inline constexpr std::string_view kCGImagePropertyGPSSpeed = "Speed";
/// "T" true north, "M" magnetic.
inline constexpr std::string_view kCGImagePropertyGPSTrackRef = "TrackRef";
/// Degrees.
inline constexpr std::string_view kCGImagePropertyGPSTrack = "Track";
inline constexpr std::string_view kCGImagePropertyGPSImgDirectionRef = "ImgDirectionRef";
/// Degrees.
inline constexpr std::string_view kCGImagePropertyGPSImgDirection = "ImgDirection";
inline constexpr std::string_view kCGImagePropertyGPSMapDatum = "MapDatum";
inline constexpr std::string_view kCGImagePropertyGPSDestLatitudeRef = "DestLatitudeRef";
inline constexpr std::string_view kCGImagePropertyGPSDestLatitude = "DestLatitude";
inline constexpr std::string_view kCGImagePropertyGPSDestLongitudeRef = "DestLongitudeRef";
inline constexpr std::string_view kCGImagePropertyGPSDestLongitude = "DestLongitude";
inline constexpr std::string_view kCGImagePropertyGPSDestBearingRef = "DestBearingRef";
/// Degrees.
inline constexpr std::string_view kCGImagePropertyGPSDestBearing = "DestBearing";
/// "K" kilometres, "M" miles, "N" nautical miles.
inline constexpr std::string_view kCGImagePropertyGPSDestDistanceRef = "DestDistanceRef";
inline constexpr std::string_view kCGImagePropertyGPSDestDistance = "DestDistance";
inline constexpr std::string_view kCGImagePropertyGPSProcessingMethod = "ProcessingMethod";
inline constexpr std::string_view kCGImagePropertyGPSAreaInformation = "AreaInformation";
/// Universal time, "yyyy:MM:dd".
inline constexpr std::string_view kCGImagePropertyGPSDateStamp = "DateStamp";
/// Misspelt on the platform; the key itself is not.
inline constexpr std::string_view kCGImagePropertyGPSDifferental = "Differential";
/// Metres.
inline constexpr std::string_view kCGImagePropertyGPSHPositioningError = "HPositioningError";

}  // namespace FrameworkUtility
