#include <framework_utility/platform/imageio/metadata/values/text_encoding.h>

#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/foundation/values/utf8.h>

#include <cstdint>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

/// XML 1.0, production 2 (Char).
bool isXmlCharacter(char32_t code) {
  return code >= 0x20 ? code != 0xFFFE && code != 0xFFFF
                      : code == '\t' || code == '\n' || code == '\r';
}

}  // namespace

std::u16string utf16Units(ByteReader text) {
  std::u16string units(text.size() / 2, u'\0');
  for (char16_t& unit : units) unit = text.take<char16_t>();
  return units;
}

std::optional<std::string> utf8FromUtf16(const ByteReader& text) {
  if (text.size() % 2 != 0) return std::nullopt;
  const std::u16string units = utf16Units(text);
  std::string out = utf8::fromUtf16(units);
  // A lone surrogate has become another character.
  return utf8::toUtf16(out) == units ? std::optional(std::move(out)) : std::nullopt;
}

std::vector<std::byte> utf16FromUtf8(std::string_view text, std::endian order) {
  ByteWriter out(order);
  for (const char16_t unit : utf8::toUtf16(text).value_or(std::u16string())) {
    out.put<char16_t>(unit);
  }
  return out.takeBytes();
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
