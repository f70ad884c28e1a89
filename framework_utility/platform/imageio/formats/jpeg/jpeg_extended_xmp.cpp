#include <framework_utility/platform/imageio/formats/jpeg/jpeg_extended_xmp.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_writer.h>

#include <lcms2_plugin.h>

#include <cstdint>
#include <map>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t nameSize = 32;
constexpr std::size_t longestPacket = JpegWriter::maximumSegmentSize - jpegXmpSignature.size();
/// More than naming an extension adds to a packet.
constexpr std::size_t roomForName = 256;

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
    ByteReader bytes(segment);
    bytes.take(jpegExtendedXmpSignature.size());
    const bool isOfName = asText(bytes.take(nameSize)) == name;
    const std::size_t whole = bytes.take<std::uint32_t>();
    const std::size_t offset = bytes.take<std::uint32_t>();
    if (!isOfName || bytes.size() == 0) continue;
    if (length.value_or(whole) != whole) return {};
    length = whole;
    portions[offset] = bytes.bytes();
  }
  std::size_t end = 0;
  for (const auto& [offset, portion] : portions) {
    if (offset != end) return {};
    end += portion.size();
  }
  if (end != length) return {};
  ByteWriter packet;
  packet.reserve(end);
  for (const auto& [offset, portion] : portions) packet.put(portion);
  return Data(packet.takeBytes());
}

std::string extendedXmpHead(std::string_view name, std::size_t length, std::size_t offset) {
  ByteWriter head;
  head.put(jpegExtendedXmpSignature).put(name).putNumber(length, 4).putNumber(offset, 4);
  return std::string(asText(head));
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
