#include <framework_utility/platform/imageio/metadata/text_encoding.h>

#include <framework_utility/platform/foundation/values/utf8.h>

#include <cstdint>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

// XML 1.0, production 2 (Char).
bool isXmlCharacter(char32_t code) {
  return code >= 0x20 ? code != 0xFFFE && code != 0xFFFF
                      : code == '\t' || code == '\n' || code == '\r';
}

}  // namespace

std::optional<std::string> utf8FromUtf16(std::span<const std::byte> text, std::endian order) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::u16string units(text.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto first = std::to_integer<unsigned>(text[2 * i]);
    const auto second = std::to_integer<unsigned>(text[2 * i + 1]);
    units[i] = static_cast<char16_t>(order == std::endian::big ? first << 8 | second
                                                               : second << 8 | first);
  }
  std::string out = utf8::fromUtf16(units);
  // A lone surrogate has become another character.
  return utf8::toUtf16(out) == units ? std::optional(std::move(out)) : std::nullopt;
}

std::vector<std::byte> utf16FromUtf8(std::string_view text, std::endian order) {
  std::vector<std::byte> out;
  for (const char16_t unit : utf8::toUtf16(text).value_or(std::u16string())) {
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
    const std::optional<char32_t> character = utf8::takeCharacter(text);
    if (!character) {
      utf8::append(out, utf8::replacementCharacter);
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
