#pragma once

#include <string_view>

namespace FrameworkUtility {

// Keys of the TIFF dictionary.

inline constexpr std::string_view kCGImagePropertyTIFFCompression = "Compression";
inline constexpr std::string_view kCGImagePropertyTIFFPhotometricInterpretation =
    "PhotometricInterpretation";
inline constexpr std::string_view kCGImagePropertyTIFFDocumentName = "DocumentName";
inline constexpr std::string_view kCGImagePropertyTIFFImageDescription = "ImageDescription";
inline constexpr std::string_view kCGImagePropertyTIFFMake = "Make";
inline constexpr std::string_view kCGImagePropertyTIFFModel = "Model";
/// 1 to 8, as at the top level, which wins.
inline constexpr std::string_view kCGImagePropertyTIFFOrientation = "Orientation";
inline constexpr std::string_view kCGImagePropertyTIFFXResolution = "XResolution";
inline constexpr std::string_view kCGImagePropertyTIFFYResolution = "YResolution";
/// 1 none, 2 inches, 3 centimetres.
inline constexpr std::string_view kCGImagePropertyTIFFResolutionUnit = "ResolutionUnit";
/// Three tables of 256 numbers.
inline constexpr std::string_view kCGImagePropertyTIFFTransferFunction = "TransferFunction";
inline constexpr std::string_view kCGImagePropertyTIFFSoftware = "Software";
/// Of the last change, "yyyy:MM:dd HH:mm:ss".
inline constexpr std::string_view kCGImagePropertyTIFFDateTime = "DateTime";
inline constexpr std::string_view kCGImagePropertyTIFFArtist = "Artist";
inline constexpr std::string_view kCGImagePropertyTIFFHostComputer = "HostComputer";
inline constexpr std::string_view kCGImagePropertyTIFFWhitePoint = "WhitePoint";
inline constexpr std::string_view kCGImagePropertyTIFFPrimaryChromaticities =
    "PrimaryChromaticities";
inline constexpr std::string_view kCGImagePropertyTIFFTileWidth = "TileWidth";
inline constexpr std::string_view kCGImagePropertyTIFFTileLength = "TileLength";
inline constexpr std::string_view kCGImagePropertyTIFFCopyright = "Copyright";

}  // namespace FrameworkUtility
