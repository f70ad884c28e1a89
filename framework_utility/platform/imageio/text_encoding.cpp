#include <framework_utility/platform/imageio/text_encoding.h>

#include <framework_utility/platform/foundation/utf16.h>

#include <cstdint>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

constexpr char32_t replacement = 0xFFFD;

// XML 1.0, production 2 (Char).
bool isXmlCharacter(char32_t code) {
  return code >= 0x20 ? code != 0xFFFE && code != 0xFFFF
                      : code == '\t' || code == '\n' || code == '\r';
}

}  // namespace

std::optional<char32_t> takeUtf8(std::string_view& text) {
  const auto byte = [&](std::size_t i) -> char32_t { return static_cast<std::uint8_t>(text[i]); };
  const char32_t lead = byte(0);
  if (lead < 0x80) {
    text.remove_prefix(1);
    return lead;
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return std::nullopt;
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return std::nullopt;
    character = character << 6 | (byte(i) & 0x3F);
  }
  constexpr char32_t smallest[] = {0x80, 0x800, 0x10000};
  const bool isSurrogate = character >= 0xD800 && character < 0xE000;
  if (character < smallest[length - 2] || character > 0x10FFFF || isSurrogate) return std::nullopt;
  text.remove_prefix(length);
  return character;
}

void appendUtf8(std::string& out, char32_t character) {
  const auto append = [&](char32_t byte) { out += static_cast<char>(byte); };
  if (character < 0x80) return append(character);
  if (character < 0x800) {
    append(0xC0 | character >> 6);
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    append(0x80 | (character >> 6 & 0x3F));
  } else {
    append(0xF0 | character >> 18);
    append(0x80 | (character >> 12 & 0x3F));
    append(0x80 | (character >> 6 & 0x3F));
  }
  append(0x80 | (character & 0x3F));
}

bool isValidUtf8(std::string_view text) {
  while (!text.empty())
    if (!takeUtf8(text)) return false;
  return true;
}

std::string utf8FromLatin1(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) appendUtf8(out, static_cast<std::uint8_t>(c));
  return out;
}

std::optional<std::string> utf8FromUtf16(std::span<const std::byte> text, std::endian order) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::u16string units(text.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto first = std::to_integer<unsigned>(text[2 * i]);
    const auto second = std::to_integer<unsigned>(text[2 * i + 1]);
    units[i] = static_cast<char16_t>(order == std::endian::big ? first << 8 | second
                                                               : second << 8 | first);
  }
  std::string out;
  appendUtf8(out, units);
  // A lone surrogate has become another character.
  return utf16FromUtf8(out) == units ? std::optional(std::move(out)) : std::nullopt;
}

std::vector<std::byte> utf16FromUtf8(std::string_view text, std::endian order) {
  std::vector<std::byte> out;
  for (const char16_t unit : utf16FromUtf8(text).value_or(std::u16string())) {
    const std::byte high{static_cast<std::uint8_t>(unit >> 8)};
    const std::byte low{static_cast<std::uint8_t>(unit & 0xFF)};
    out.push_back(order == std::endian::big ? high : low);
    out.push_back(order == std::endian::big ? low : high);
  }
  return out;
}

void appendXmlEscaped(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const std::string_view rest = text;
    const std::optional<char32_t> character = takeUtf8(text);
    if (!character) {
      appendUtf8(out, replacement);
      text.remove_prefix(1);
      continue;
    }
    switch (*character) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      // As themselves these would be read back as blanks from an attribute.
      case '\t':
        out += "&#9;";
        break;
      case '\n':
        out += "&#10;";
        break;
      case '\r':
        out += "&#13;";
        break;
      default:
        if (isXmlCharacter(*character)) out += rest.substr(0, rest.size() - text.size());
    }
  }
}

}  // namespace FrameworkUtility::detail
