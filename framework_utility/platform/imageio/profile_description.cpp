#include <framework_utility/platform/imageio/profile_description.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <cstdint>

namespace FrameworkUtility::detail {

namespace {

using Bytes = std::span<const std::byte>;

// ICC.1:2010, 7.2 and 7.3: a header, the number of tags, and of each its name, offset and size.
constexpr std::size_t signatureOffset = 36;
constexpr std::size_t headerSize = 128;
constexpr std::size_t tagSize = 12;

Bytes findTag(const ByteReader& profile, std::uint32_t name) {
  ByteReader tags(profile.partInside(headerSize, profile.size()));
  for (auto count = tags.take<std::uint32_t>(); count > 0 && tags.size() >= tagSize; --count) {
    const auto code = tags.take<std::uint32_t>();
    const auto offset = tags.take<std::uint32_t>();
    const auto size = tags.take<std::uint32_t>();
    if (code == name) return profile.partInside(offset, size);
  }
  return {};
}

/// Units of `size` bytes, big-endian, up to a NUL. Units of one byte are Latin letters.
std::string textOf(Bytes bytes, std::size_t size) {
  std::u16string units;
  ByteReader reader(bytes);
  while (const auto unit = static_cast<char16_t>(reader.takeNumber(size))) units += unit;
  return utf8::fromUtf16(units);
}

/// Version 2: a type, four bytes, the number of ASCII characters and they.
std::string readText(const ByteReader& tag) {
  return textOf(tag.partInside(12, tag.at<std::uint32_t>(8)), 1);
}

/// Version 4: a type, four bytes, the number of records and their size; in each language, country,
/// and the size and offset of its UTF-16.
std::string readLocalizedText(const ByteReader& tag) {
  const std::size_t size = tag.at<std::uint32_t>(12);
  if (size < 12) return {};
  const std::size_t count = std::min<std::size_t>(tag.at<std::uint32_t>(8), tag.size() / size);
  std::size_t record = 16;
  for (std::size_t i = 0; i < count; ++i) {
    if (asText(tag.part(16 + i * size, 2)) == "en") {
      record = 16 + i * size;
      break;
    }
  }
  return textOf(
      tag.partInside(tag.at<std::uint32_t>(record + 8), tag.at<std::uint32_t>(record + 4)), 2);
}

}  // namespace

std::string profileDescription(std::span<const std::byte> profile, MetadataBudget& budget) {
  const ByteReader reader(profile);
  if (reader.at<std::uint32_t>(signatureOffset) != fourCharCode("acsp")) return {};
  const ByteReader tag(findTag(reader, fourCharCode("desc")));
  if (!budget.spend(1, tag.size())) {
    budget.leaveOut(kCGImagePropertyProfileName);
    return {};
  }
  switch (tag.at<std::uint32_t>(0)) {
    case fourCharCode("desc"):
      return readText(tag);
    case fourCharCode("mluc"):
      return readLocalizedText(tag);
    default:
      return {};
  }
}

}  // namespace FrameworkUtility::detail
