#include <framework_utility/platform/foundation/values/utf8.h>

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::utf8 {

namespace {

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

}  // namespace

std::optional<char32_t> takeCharacter(std::string_view& text) {
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
  const bool isSurrogate = isHighSurrogate(character) || isLowSurrogate(character);
  if (character < smallest[length - 2] || character > 0x10FFFF || isSurrogate) return std::nullopt;
  text.remove_prefix(length);
  return character;
}

void append(std::string& out, char32_t character) {
  const auto put = [&](char32_t byte) { out += static_cast<char>(byte); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0 | character >> 6);
  } else if (character < 0x10000) {
    put(0xE0 | character >> 12);
    put(0x80 | (character >> 6 & 0x3F));
  } else {
    put(0xF0 | character >> 18);
    put(0x80 | (character >> 12 & 0x3F));
    put(0x80 | (character >> 6 & 0x3F));
  }
  put(0x80 | (character & 0x3F));
}

bool isValid(std::string_view text) {
  while (!text.empty()) {
    if (!takeCharacter(text)) return false;
  }
  return true;
}

std::optional<std::u16string> toUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const std::optional<char32_t> character = takeCharacter(text);
    if (!character) return std::nullopt;
    if (*character < 0x10000) {
      units += static_cast<char16_t>(*character);
    } else {
      units += static_cast<char16_t>(0xD7C0 + (*character >> 10));
      units += static_cast<char16_t>(0xDC00 + (*character & 0x3FF));
    }
  }
  return units;
}

std::string fromUtf16(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t character = text[at];
    if (isHighSurrogate(character) && at + 1 < text.size() && isLowSurrogate(text[at + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (char32_t{text[++at]} - 0xDC00);
    } else if (isHighSurrogate(character) || isLowSurrogate(character)) {
      character = replacementCharacter;
    }
    append(out, character);
  }
  return out;
}

std::optional<std::string> toLatin1(std::string_view text) {
  std::string latin1;
  while (!text.empty()) {
    const std::optional<char32_t> character = takeCharacter(text);
    if (!character || *character > 0xFF) return std::nullopt;
    latin1 += static_cast<char>(*character);
  }
  return latin1;
}

std::string fromLatin1(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) append(out, static_cast<std::uint8_t>(c));
  return out;
}

}  // namespace FrameworkUtility::utf8
