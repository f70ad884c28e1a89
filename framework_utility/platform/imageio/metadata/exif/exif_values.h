#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_tags.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

/// Puts the entry's value under the tag's key, which must not be there yet. Null when the entry is
/// not what its tag stands for: another kind of type, too few elements, a denominator of 0. A
/// number that was stored as text stays text.
const Value* appendExifValue(Dictionary& values, const ExifTag& tag, const TiffReader& reader,
                             const TiffEntry& entry);
/// As `storedType` where that can hold it, else as the tag's own type. Absent for a value of
/// another type than the tag's, for what is not finite and for what is out of range.
std::optional<TiffValue> exifValue(const ExifTag& tag, const Value& value,
                                   std::optional<TiffType> storedType, std::endian order);

/// How many numbers `readTiffNumbers` may give; 0 when there are too many.
std::uint32_t tiffNumberCount(const TiffEntry& entry);
/// The entry's numbers, at most 4096; absent when one is absent or there are none.
std::optional<Array> readTiffNumbers(const TiffReader& reader, const TiffEntry& entry);
/// Absent when a value is no number or does not fit the type.
std::optional<TiffValue> tiffNumbers(std::span<const Value> values, TiffType type,
                                     std::endian order);

}  // namespace FrameworkUtility::detail
