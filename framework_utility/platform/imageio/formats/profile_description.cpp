#include <framework_utility/platform/imageio/formats/profile_description.h>

#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>

#include <algorithm>
#include <cstdint>

namespace FrameworkUtility::detail {

namespace {

using Bytes = std::span<const std::byte>;

// ICC.1:2010, 7.2 and 7.3: a header, the number of tags, and of each its name, offset and size.
constexpr std::size_t signatureOffset = 36;
constexpr std::size_t headerSize = 128;
constexpr std::size_t tagSize = 12;

constexpr std::uint32_t code(const char (&text)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(text[i]);
  return value;
}

/// Big-endian; 0 past the end.
std::uint32_t u32(Bytes bytes, std::size_t offset) {
  if (offset > bytes.size() || bytes.size() - offset < 4) return 0;
  std::uint32_t value = 0;
  for (const std::byte byte : bytes.subspan(offset, 4)) {
    value = value << 8 | std::to_integer<std::uint32_t>(byte);
  }
  return value;
}

/// What of these bytes there is.
Bytes part(Bytes bytes, std::size_t offset, std::size_t size) {
  const Bytes rest = bytes.subspan(std::min(offset, bytes.size()));
  return rest.first(std::min(size, rest.size()));
}

Bytes findTag(Bytes profile, std::uint32_t name) {
  const std::size_t room =
      profile.size() > headerSize ? (profile.size() - headerSize) / tagSize : 0;
  const std::size_t count = std::min<std::size_t>(u32(profile, headerSize), room);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = headerSize + 4 + i * tagSize;
    if (u32(profile, entry) == name) {
      return part(profile, u32(profile, entry + 4), u32(profile, entry + 8));
    }
  }
  return {};
}

/// Units of `size` bytes, big-endian, up to a NUL. Units of one byte are Latin letters.
std::string textOf(Bytes bytes, std::size_t size) {
  std::u16string units;
  for (std::size_t i = 0; i + size <= bytes.size(); i += size) {
    char16_t unit = 0;
    for (const std::byte byte : bytes.subspan(i, size)) {
      unit = static_cast<char16_t>(unit << 8 | std::to_integer<char16_t>(byte));
    }
    if (unit == 0) break;
    units += unit;
  }
  return utf8::fromUtf16(units);
}

/// Version 2: a type, four bytes, the number of ASCII characters and they.
std::string readText(Bytes tag) { return textOf(part(tag, 12, u32(tag, 8)), 1); }

/// Version 4: a type, four bytes, the number of records and their size; in each language, country,
/// and the size and offset of its UTF-16.
std::string readLocalizedText(Bytes tag) {
  constexpr std::uint32_t english = 'e' << 8 | 'n';
  const std::size_t size = u32(tag, 12);
  if (size < 12) return {};
  const std::size_t count = std::min<std::size_t>(u32(tag, 8), tag.size() / size);
  std::size_t record = 16;
  for (std::size_t i = 0; i < count; ++i) {
    if (u32(tag, 16 + i * size) >> 16 == english) {
      record = 16 + i * size;
      break;
    }
  }
  return textOf(part(tag, u32(tag, record + 8), u32(tag, record + 4)), 2);
}

}  // namespace

std::string profileDescription(std::span<const std::byte> profile, MetadataBudget& budget) {
  if (u32(profile, signatureOffset) != code("acsp")) return {};
  const Bytes tag = findTag(profile, code("desc"));
  if (!budget.spend(1, tag.size())) {
    budget.leaveOut(kCGImagePropertyProfileName);
    return {};
  }
  switch (u32(tag, 0)) {
    case code("desc"):
      return readText(tag);
    case code("mluc"):
      return readLocalizedText(tag);
    default:
      return {};
  }
}

}  // namespace FrameworkUtility::detail
