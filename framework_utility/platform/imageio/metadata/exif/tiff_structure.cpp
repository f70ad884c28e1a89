#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <algorithm>
#include <cmath>

namespace FrameworkUtility::detail {
namespace {

std::optional<Number> finite(double number) {
  if (!std::isfinite(number)) return std::nullopt;
  return Number(number);
}

std::optional<Number> ratio(std::int64_t numerator, std::int64_t denominator) {
  if (denominator == 0) return std::nullopt;
  if (numerator % denominator == 0) return Number(numerator / denominator);
  return Number(static_cast<double>(numerator) / static_cast<double>(denominator));
}

}  // namespace

std::optional<TiffReader> TiffReader::open(std::span<const std::byte> block) {
  if (block.size() < tiffHeaderSize || block[0] != block[1]) return std::nullopt;
  if (block[0] != std::byte{'M'} && block[0] != std::byte{'I'}) return std::nullopt;
  // Nothing lies further than an offset reaches, so the arithmetic on offsets cannot wrap.
  const TiffReader reader(block.first(std::min<std::size_t>(block.size(), UINT32_MAX)),
                          block[0] == std::byte{'M'} ? std::endian::big : std::endian::little);
  if (reader.u16(block.data() + 2) != 42) return std::nullopt;
  return reader;
}

std::uint32_t TiffReader::entryCount(std::uint32_t directory) const {
  const std::uint64_t begin = std::uint64_t{directory} + 2;
  if (begin > block_.size()) return 0;
  const std::uint64_t room = (block_.size() - begin) / tiffRecordSize;
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(u16(block_.data() + directory), room));
}

std::uint32_t TiffReader::nextDirectory(std::uint32_t directory) const {
  const std::uint64_t records = directory + std::uint64_t{2};
  if (records > block_.size()) return 0;
  const std::uint64_t at = records + std::uint64_t{tiffRecordSize} * u16(block_.data() + directory);
  return at + 4 <= block_.size() ? u32(block_.data() + at) : 0;
}

std::optional<Number> TiffReader::number(const TiffEntry& entry, std::uint32_t index) const {
  const std::uint32_t unit = tiffTypeSize(entry.type);
  if (unit == 0 || index >= entry.value.size() / unit) return std::nullopt;
  const std::byte* at = entry.value.data() + std::size_t{unit} * index;
  switch (entry.type) {
    case TiffType::unsignedByte:
    case TiffType::undefined:
      return Number(std::to_integer<std::int64_t>(*at));
    case TiffType::signedByte:
      return Number(static_cast<std::int8_t>(*at));
    case TiffType::unsignedShort:
      return Number(u16(at));
    case TiffType::signedShort:
      return Number(static_cast<std::int16_t>(u16(at)));
    case TiffType::unsignedLong:
    case TiffType::directory:
      return Number(u32(at));
    case TiffType::signedLong:
      return Number(static_cast<std::int32_t>(u32(at)));
    case TiffType::unsignedRational:
      return ratio(u32(at), u32(at + 4));
    case TiffType::signedRational:
      return ratio(static_cast<std::int32_t>(u32(at)), static_cast<std::int32_t>(u32(at + 4)));
    case TiffType::singleFloat:
      return finite(std::bit_cast<float>(u32(at)));
    case TiffType::doubleFloat:
      return finite(std::bit_cast<double>(u64(at)));
    case TiffType::ascii:
    case TiffType::utf8:
      break;
  }
  return std::nullopt;
}

std::optional<std::uint32_t> TiffReader::unsignedInteger(const TiffEntry& entry,
                                                         std::uint32_t index) const {
  const std::optional<Number> value = number(entry, index);
  if (!value || value->kind() == Number::Kind::real) return std::nullopt;
  const std::int64_t integer = value->integerValue();
  if (integer < 0 || integer > UINT32_MAX) return std::nullopt;
  return static_cast<std::uint32_t>(integer);
}

void storeTiffInteger(std::byte* bytes, std::uint64_t number, std::size_t size, std::endian order) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes[order == std::endian::big ? size - 1 - i : i] =
        static_cast<std::byte>(number >> (8 * i) & 0xFF);
  }
}

void appendTiffInteger(std::vector<std::byte>& bytes, std::uint64_t number, std::size_t size,
                       std::endian order) {
  bytes.resize(bytes.size() + size);
  storeTiffInteger(bytes.data() + bytes.size() - size, number, size, order);
}

}  // namespace FrameworkUtility::detail
