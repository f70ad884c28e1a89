#include <tools/kvtool/console/json.h>

#include <tools/kvtool/console/photo_date.h>

#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/utf8.h>

#include <fmt/core.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

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
      const std::string_view rest = text;
      const std::optional<char32_t> character = utf8::takeCharacter(text);
      if (!character) {
        put("\uFFFD");
        text.remove_prefix(1);
      } else if (*character == '"' || *character == '\\') {
        put(*character == '"' ? "\\\"" : "\\\\");
      } else if (*character < 0x20 || *character == 0x7F) {
        put(fmt::format("\\u{:04x}", static_cast<unsigned>(*character)));
      } else {
        put(rest.substr(0, rest.size() - text.size()));
      }
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
    if (number.kind() == Number::Kind::boolean) {
      put(number.boolValue() ? "true" : "false");
    } else {
      put(std::isfinite(number.doubleValue()) ? number.description() : "null");
    }
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
      for (std::size_t k = 0; k < digits.size(); ++k) {
        digits[k] = i + k <= data.size() ? alphabet[group >> (18 - 6 * k) & 63] : '=';
      }
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
