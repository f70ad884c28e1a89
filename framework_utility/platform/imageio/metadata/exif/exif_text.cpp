#include <framework_utility/platform/imageio/metadata/exif/exif_text.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/imageio/metadata/values/text_encoding.h>

#include <algorithm>
#include <cstdint>

namespace FrameworkUtility::detail {
namespace {

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

constexpr char16_t byteOrderMark = 0xFEFF;

std::endian opposite(std::endian order) {
  return order == std::endian::big ? std::endian::little : std::endian::big;
}

/// Some programs write UTF-16 in their machine's order instead of the block's. Where no mark tells,
/// it is taken for the other order when most of it is Latin in that one.
std::endian utf16Order(std::span<const std::byte> bytes, std::endian blockOrder) {
  const std::size_t count = bytes.size() / 2;
  std::size_t latinInOther = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto unit = ByteReader(bytes, opposite(blockOrder)).at<char16_t>(2 * i);
    if (i == 0 && unit == byteOrderMark) return opposite(blockOrder);
    if (i == 0 && ByteReader(bytes, blockOrder).at<char16_t>(0) == byteOrderMark) return blockOrder;
    latinInOther += unit >= 0x20 && unit < 0x100;
  }
  return 2 * latinInOther > count ? opposite(blockOrder) : blockOrder;
}

std::string readUtf16(std::span<const std::byte> bytes, std::endian blockOrder) {
  const std::u16string units = utf16Units(ByteReader(bytes, utf16Order(bytes, blockOrder)));
  std::u16string_view text = units;
  if (text.starts_with(byteOrderMark)) text.remove_prefix(1);
  text = text.substr(0, text.find(u'\0'));
  text = text.substr(0, text.find_last_not_of(u' ') + 1);
  return utf8::fromUtf16(text);
}

constexpr std::size_t prefixSize = 8;
constexpr std::string_view asciiPrefix("ASCII\0\0\0", prefixSize);
constexpr std::string_view unicodePrefix("UNICODE\0", prefixSize);
constexpr std::string_view jisPrefix("JIS\0\0\0\0\0", prefixSize);
constexpr std::string_view undefinedPrefix("\0\0\0\0\0\0\0\0", prefixSize);

}  // namespace

std::string readExifText(std::span<const std::byte> bytes) {
  std::string_view text = asText(bytes);
  text = text.substr(0, text.find('\0'));
  text = text.substr(0, text.find_last_not_of(' ') + 1);
  return isAscii(text) || utf8::isValid(text) ? std::string(text) : utf8::fromLatin1(text);
}

std::vector<std::byte> exifText(std::string_view text) {
  return ByteWriter().put(text.substr(0, text.find('\0'))).put<std::uint8_t>(0).takeBytes();
}

std::optional<std::string> readExifComment(std::span<const std::byte> bytes, std::endian order) {
  const std::string_view prefix = asText(bytes).substr(0, prefixSize);
  if (prefix == unicodePrefix) return readUtf16(bytes.subspan(prefixSize), order);
  if (prefix == asciiPrefix || prefix == undefinedPrefix) {
    return readExifText(bytes.subspan(prefixSize));
  }
  if (prefix != jisPrefix) return readExifText(bytes);
  // ISO-2022-JP is ASCII until an escape.
  const std::string_view text = asText(bytes.subspan(prefixSize));
  if (!isAscii(text) || text.find('\x1B') != std::string_view::npos) return std::nullopt;
  return readExifText(bytes.subspan(prefixSize));
}

std::vector<std::byte> exifComment(std::string_view text, std::endian order) {
  text = text.substr(0, text.find('\0'));
  if (isAscii(text)) return ByteWriter().put(asciiPrefix).put(text).takeBytes();
  const std::vector<std::byte> units = utf16FromUtf8(text, order);
  ByteWriter stored(order);
  stored.put(unicodePrefix);
  // A mark only where the order would be mistaken: it is no part of the standard's text.
  if (utf16Order(units, order) != order) stored.put<char16_t>(byteOrderMark);
  return stored.put(units).takeBytes();
}

}  // namespace FrameworkUtility::detail
