#include <framework_utility/platform/imageio/exif_text.h>

#include <framework_utility/platform/imageio/tiff_structure.h>

#include <algorithm>
#include <cstdint>

namespace FrameworkUtility::detail {
namespace {

constexpr char32_t replacement = U'\uFFFD';

std::string_view characters(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::vector<std::byte> bytes(std::string_view text) {
  const auto characterBytes = std::as_bytes(std::span(text));
  return {characterBytes.begin(), characterBytes.end()};
}

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

// The character at the start of `text`, which becomes shorter by it; absent where the bytes are no
// UTF-8 (RFC 3629: shortest form, no surrogates, none above U+10FFFF).
std::optional<char32_t> takeUtf8(std::string_view& text) {
  const auto byte = [&](std::size_t i) -> char32_t { return static_cast<unsigned char>(text[i]); };
  const char32_t lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF8 ? 4
                                           : 0;
  if (length == 0 || length > text.size()) return std::nullopt;
  char32_t character = length == 1 ? lead : lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return std::nullopt;
    character = character << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < smallest[length] || character > 0x10FFFF) return std::nullopt;
  if (character >= 0xD800 && character < 0xE000) return std::nullopt;
  text.remove_prefix(length);
  return character;
}

void appendUtf8(std::string& text, char32_t character) {
  const auto append = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) return append(character);
  if (character < 0x800) {
    append(0xC0 | character >> 6);
  } else {
    if (character < 0x10000) {
      append(0xE0 | character >> 12);
    } else {
      append(0xF0 | character >> 18);
      append(0x80 | (character >> 12 & 0x3F));
    }
    append(0x80 | (character >> 6 & 0x3F));
  }
  append(0x80 | (character & 0x3F));
}

bool isUtf8(std::string_view text) {
  while (!text.empty())
    if (!takeUtf8(text)) return false;
  return true;
}

constexpr char32_t byteOrderMark = 0xFEFF;

char32_t utf16Unit(std::span<const std::byte> bytes, std::size_t index, std::endian order) {
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
    const char32_t unit = utf16Unit(bytes, i, opposite(blockOrder));
    if (i == 0 && unit == byteOrderMark) return opposite(blockOrder);
    if (i == 0 && utf16Unit(bytes, i, blockOrder) == byteOrderMark) return blockOrder;
    latinInOther += unit >= 0x20 && unit < 0x100;
  }
  return 2 * latinInOther > count ? opposite(blockOrder) : blockOrder;
}

std::string readUtf16(std::span<const std::byte> bytes, std::endian blockOrder) {
  const std::endian order = utf16Order(bytes, blockOrder);
  const std::size_t count = bytes.size() / 2;
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    const char32_t first = utf16Unit(bytes, i, order);
    if (first == 0) break;
    if (first == byteOrderMark && i == 0) continue;
    if (first < 0xD800 || first >= 0xE000) {
      appendUtf8(text, first);
    } else if (const char32_t second = i + 1 < count ? utf16Unit(bytes, i + 1, order) : 0;
               first < 0xDC00 && second >= 0xDC00 && second < 0xE000) {
      appendUtf8(text, 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00));
      ++i;
    } else {
      appendUtf8(text, replacement);
    }
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
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
  if (isAscii(text) || isUtf8(text)) return std::string(text);
  std::string utf8;
  for (const char c : text) appendUtf8(utf8, static_cast<unsigned char>(c));
  return utf8;
}

std::vector<std::byte> exifText(std::string_view text) {
  // With the string's own final NUL.
  const std::string stored(text.substr(0, text.find('\0')));
  return bytes({stored.c_str(), stored.size() + 1});
}

std::optional<std::string> readExifComment(std::span<const std::byte> bytes, std::endian order) {
  const std::string_view prefix = characters(bytes).substr(0, prefixSize);
  if (prefix == unicodePrefix) return readUtf16(bytes.subspan(prefixSize), order);
  if (prefix == asciiPrefix || prefix == undefinedPrefix)
    return readExifText(bytes.subspan(prefixSize));
  if (prefix != jisPrefix) return readExifText(bytes);
  // ISO-2022-JP is ASCII until an escape.
  if (characters(bytes.subspan(prefixSize)).find('\x1B') != std::string_view::npos)
    return std::nullopt;
  const std::string_view text = characters(bytes.subspan(prefixSize));
  if (!isAscii(text)) return std::nullopt;
  return readExifText(bytes.subspan(prefixSize));
}

std::vector<std::byte> exifComment(std::string_view text, std::endian order) {
  text = text.substr(0, text.find('\0'));
  if (isAscii(text)) return bytes(std::string(asciiPrefix).append(text));
  std::vector<std::byte> units;
  while (!text.empty()) {
    const std::optional<char32_t> character = takeUtf8(text);
    if (!character) text.remove_prefix(1);
    const char32_t c = character.value_or(replacement);
    if (c >= 0x10000) appendTiffInteger(units, 0xD800 + ((c - 0x10000) >> 10), 2, order);
    appendTiffInteger(units, c >= 0x10000 ? 0xDC00 + ((c - 0x10000) & 0x3FF) : c, 2, order);
  }
  std::vector<std::byte> stored = bytes(unicodePrefix);
  // A mark only where the order would be mistaken: it is no part of the standard's text.
  if (utf16Order(units, order) != order) appendTiffInteger(stored, byteOrderMark, 2, order);
  stored.insert(stored.end(), units.begin(), units.end());
  return stored;
}

}  // namespace FrameworkUtility::detail
