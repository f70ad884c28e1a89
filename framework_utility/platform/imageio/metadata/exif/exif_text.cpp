#include <framework_utility/platform/imageio/metadata/exif/exif_text.h>

#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>
#include <framework_utility/platform/imageio/metadata/text_encoding.h>

#include <algorithm>
#include <cstdint>

namespace FrameworkUtility::detail {
namespace {

std::string_view characters(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::vector<std::byte> bytesOf(std::string_view text) {
  const auto characterBytes = std::as_bytes(std::span(text));
  return {characterBytes.begin(), characterBytes.end()};
}

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

constexpr char16_t byteOrderMark = 0xFEFF;

char16_t utf16Unit(std::span<const std::byte> bytes, std::size_t index, std::endian order) {
  return TiffReader(bytes, order).u16(bytes.data() + 2 * index);
}

std::endian opposite(std::endian order) {
  return order == std::endian::big ? std::endian::little : std::endian::big;
}

// Some programs write UTF-16 in their machine's order instead of the block's. Where no mark tells,
// it is taken for the other order when most of it is Latin in that one.
std::endian utf16Order(std::span<const std::byte> bytes, std::endian blockOrder) {
  const std::size_t count = bytes.size() / 2;
  std::size_t latinInOther = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const char16_t unit = utf16Unit(bytes, i, opposite(blockOrder));
    if (i == 0 && unit == byteOrderMark) return opposite(blockOrder);
    if (i == 0 && utf16Unit(bytes, i, blockOrder) == byteOrderMark) return blockOrder;
    latinInOther += unit >= 0x20 && unit < 0x100;
  }
  return 2 * latinInOther > count ? opposite(blockOrder) : blockOrder;
}

std::string readUtf16(std::span<const std::byte> bytes, std::endian blockOrder) {
  const std::endian order = utf16Order(bytes, blockOrder);
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) units[i] = utf16Unit(bytes, i, order);
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
  std::string_view text = characters(bytes);
  text = text.substr(0, text.find('\0'));
  text = text.substr(0, text.find_last_not_of(' ') + 1);
  return isAscii(text) || utf8::isValid(text) ? std::string(text) : utf8::fromLatin1(text);
}

std::vector<std::byte> exifText(std::string_view text) {
  // With the string's own final NUL.
  const std::string stored(text.substr(0, text.find('\0')));
  return bytesOf({stored.c_str(), stored.size() + 1});
}

std::optional<std::string> readExifComment(std::span<const std::byte> bytes, std::endian order) {
  const std::string_view prefix = characters(bytes).substr(0, prefixSize);
  if (prefix == unicodePrefix) return readUtf16(bytes.subspan(prefixSize), order);
  if (prefix == asciiPrefix || prefix == undefinedPrefix) {
    return readExifText(bytes.subspan(prefixSize));
  }
  if (prefix != jisPrefix) return readExifText(bytes);
  // ISO-2022-JP is ASCII until an escape.
  const std::string_view text = characters(bytes.subspan(prefixSize));
  if (!isAscii(text) || text.find('\x1B') != std::string_view::npos) return std::nullopt;
  return readExifText(bytes.subspan(prefixSize));
}

std::vector<std::byte> exifComment(std::string_view text, std::endian order) {
  text = text.substr(0, text.find('\0'));
  if (isAscii(text)) return bytesOf(std::string(asciiPrefix).append(text));
  const std::vector<std::byte> units = utf16FromUtf8(text, order);
  std::vector<std::byte> stored = bytesOf(unicodePrefix);
  // A mark only where the order would be mistaken: it is no part of the standard's text.
  if (utf16Order(units, order) != order) appendTiffInteger(stored, byteOrderMark, 2, order);
  stored.insert(stored.end(), units.begin(), units.end());
  return stored;
}

}  // namespace FrameworkUtility::detail
