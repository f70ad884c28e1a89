#include <framework_utility/platform/imageio/exif/embedded_thumbnail.h>

#include <framework_utility/platform/imageio/exif/tiff_structure.h>

#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

namespace {

// EXIF 2.32, 4.6.5: JPEGInterchangeFormat and JPEGInterchangeFormatLength.
constexpr std::uint16_t offsetTag = 0x0201;
constexpr std::uint16_t lengthTag = 0x0202;

}  // namespace

std::span<const std::byte> embeddedThumbnail(std::span<const std::byte> exif) {
  const std::optional<TiffReader> reader = TiffReader::open(exif);
  const std::uint32_t directory = reader ? reader->nextDirectory(reader->firstDirectory()) : 0;
  if (directory == 0) {
    return {};
  }
  std::uint32_t offset = 0;
  std::uint32_t length = 0;
  const std::uint32_t count = reader->entryCount(directory);
  for (std::uint32_t i = 0; i < count; ++i) {
    const TiffEntry entry = reader->entry(directory, i);
    if (entry.tag == offsetTag) {
      offset = reader->unsignedInteger(entry).value_or(0);
    } else if (entry.tag == lengthTag) {
      length = reader->unsignedInteger(entry).value_or(0);
    }
  }
  if (offset >= exif.size() || length > exif.size() - offset) {
    return {};
  }
  return exif.subspan(offset, length);
}

std::span<const std::byte> withoutEmbeddedThumbnail(std::span<const std::byte> exif) {
  const std::span<const std::byte> thumbnail = embeddedThumbnail(exif);
  // JPEG segments and TIFF values may be padded to an even length.
  const bool isLast =
      !thumbnail.empty() && exif.data() + exif.size() - (thumbnail.data() + thumbnail.size()) <= 1;
  return isLast ? exif.first(static_cast<std::size_t>(thumbnail.data() - exif.data())) : exif;
}

}  // namespace FrameworkUtility::detail
