#include <tools/kvtool/console/json.h>

#include <tools/kvtool/console/photo_date.h>

#include <framework_utility/platform/foundation/object.h>

#include <fmt/core.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

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

/// Writes JSON piece by piece, so that no more than a piece of it is in memory.
class Writer {
 public:
  /// `sink` takes each piece.
  explicit Writer(const JsonSink& sink) : sink_(sink) {}
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { sink_(out_); }

  void add(const Value& value) {
    if (const auto* number = value.as<Number>()) return add(*number);
    if (const auto* array = value.as<Array>()) return add(*array);
    if (const auto* dictionary = value.as<Dictionary>()) return add(*dictionary);
    if (const auto* text = value.as<std::string>()) return addQuoted(*text);
    if (const auto* data = value.as<Data>()) return add(*data);
    if (const auto* date = value.as<Date>()) return addQuoted(textOf({*date, "Z"}));
    if (value.isNull()) return put("null");
    addQuoted(value.description());
  }

  /// `text` with everything escaped that must not stand between quotation marks.
  void addEscaped(std::string_view text) {
    while (!text.empty()) {
      const std::size_t length = characterLength(text);
      const char first = text.front();
      if (length == 0)
        put("\uFFFD");
      else if (first == '"' || first == '\\')
        put({std::array{'\\', first}.data(), 2});
      else if (static_cast<unsigned char>(first) < 0x20 || first == 0x7F)
        put(fmt::format("\\u{:04x}", static_cast<unsigned char>(first)));
      else
        put(text.substr(0, length));
      text.remove_prefix(length == 0 ? 1 : length);
    }
  }

  void addQuoted(std::string_view text) {
    put("\"");
    addEscaped(text);
    put("\"");
  }

 private:
  static constexpr std::size_t pieceSize = 32 * 1024;

  void put(std::string_view piece) {
    out_ += piece;
    if (out_.size() < pieceSize) return;
    sink_(out_);
    out_.clear();
  }

  void add(const Number& number) {
    if (number.kind() == Number::Kind::boolean)
      put(number.boolValue() ? "true" : "false");
    else
      put(std::isfinite(number.doubleValue()) ? number.description() : "null");
  }

  void add(const Data& data) {
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    put("{\"base64\": \"");
    for (std::size_t i = 0; i < data.size(); i += 3) {
      const auto byte = [&](std::size_t k) {
        return i + k < data.size() ? std::to_integer<std::uint32_t>(data.data()[i + k]) : 0;
      };
      const std::uint32_t group = byte(0) << 16 | byte(1) << 8 | byte(2);
      std::array<char, 4> digits;
      for (std::size_t k = 0; k < digits.size(); ++k)
        digits[k] = i + k <= data.size() ? alphabet[group >> (18 - 6 * k) & 63] : '=';
      put({digits.data(), digits.size()});
    }
    put("\"}");
  }

  void add(const Array& array) {
    const char* before = "[";
    for (const Value& element : array) {
      put(std::exchange(before, ", "));
      add(element);
    }
    put(array.empty() ? "[]" : "]");
  }

  void add(const Dictionary& dictionary) {
    const char* before = "{";
    for (const auto& [key, value] : dictionary) {
      put(std::exchange(before, ", "));
      addQuoted(key.text() ? *key.text() : key.number()->description());
      put(": ");
      add(value);
    }
    put(dictionary.empty() ? "{}" : "}");
  }

  const JsonSink& sink_;
  std::string out_;
};

}  // namespace

void writeJson(const Value& value, const JsonSink& sink) { Writer(sink).add(value); }

void writeEscaped(std::string_view text, const JsonSink& sink) { Writer(sink).addEscaped(text); }

std::string json(const Value& value) {
  std::string out;
  writeJson(value, [&](std::string_view piece) { out += piece; });
  return out;
}

std::string jsonText(std::string_view text) {
  std::string out = "\"";
  writeEscaped(text, [&](std::string_view piece) { out += piece; });
  return out + '"';
}

}  // namespace kvtool
