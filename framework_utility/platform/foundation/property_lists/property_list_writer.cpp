#include <framework_utility/platform/foundation/property_lists/property_list.h>

#include <framework_utility/platform/foundation/property_lists/property_list_format.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/foundation/values/fail.h>
#include <framework_utility/platform/foundation/values/reference_date.h>
#include <framework_utility/platform/foundation/values/utf8.h>

#include <algorithm>
#include <bit>
#include <unordered_map>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace detail;

/// The fewest bytes of 1, 2, 4 and 8 that hold `number`.
std::size_t sizeOf(std::uint64_t number) {
  if (number <= 0xFF) return 1;
  if (number <= 0xFFFF) return 2;
  return number <= 0xFFFFFFFF ? 4 : 8;
}

bool isASCII(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

/// First every object gets its number, so that the size of a reference is known; then all are
/// written. The value must outlive the writer.
class Writer {
 public:
  bool addTop(const Value& value) { return place(value).has_value(); }

  std::vector<std::byte> write() {
    referenceSize_ = sizeOf(objects_.size() - 1);
    out_.put(propertyListSignature);
    std::vector<std::size_t> offsets;
    offsets.reserve(objects_.size());
    for (const Object& object : objects_) {
      offsets.push_back(out_.size());
      std::visit([this](const auto& contents) { write(contents); }, object);
    }

    const std::size_t tableOffset = out_.size();
    const std::size_t offsetSize = sizeOf(tableOffset);
    for (const std::size_t offset : offsets) out_.putNumber(offset, offsetSize);
    out_.putNumber(0, trailer::offsetSize).putNumber(offsetSize, 1).putNumber(referenceSize_, 1);
    out_.put<std::uint64_t>(objects_.size());
    out_.put<std::uint64_t>(0);  // the top object is the first
    out_.put<std::uint64_t>(tableOffset);
    return out_.takeBytes();
  }

 private:
  /// The children of an array or dictionary: `count` elements or entries from `first` on.
  struct Container {
    Marker marker;
    std::size_t first, count;
  };
  struct WideText {
    std::u16string units;
  };
  struct Seconds {
    double sinceReferenceDate;
  };
  struct UID {
    std::uint64_t number;
  };
  using Object =
      std::variant<Number, std::string_view, WideText, const Data*, Seconds, UID, Container>;

  // Each gives the number of the object, and nothing for what no property list can hold.

  std::optional<std::size_t> place(const Value& value) {
    if (depth_ == PropertyListLimits().depth) return std::nullopt;
    if (const auto* number = value.as<Number>()) return add(*number);
    if (const auto* text = value.as<std::string>()) return placeText(*text);
    if (const auto* data = value.as<Data>()) return add(data);
    if (const auto* date = value.as<Date>()) {
      const std::optional<double> seconds = secondsSinceReferenceDate(*date);
      return seconds ? std::optional(add(Seconds{*seconds})) : std::nullopt;
    }
    if (const auto* array = value.as<Array>()) return placeArray(*array);
    if (const auto* dictionary = value.as<Dictionary>()) return placeDictionary(*dictionary);
    if (const auto uid = PropertyListUID::numberIn(value)) return add(UID{*uid});
    return std::nullopt;
  }

  std::optional<std::size_t> placeText(std::string_view text) {
    const auto [known, isNew] = texts_.try_emplace(text, objects_.size());
    if (!isNew) return known->second;
    if (isASCII(text)) return add(text);
    std::optional<std::u16string> units = utf8::toUtf16(text);
    return units ? std::optional(add(WideText{*std::move(units)})) : std::nullopt;
  }

  std::optional<std::size_t> placeArray(const Array& array) {
    const Container container = open(Marker::array, array.size(), array.size());
    const std::size_t own = add(container);
    for (std::size_t i = 0; i < array.size(); ++i) {
      if (!refer(container.first + i, place(array[i]))) return std::nullopt;
    }
    --depth_;
    return own;
  }

  std::optional<std::size_t> placeDictionary(const Dictionary& dictionary) {
    const std::size_t count = dictionary.size();
    const Container container = open(Marker::dictionary, count, 2 * count);
    const std::size_t own = add(container);
    std::size_t at = container.first;
    for (const auto& [key, value] : dictionary) {
      const std::optional<std::string_view> text = key.text();
      if (!text || !refer(at, placeText(*text)) || !refer(at + count, place(value))) {
        return std::nullopt;
      }
      ++at;
    }
    --depth_;
    return own;
  }

  Container open(Marker marker, std::size_t count, std::size_t references) {
    ++depth_;
    const std::size_t first = references_.size();
    references_.resize(first + references);
    return {marker, first, count};
  }

  bool refer(std::size_t reference, std::optional<std::size_t> object) {
    if (object) references_[reference] = *object;
    return object.has_value();
  }

  std::size_t add(Object object) {
    objects_.push_back(std::move(object));
    return objects_.size() - 1;
  }

  // The bytes of objects.

  void putMarker(Marker marker, std::size_t low) {
    out_.putNumber(static_cast<std::size_t>(marker) | low, 1);
  }

  void putLength(Marker marker, std::size_t length) {
    if (length < lengthFollows) return putMarker(marker, length);
    putMarker(marker, lengthFollows);
    putInteger(length);
  }

  void putInteger(std::uint64_t number) {
    const std::size_t size = sizeOf(number);
    putMarker(Marker::integer, static_cast<std::size_t>(std::countr_zero(size)));
    out_.putNumber(number, size);
  }

  void write(const Number& number) {
    switch (number.kind()) {
      case Number::Kind::boolean:
        return putMarker(Marker::simple, number.boolValue() ? trueMarker : falseMarker);
      case Number::Kind::integer:
        // As an unsigned number, a negative one has all the bits of 8 bytes, which are signed.
        return putInteger(static_cast<std::uint64_t>(number.integerValue()));
      case Number::Kind::unsignedInteger:
        return writeUnsigned(number.unsignedIntegerValue());
      case Number::Kind::real:
        return writeReal(number);
    }
  }

  void writeUnsigned(std::uint64_t number) {
    if (number >> 63 == 0) return putInteger(number);
    putMarker(Marker::integer, 4);
    out_.putNumber(number, 16);
  }

  void writeReal(const Number& number) {
    if (number.isSinglePrecision()) {
      putMarker(Marker::real, 2);
      out_.put<float>(static_cast<float>(number.doubleValue()));
    } else {
      putMarker(Marker::real, 3);
      out_.put<double>(number.doubleValue());
    }
  }

  void write(std::string_view ascii) {
    putLength(Marker::ascii, ascii.size());
    out_.put(ascii);
  }

  void write(const WideText& text) {
    putLength(Marker::utf16, text.units.size());
    for (const char16_t unit : text.units) out_.put<char16_t>(unit);
  }

  void write(const Data* data) {
    putLength(Marker::data, data->size());
    out_.put(*data);
  }

  void write(Seconds seconds) {
    putMarker(Marker::date, 3);
    out_.put<double>(seconds.sinceReferenceDate);
  }

  void write(UID uid) {
    const std::size_t size = sizeOf(uid.number);
    putMarker(Marker::uid, size - 1);
    out_.putNumber(uid.number, size);
  }

  void write(const Container& container) {
    putLength(container.marker, container.count);
    const std::size_t each = container.marker == Marker::dictionary ? 2 : 1;
    for (std::size_t i = 0; i < container.count * each; ++i) {
      out_.putNumber(references_[container.first + i], referenceSize_);
    }
  }

  std::vector<Object> objects_;
  std::vector<std::size_t> references_;
  std::unordered_map<std::string_view, std::size_t> texts_;
  std::size_t depth_ = 0;
  std::size_t referenceSize_ = 1;
  ByteWriter out_;
};

}  // namespace

std::optional<Data> dataWithPropertyList(const Value& value, Error* error) {
  Writer writer;
  if (!writer.addTop(value)) return detail::fail(error, PropertyListError::writeInvalid);
  return Data(writer.write());
}

}  // namespace FrameworkUtility
