#pragma once

#include <string_view>

namespace FrameworkUtility {

// Keys of the PNG dictionary.

inline constexpr std::string_view kCGImagePropertyPNGGamma = "Gamma";
/// 0 none, 1 Adam7.
inline constexpr std::string_view kCGImagePropertyPNGInterlaceType = "InterlaceType";
/// x and y of white, red, green and blue.
inline constexpr std::string_view kCGImagePropertyPNGChromaticities = "Chromaticities";
/// 0 perceptual, 1 relative, 2 saturation, 3 absolute.
inline constexpr std::string_view kCGImagePropertyPNGsRGBIntent = "sRGBIntent";
inline constexpr std::string_view kCGImagePropertyPNGXPixelsPerMeter = "XPixelsPerMeter";
inline constexpr std::string_view kCGImagePropertyPNGYPixelsPerMeter = "YPixelsPerMeter";
/// "yyyy:MM:dd HH:mm:ss", universal time.
inline constexpr std::string_view kCGImagePropertyPNGModificationTime = "ModificationTime";

// Texts.
inline constexpr std::string_view kCGImagePropertyPNGTitle = "Title";
inline constexpr std::string_view kCGImagePropertyPNGAuthor = "Author";
inline constexpr std::string_view kCGImagePropertyPNGDescription = "Description";
inline constexpr std::string_view kCGImagePropertyPNGCopyright = "Copyright";
inline constexpr std::string_view kCGImagePropertyPNGCreationTime = "Creation Time";
inline constexpr std::string_view kCGImagePropertyPNGSoftware = "Software";
inline constexpr std::string_view kCGImagePropertyPNGDisclaimer = "Disclaimer";
inline constexpr std::string_view kCGImagePropertyPNGWarning = "Warning";
inline constexpr std::string_view kCGImagePropertyPNGSource = "Source";
inline constexpr std::string_view kCGImagePropertyPNGComment = "Comment";

}  // namespace FrameworkUtility
