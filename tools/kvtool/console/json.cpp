#include <tools/kvtool/console/json.h>

#include <tools/kvtool/console/photo_date.h>

#include <framework_utility/platform/foundation/object.h>

#include <fmt/core.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// The length of the UTF-8 character that `text` begins with, 0 when it begins with none.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                             : lead >= 0xE0 && lead <= 0xEF ? 3
                             : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                            : 0;
  if (length == 0 || text.size() < length) return 0;
  // The second byte's range keeps out long forms, surrogates and what is above U+10FFFF.
  const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i)
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  return length;
}

std::string base64(const Data& data) {
  constexpr std::string_view alphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((data.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < data.size(); i += 3) {
    const auto byte = [&](std::size_t k) {
      return i + k < data.size() ? std::to_integer<std::uint32_t>(data.data()[i + k]) : 0;
    };
    const std::uint32_t group = byte(0) << 16 | byte(1) << 8 | byte(2);
    for (std::size_t k = 0; k < 4; ++k)
      text += i + k <= data.size() ? alphabet[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

void append(std::string& out, const Value& value);

void append(std::string& out, const Number& number) {
  if (number.kind() == Number::Kind::boolean)
    out += number.boolValue() ? "true" : "false";
  else if (!std::isfinite(number.doubleValue()))
    out += "null";
  else
    out += number.description();
}

void append(std::string& out, const Array& array) {
  out += '[';
  for (const Value& element : array) {
    if (out.back() != '[') out += ", ";
    append(out, element);
  }
  out += ']';
}

void append(std::string& out, const Dictionary& dictionary) {
  out += '{';
  for (const auto& [key, value] : dictionary) {
    if (out.back() != '{') out += ", ";
    out += jsonText(key.text() ? *key.text() : key.number()->description()) + ": ";
    append(out, value);
  }
  out += '}';
}

void append(std::string& out, const Value& value) {
  if (const auto* number = value.as<Number>()) return append(out, *number);
  if (const auto* array = value.as<Array>()) return append(out, *array);
  if (const auto* dictionary = value.as<Dictionary>()) return append(out, *dictionary);
  if (const auto* text = value.as<std::string>()) {
    out += jsonText(*text);
  } else if (const auto* data = value.as<Data>()) {
    out += "{\"base64\": \"" + base64(*data) + "\"}";
  } else if (const auto* date = value.as<Date>()) {
    out += jsonText(textOf({*date, "Z"}));
  } else {
    out += value.isNull() ? "null" : jsonText(value.description());
  }
}

}  // namespace

std::string json(const Value& value) {
  std::string out;
  append(out, value);
  return out;
}

std::string jsonText(std::string_view text) {
  std::string out = "\"";
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    const char first = text.front();
    if (length == 0)
      out += "\uFFFD";
    else if (first == '"' || first == '\\')
      out += {'\\', first};
    else if (static_cast<unsigned char>(first) < 0x20 || first == 0x7F)
      out += fmt::format("\\u{:04x}", static_cast<unsigned char>(first));
    else
      out += text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out + '"';
}

}  // namespace kvtool
