#include <framework_utility/platform/imageio/metadata/exif/embedded_thumbnail.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <algorithm>
#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

namespace {

// EXIF 2.32, 4.6.5: JPEGInterchangeFormat and JPEGInterchangeFormatLength.
constexpr std::uint16_t offsetTag = 0x0201;
constexpr std::uint16_t lengthTag = 0x0202;

constexpr std::byte mark{0xFF};
constexpr std::byte startOfImage{0xD8};
constexpr std::byte endOfImage{0xD9};
constexpr std::byte startOfScan{0xDA};

bool isRestart(std::byte marker) { return (marker & std::byte{0xF8}) == std::byte{0xD0}; }

bool isZero(std::span<const std::byte> bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](std::byte byte) { return byte == std::byte{}; });
}

/// What follows the end marker; nothing when there is none. `bytes` begin behind the first marker.
std::span<const std::byte> behindEnd(std::span<const std::byte> bytes) {
  bool isInScan = false;
  while (bytes.size() >= 2) {
    const auto at =
        static_cast<std::size_t>(std::find(bytes.begin(), bytes.end() - 1, mark) - bytes.begin());
    if (!isInScan && at != 0) return {};
    bytes = bytes.subspan(at + 1);
    const std::byte marker = bytes.front();
    if (marker == endOfImage) return bytes.subspan(1);
    if (marker == mark || (isInScan && (marker == std::byte{0} || isRestart(marker)))) continue;
    isInScan = marker == startOfScan;
    const std::size_t length = ByteReader(bytes).at<std::uint16_t>(1);
    if (length < 2 || length >= bytes.size()) return {};
    bytes = bytes.subspan(1 + length);
  }
  return {};
}

}  // namespace

std::span<const std::byte> leadingJpeg(std::span<const std::byte> bytes) {
  if (bytes.size() < 4 || bytes[0] != mark || bytes[1] != startOfImage) return {};
  if (bytes[bytes.size() - 2] == mark && bytes.back() == endOfImage) return bytes;
  const std::span<const std::byte> rest = behindEnd(bytes.subspan(2));
  return isZero(rest) ? bytes : bytes.first(bytes.size() - rest.size());
}

std::span<const std::byte> embeddedThumbnail(std::span<const std::byte> exif) {
  const std::optional<TiffReader> reader = TiffReader::open(exif);
  const std::uint32_t directory = reader ? reader->nextDirectory(reader->firstDirectory()) : 0;
  if (directory == 0) return {};
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
  return leadingJpeg(ByteReader(exif).part(offset, length));
}

std::span<const std::byte> withoutEmbeddedThumbnail(std::span<const std::byte> exif) {
  const std::span<const std::byte> thumbnail = embeddedThumbnail(exif);
  // JPEG segments and TIFF values may be padded to an even length.
  const bool isLast =
      !thumbnail.empty() && exif.data() + exif.size() - (thumbnail.data() + thumbnail.size()) <= 1;
  return isLast ? exif.first(static_cast<std::size_t>(thumbnail.data() - exif.data())) : exif;
}

}  // namespace FrameworkUtility::detail
