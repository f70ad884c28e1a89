#include <framework_utility/platform/foundation/utf16.h>

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {
namespace {

constexpr char32_t invalid = 0xFFFFFFFF;
constexpr char32_t replacement = 0xFFFD;

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

/// The code point that starts at `at`, which moves past it. Well-formed sequences are those of
/// table 3-7 of the Unicode Standard.
char32_t nextCodePoint(std::string_view text, std::size_t& at) {
  const auto first = static_cast<unsigned char>(text[at++]);
  if (first < 0x80) return first;
  const int length = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
  if (first < 0xC2 || first > 0xF4) return invalid;
  char32_t point = first & (0x3F >> length);
  for (int i = 0; i < length; ++i) {
    if (at == text.size()) return invalid;
    const auto next = static_cast<unsigned char>(text[at++]);
    if ((next & 0xC0) != 0x80) return invalid;
    point = point << 6 | (next & 0x3F);
  }
  constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = isHighSurrogate(point) || isLowSurrogate(point);
  return point < smallest[length] || point > 0x10FFFF || isSurrogate ? invalid : point;
}

void append(std::string& out, char32_t point) {
  const auto put = [&out](char32_t byte) { out += static_cast<char>(byte); };
  if (point < 0x80) {
    put(point);
  } else if (point < 0x800) {
    put(0xC0 | point >> 6);
    put(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    put(0xE0 | point >> 12);
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  } else {
    put(0xF0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3F));
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  }
}

}  // namespace

std::optional<std::u16string> utf16FromUtf8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t point = nextCodePoint(text, at);
    if (point == invalid) return std::nullopt;
    if (point < 0x10000) {
      units += static_cast<char16_t>(point);
    } else {
      units += static_cast<char16_t>(0xD7C0 + (point >> 10));
      units += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
    }
  }
  return units;
}

void appendUtf8(std::string& out, std::u16string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t point = text[at];
    if (isHighSurrogate(point) && at + 1 < text.size() && isLowSurrogate(text[at + 1]))
      point = 0x10000 + ((point - 0xD800) << 10) + (char32_t{text[++at]} - 0xDC00);
    else if (isHighSurrogate(point) || isLowSurrogate(point))
      point = replacement;
    append(out, point);
  }
}

}  // namespace FrameworkUtility::detail
