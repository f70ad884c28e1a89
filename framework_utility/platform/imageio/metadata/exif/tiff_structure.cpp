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

std::optional<std::endian> tiffOrder(std::span<const std::byte> mark) {
  const std::string_view letters = asText(mark).substr(0, 2);
  if (letters == "MM") return std::endian::big;
  return letters == "II" ? std::optional(std::endian::little) : std::nullopt;
}

std::optional<TiffReader> TiffReader::open(std::span<const std::byte> block) {
  // Nothing lies further than an offset reaches, so the arithmetic on offsets cannot wrap.
  block = block.first(std::min<std::size_t>(block.size(), UINT32_MAX));
  const std::optional<std::endian> order = tiffOrder(block);
  if (!order || block.size() < tiffHeaderSize) return std::nullopt;
  const TiffReader reader(block, *order);
  if (reader.block().at<std::uint16_t>(2) != 42) return std::nullopt;
  return reader;
}

std::uint32_t TiffReader::entryCount(std::uint32_t directory) const {
  const std::uint64_t begin = std::uint64_t{directory} + 2;
  if (begin > block_.size()) return 0;
  const std::uint64_t room = (block_.size() - begin) / tiffRecordSize;
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(block_.at<std::uint16_t>(directory), room));
}

std::uint32_t TiffReader::nextDirectory(std::uint32_t directory) const {
  if (!block_.holds(directory, 2)) return 0;
  const std::uint64_t count = block_.at<std::uint16_t>(directory);
  return block_.at<std::uint32_t>(directory + tiffDirectorySize(count) - 4);
}

std::optional<Number> TiffReader::number(const TiffEntry& entry, std::uint32_t index) const {
  const std::uint32_t unit = tiffTypeSize(entry.type);
  const ByteReader value(ByteReader(entry.value).part(std::uint64_t{unit} * index, unit), order());
  if (value.size() == 0) return std::nullopt;
  switch (entry.type) {
    case TiffType::unsignedByte:
    case TiffType::undefined:
      return Number(value.at<std::uint8_t>(0));
    case TiffType::signedByte:
      return Number(value.at<std::int8_t>(0));
    case TiffType::unsignedShort:
      return Number(value.at<std::uint16_t>(0));
    case TiffType::signedShort:
      return Number(value.at<std::int16_t>(0));
    case TiffType::unsignedLong:
    case TiffType::directory:
      return Number(value.at<std::uint32_t>(0));
    case TiffType::signedLong:
      return Number(value.at<std::int32_t>(0));
    case TiffType::unsignedRational:
      return ratio(value.at<std::uint32_t>(0), value.at<std::uint32_t>(4));
    case TiffType::signedRational:
      return ratio(value.at<std::int32_t>(0), value.at<std::int32_t>(4));
    case TiffType::singleFloat:
      return finite(value.at<float>(0));
    case TiffType::doubleFloat:
      return finite(value.at<double>(0));
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

}  // namespace FrameworkUtility::detail
