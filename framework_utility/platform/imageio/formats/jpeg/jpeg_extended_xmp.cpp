#include <framework_utility/platform/imageio/formats/jpeg/jpeg_extended_xmp.h>

#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_writer.h>

#include <lcms2_plugin.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t nameSize = 32;
constexpr std::size_t headSize = jpegExtendedXmpSignature.size() + nameSize + 4 + 4;
constexpr std::size_t longestPacket = JpegWriter::maximumSegmentSize - jpegXmpSignature.size();
/// More than naming an extension adds to a packet.
constexpr std::size_t roomForName = 256;

std::size_t numberAt(std::span<const std::byte> bytes, std::size_t offset) {
  std::size_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    number = number << 8 | std::to_integer<std::size_t>(bytes[offset + i]);
  }
  return number;
}

/// The MD5 of the bytes in capital hexadecimal digits; empty when memory is short.
std::string digest(std::span<const std::byte> bytes) {
  const cmsHANDLE md5 = cmsMD5alloc(nullptr);
  if (!md5) return {};
  cmsMD5add(md5, reinterpret_cast<const cmsUInt8Number*>(bytes.data()),
            static_cast<cmsUInt32Number>(bytes.size()));
  cmsProfileID id;
  cmsMD5finish(&id, md5);
  std::string text;
  for (const cmsUInt8Number byte : id.ID8) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace

Data joinExtendedXmp(std::span<const Data> segments, std::string_view name) {
  std::map<std::size_t, std::span<const std::byte>> portions;  // by their offsets
  std::optional<std::size_t> length;
  for (const Data& segment : segments) {
    const std::span<const std::byte> bytes = segment;
    if (bytes.size() <= headSize || name.size() != nameSize ||
        std::memcmp(bytes.data() + jpegExtendedXmpSignature.size(), name.data(), nameSize) != 0) {
      continue;
    }
    if (length.value_or(numberAt(bytes, headSize - 8)) != numberAt(bytes, headSize - 8)) return {};
    length = numberAt(bytes, headSize - 8);
    portions[numberAt(bytes, headSize - 4)] = bytes.subspan(headSize);
  }
  std::size_t end = 0;
  for (const auto& [offset, portion] : portions) {
    if (offset != end) return {};
    end += portion.size();
  }
  if (end != length) return {};
  std::vector<std::byte> packet;
  packet.reserve(end);
  for (const auto& [offset, portion] : portions) {
    packet.insert(packet.end(), portion.begin(), portion.end());
  }
  return Data(std::move(packet));
}

std::string extendedXmpHead(std::string_view name, std::size_t length, std::size_t offset) {
  std::string head(jpegExtendedXmpSignature);
  head += name;
  for (const std::size_t number : {length, offset}) {
    for (const int shift : {24, 16, 8, 0}) head += static_cast<char>(number >> shift & 255);
  }
  return head;
}

std::optional<XmpParts> xmpForSegments(const Data& packet, const Data& extension) {
  const bool isNamed = extension.empty() || xmpExtensionName(packet).size() == nameSize;
  if (isNamed && packet.size() <= longestPacket) return XmpParts{packet, extension};
  std::optional<XmpParts> parts({packet, extension});
  if (packet.size() > longestPacket - roomForName) {
    parts = splitXmp(extension.empty() ? packet : joinedXmp(packet, extension),
                     longestPacket - roomForName);
  }
  const std::optional<Data> named =
      parts ? withXmpExtensionName(parts->packet, digest(parts->extension)) : std::nullopt;
  if (!named) return std::nullopt;
  return XmpParts{*named, parts->extension};
}

}  // namespace FrameworkUtility::detail
