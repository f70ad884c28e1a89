// Colours from texts and lists, as settings and style files hold them.

#include <framework_utility/color/color_utility.h>
#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/locale/character_set.h>

#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>

namespace FrameworkUtility {

namespace {

/// The value of a hexadecimal digit; only ASCII has any.
std::optional<std::uint32_t> hexadecimalDigit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  return std::nullopt;
}

/// The hexadecimal number at the beginning of at most seven units, 0 without one.
std::uint32_t scanHexadecimal(std::u16string_view text) {
  while (!text.empty() && (isWhitespace(text.front()) || isNewline(text.front()))) {
    text.remove_prefix(1);
  }
  if (text.starts_with(u"0x") || text.starts_with(u"0X")) text.remove_prefix(2);
  std::uint32_t number = 0;
  for (const char16_t unit : text) {
    const std::optional<std::uint32_t> digit = hexadecimalDigit(unit);
    if (!digit) break;
    number = number << 4 | *digit;
  }
  return number;
}

/// Digits with an optional sign and point: no exponent, no grouping, no blanks, nothing else.
std::optional<double> decimalNumber(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  if (text.find_first_not_of("0123456789.") != text.npos) return std::nullopt;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return isNegative ? -number : number;
}

std::optional<double> component(const Value& value) {
  if (const auto* number = value.as<Number>()) return number->doubleValue();
  if (const auto* text = value.as<std::string>()) return decimalNumber(*text);
  return std::nullopt;
}

/// The pieces between white-space characters; two that stand side by side have an empty piece
/// between them, which is no number. Of many pieces the first five.
Array piecesOf(std::u16string_view text) {
  Array pieces;
  std::string piece;
  for (const char16_t unit : text) {
    if (isWhitespace(unit)) {
      if (pieces.size() == 4) break;
      pieces.emplace_back(std::exchange(piece, {}));
    } else {
      piece += unit < 0x80 ? static_cast<char>(unit) : '?';  // either is in no number
    }
  }
  pieces.emplace_back(std::move(piece));
  return pieces;
}

std::optional<UIColor> colorWithText(std::string_view text) {
  if (std::optional<UIColor> color = colorFromHexString(text)) return color;
  const std::optional<std::u16string> units = utf8::toUtf16(text);
  if (!units) return std::nullopt;
  return colorWithArray(piecesOf(*units));
}

}  // namespace

std::optional<UIColor> colorFromHexString(std::string_view text, double alpha) {
  // A unit of UTF-16 takes at most three bytes of UTF-8, and a text may be of any size.
  constexpr std::size_t mostBytes = 21;
  if (text.size() > mostBytes) return std::nullopt;
  const std::optional<std::u16string> units = utf8::toUtf16(text);
  if (!units) return std::nullopt;
  std::u16string_view digits = *units;
  if (digits.starts_with(u'#')) digits.remove_prefix(1);
  if (digits.size() != 6) return std::nullopt;
  const std::uint32_t number = scanHexadecimal(digits);
  const auto byte = [number](int shift) { return (number >> shift & 0xFF) / 255.0; };
  return UIColor(byte(16), byte(8), byte(0), alpha);
}

std::optional<UIColor> colorWithArray(const Array& components) {
  if (components.size() != 3 && components.size() != 4) return std::nullopt;
  double bytes[] = {0, 0, 0, 255};
  for (std::size_t i = 0; i < components.size(); ++i) {
    const std::optional<double> value = component(components[i]);
    if (!value) return std::nullopt;
    bytes[i] = *value;
  }
  return UIColor(bytes[0] / 255, bytes[1] / 255, bytes[2] / 255, bytes[3] / 255);
}

std::optional<UIColor> colorWithObject(const std::optional<Value>& object) {
  if (!object) return std::nullopt;
  if (const auto* text = object->as<std::string>()) return colorWithText(*text);
  if (const auto* components = object->as<Array>()) return colorWithArray(*components);
  return std::nullopt;
}

}  // namespace FrameworkUtility
