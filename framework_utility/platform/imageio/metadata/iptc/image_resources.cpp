#include <framework_utility/platform/imageio/metadata/iptc/iptc_record.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>

#include <algorithm>
#include <cstdint>
#include <optional>

// Photoshop File Formats Specification, "Image Resources Section": each resource is a signature, a
// number, a name, and data, all big-endian and padded to even lengths.

namespace FrameworkUtility::detail {
namespace {

constexpr std::string_view dictionaryKey = "{IPTC}";
constexpr std::size_t signatureSize = 4, numberSize = 2, sizeSize = 4;

constexpr std::uint16_t iptcRecord = 0x0404;
// MD5 of the record as it was when XMP was last brought in line with it. It goes when the record
// changes: without it readers take XMP, which has changed alike, and IPTC for the rest.
constexpr std::uint16_t iptcDigest = 0x0425;

// Belongs to the old pixels, and must not travel to new ones.
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

std::size_t bigEndian(std::span<const std::byte> bytes) {
  std::size_t value = 0;
  for (const std::byte byte : bytes) value = value << 8 | std::to_integer<std::size_t>(byte);
  return value;
}

constexpr std::size_t padded(std::size_t size) { return size + size % 2; }

// The resource that the bytes begin with; absent at their end or where they are damaged.
std::optional<Resource> firstResource(std::span<const std::byte> bytes) {
  constexpr std::byte signature[] = {std::byte{'8'}, std::byte{'B'}, std::byte{'I'},
                                     std::byte{'M'}};
  constexpr std::size_t nameBegin = signatureSize + numberSize;
  if (bytes.size() <= nameBegin ||
      !std::equal(signature, signature + signatureSize, bytes.data())) {
    return std::nullopt;
  }
  const std::size_t nameSize = padded(1 + std::to_integer<std::size_t>(bytes[nameBegin]));
  const std::size_t begin = nameBegin + nameSize + sizeSize;
  if (begin > bytes.size()) return std::nullopt;
  const std::size_t size = bigEndian(bytes.subspan(begin - sizeSize, sizeSize));
  if (size > bytes.size() - begin) return std::nullopt;
  // The last one's padding is sometimes missing.
  return Resource{
      .number = static_cast<std::uint16_t>(bigEndian(bytes.subspan(signatureSize, numberSize))),
      .header = bytes.first(nameBegin + nameSize),
      .data = bytes.subspan(begin, size),
      .whole = bytes.first(std::min(begin + padded(size), bytes.size()))};
}

void append(std::vector<std::byte>& out, std::span<const std::byte> bytes) {
  out.insert(out.end(), bytes.begin(), bytes.end());
}

void appendResource(std::vector<std::byte>& out, std::span<const std::byte> header,
                    std::span<const std::byte> data) {
  append(out, header);
  for (int shift = 24; shift >= 0; shift -= 8) {
    out.push_back(std::byte{static_cast<std::uint8_t>(data.size() >> shift)});
  }
  append(out, data);
  if (data.size() % 2 != 0) out.push_back(std::byte{0});
}

// Calls `visit` with each resource up to the first that is damaged, or until it returns false;
// gives the bytes that follow.
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
    if (!entries.empty()) properties.set(dictionaryKey, std::move(entries));
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
  const auto* entries = properties.get<Dictionary>(dictionaryKey);
  const std::vector<std::byte> record =
      mergeIptcRecord(oldRecord, entries ? *entries : none, budget);
  const bool isChanged =
      !std::equal(record.begin(), record.end(), oldRecord.begin(), oldRecord.end());

  std::vector<std::byte> out;
  out.reserve(resources.size() + record.size());
  bool isWritten = !isChanged || record.empty();
  const auto rest = forEachResource(resources, [&](const Resource& resource) {
    const bool isRecord = resource.number == iptcRecord;
    const bool isStale = isChanged && (isRecord || resource.number == iptcDigest);
    if (isRecord && !isWritten) appendResource(out, resource.header, record);
    isWritten |= isRecord;
    if (isStale || isObsolete(resource.number)) return true;
    append(out, resource.whole);
    if (resource.whole.size() % 2 != 0 && !isWritten) out.push_back(std::byte{0});
    return true;
  });
  if (!isWritten) {
    constexpr std::byte header[] = {std::byte{'8'},
                                    std::byte{'B'},
                                    std::byte{'I'},
                                    std::byte{'M'},
                                    std::byte{iptcRecord >> 8},
                                    std::byte{iptcRecord & 0xFF},
                                    std::byte{0},
                                    std::byte{0}};
    appendResource(out, header, record);
  }
  append(out, rest);
  return out;
}

}  // namespace FrameworkUtility::detail
