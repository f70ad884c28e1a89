#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace FrameworkUtility::detail {

/// The directories that hold properties.
enum class ExifDirectory : std::uint8_t { image, exif, gps };
inline constexpr std::size_t exifDirectoryCount = 3;

/// How a tag's value looks in the properties.
enum class ExifShape : std::uint8_t {
  text,
  number,
  array,    ///< Of numbers.
  version,  ///< Four digits, "0230", as numbers: [2, 3].
  comment,  ///< Text behind eight bytes that name its encoding.
  degrees,  ///< Degrees, minutes and seconds as one positive number of degrees.
  time,     ///< Hours, minutes and seconds as "HH:MM:SS".
  layout,   ///< A number about the stored pixels: read, and never written.
};

struct ExifTag {
  std::uint16_t tag;
  std::string_view key;
  ExifShape shape;
  TiffType type = TiffType::ascii;     ///< What it is stored as when the file does not say.
  std::uint16_t count = 0;             ///< An array's number of elements; 0 for any.
  std::string_view auxiliaryKey = {};  ///< Its second name, in "{ExifAux}".
};

/// A tag's place in `exifTags(directory)`; never more.
inline constexpr std::size_t exifTagLimit = 96;

/// The known tags of a directory, in ascending order.
std::span<const ExifTag> exifTags(ExifDirectory directory);
/// The key of the dictionary that holds a directory's properties.
std::string_view exifDictionaryKey(ExifDirectory directory);
inline constexpr std::uint16_t exifOrientationTag = 0x0112;

/// One direct look-up; null for a tag that has no property.
const ExifTag* exifTag(ExifDirectory directory, std::uint16_t tag);
const ExifTag* exifTag(ExifDirectory directory, const Key& key);

}  // namespace FrameworkUtility::detail
