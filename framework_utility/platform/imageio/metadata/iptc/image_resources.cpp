#include <framework_utility/platform/imageio/metadata/iptc/image_resources.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/metadata/iptc/iptc_record.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <cstdint>
#include <optional>

// Photoshop File Formats Specification, "Image Resources Section": each resource is a signature, a
// number, a name, and data, all big-endian and padded to even lengths.

namespace FrameworkUtility::detail {
namespace {

constexpr std::string_view signature = "8BIM";

constexpr std::uint16_t iptcRecord = 0x0404;
/// MD5 of the record as it was when XMP was last brought in line with it. It goes when the record
/// changes: without it readers take XMP, which has changed alike, and IPTC for the rest.
constexpr std::uint16_t iptcDigest = 0x0425;

/// Belongs to the old pixels, and must not travel to new ones.
constexpr bool isObsolete(std::uint16_t number) {
  constexpr std::uint16_t thumbnail4 = 0x0409, thumbnail = 0x040C, iccProfile = 0x040F;
  return number == thumbnail4 || number == thumbnail || number == iccProfile;
}

struct Resource {
  std::uint16_t number = 0;
  std::span<const std::byte> header;  // signature, number and name
  std::span<const std::byte> data;
  std::span<const std::byte> whole;  // with padding
};

constexpr std::size_t padded(std::size_t size) { return size + size % 2; }

/// The resource that the bytes begin with; absent at their end or where they are damaged.
std::optional<Resource> firstResource(std::span<const std::byte> bytes) {
  Resource resource;
  ByteReader reader(bytes);
  if (asText(reader.take(signature.size())) != signature) return std::nullopt;
  resource.number = reader.take<std::uint16_t>();
  reader.take(padded(1 + std::size_t{reader.at<std::uint8_t>(0)}));
  resource.header = bytes.first(bytes.size() - reader.size());
  resource.data = reader.take(reader.take<std::uint32_t>());
  if (reader.isCut()) return std::nullopt;
  // The last one's padding is sometimes missing.
  const std::size_t end = bytes.size() - reader.size() + resource.data.size() % 2;
  resource.whole = bytes.first(std::min(end, bytes.size()));
  return resource;
}

void putResource(ByteWriter& out, std::span<const std::byte> header,
                 std::span<const std::byte> data) {
  out.put(header).putNumber(data.size(), 4).put(data).putNumber(0, data.size() % 2);
}

/// Calls `visit` with each resource up to the first that is damaged, or until it returns false;
/// gives the bytes that follow.
template <class Visitor>
std::span<const std::byte> forEachResource(std::span<const std::byte> bytes, Visitor visit) {
  while (const std::optional<Resource> resource = firstResource(bytes)) {
    bytes = bytes.subspan(resource->whole.size());
    if (!visit(*resource)) break;
  }
  return bytes;
}

}  // namespace

void readImageResources(std::span<const std::byte> resources, Dictionary& properties,
                        MetadataBudget& budget) {
  forEachResource(resources, [&](const Resource& resource) {
    if (resource.number != iptcRecord) return true;
    Dictionary entries = readIptcRecord(resource.data, budget);
    if (!entries.empty()) properties.set(kCGImagePropertyIPTCDictionary, std::move(entries));
    return false;
  });
}

std::vector<std::byte> mergeImageResources(std::span<const std::byte> resources,
                                           const Dictionary& properties, MetadataBudget budget) {
  std::span<const std::byte> oldRecord;
  forEachResource(resources, [&](const Resource& resource) {
    if (resource.number == iptcRecord) oldRecord = resource.data;
    return resource.number != iptcRecord;
  });
  static const Dictionary none;
  const auto* entries = properties.get<Dictionary>(kCGImagePropertyIPTCDictionary);
  const std::vector<std::byte> record =
      mergeIptcRecord(oldRecord, entries ? *entries : none, budget);
  const bool isChanged =
      !std::equal(record.begin(), record.end(), oldRecord.begin(), oldRecord.end());

  ByteWriter out;
  out.reserve(resources.size() + record.size());
  bool isWritten = !isChanged || record.empty();
  const auto rest = forEachResource(resources, [&](const Resource& resource) {
    const bool isRecord = resource.number == iptcRecord;
    const bool isStale = isChanged && (isRecord || resource.number == iptcDigest);
    if (isRecord && !isWritten) putResource(out, resource.header, record);
    isWritten |= isRecord;
    if (isStale || isObsolete(resource.number)) return true;
    out.put(resource.whole);
    if (!isWritten) out.putNumber(0, resource.whole.size() % 2);
    return true;
  });
  if (!isWritten) {
    constexpr std::uint16_t noName = 0;
    putResource(
        out, ByteWriter().put(signature).put<std::uint16_t>(iptcRecord).put<std::uint16_t>(noName),
        record);
  }
  return out.put(rest).takeBytes();
}

}  // namespace FrameworkUtility::detail
