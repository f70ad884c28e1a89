#include <framework_utility/platform/foundation/property_lists/property_list_readers.h>

#include <framework_utility/platform/foundation/property_lists/property_list_format.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/equal_keys.h>
#include <framework_utility/platform/foundation/values/reference_date.h>
#include <framework_utility/platform/foundation/values/utf8.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace detail;
using Bytes = std::span<const std::byte>;

/// Reads objects by their number. Each `read` gives nothing when the bytes are corrupt.
class Reader {
 public:
  Reader(Bytes data, std::size_t depth, ExpansionBudget& budget) : depth_(depth), budget_(budget) {
    isWhole_ = findTables(data);
  }

  std::optional<Value> readTop() {
    if (!isWhole_ || !budget_.spendValues(1)) return std::nullopt;
    return readObject(topObject_);
  }

 private:
  /// An object that begins at `start`; `low` is the low half of its marker.
  struct Object {
    Marker marker;
    unsigned low;
    std::uint64_t contents;  // the offset behind the marker
  };

  bool findTables(Bytes data) {
    constexpr std::size_t headerSize = propertyListSignature.size();
    if (data.size() < headerSize + trailer::size) return false;
    const ByteReader end(data.last(trailer::size));
    offsetSize_ = end.at<std::uint8_t>(trailer::offsetSize);
    referenceSize_ = end.at<std::uint8_t>(trailer::referenceSize);
    const auto count = end.at<std::uint64_t>(trailer::objectCount);
    const auto table = end.at<std::uint64_t>(trailer::tableOffset);
    topObject_ = end.at<std::uint64_t>(trailer::topObject);

    const std::size_t endOfTable = data.size() - trailer::size;
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) {
      return false;
    }
    if (table < headerSize || table > endOfTable || count > (endOfTable - table) / offsetSize_) {
      return false;
    }
    objects_ = ByteReader(data.first(table));
    offsets_ = ByteReader(data.subspan(table, count * offsetSize_));
    isOpen_.resize(count);
    return true;
  }

  std::optional<ByteReader> bytesAt(std::uint64_t offset, std::uint64_t count) const {
    if (!objects_.holds(offset, count)) return std::nullopt;
    return ByteReader(objects_.part(offset, count));
  }

  std::optional<Object> objectAt(std::uint64_t offset) const {
    if (offset < propertyListSignature.size() || offset >= objects_.size()) return std::nullopt;
    const unsigned marker = objects_.at<std::uint8_t>(offset);
    return Object{static_cast<Marker>(marker & 0xF0), marker & 0x0F, offset + 1};
  }

  std::optional<Object> object(std::uint64_t number) const {
    if (number >= isOpen_.size()) return std::nullopt;
    return objectAt(offsets_.number(number * offsetSize_, offsetSize_));
  }

  /// The bytes of an object with a length, each element of `elementSize` bytes.
  std::optional<ByteReader> elements(const Object& object, std::size_t elementSize) const {
    std::uint64_t count = object.low;
    std::uint64_t start = object.contents;
    if (object.low == lengthFollows) {
      const std::optional<Object> length = objectAt(start);
      if (!length || length->marker != Marker::integer || length->low > 3) return std::nullopt;
      const std::size_t size = std::size_t{1} << length->low;
      if (!objects_.holds(length->contents, size)) return std::nullopt;
      count = objects_.number(length->contents, size);
      start = length->contents + size;
    }
    if (count > objects_.size() / elementSize) return std::nullopt;
    return bytesAt(start, count * elementSize);
  }

  std::optional<Value> readObject(std::uint64_t number) {
    const std::optional<Object> object = this->object(number);
    if (!object || depth_ == 0) return std::nullopt;
    switch (object->marker) {
      case Marker::simple:
        if (object->low == nullMarker) return Value();
        if (object->low == falseMarker) return Value(false);
        if (object->low == trueMarker) return Value(true);
        return std::nullopt;
      case Marker::integer:
        return readInteger(*object);
      case Marker::real:
        return readReal(*object);
      case Marker::date:
        return readDate(*object);
      case Marker::data:
        return readData(*object);
      case Marker::ascii:
      case Marker::utf16:
        if (std::optional<std::string> text = readText(*object)) return Value(*std::move(text));
        return std::nullopt;
      case Marker::uid:
        return readUID(*object);
      case Marker::array:
      case Marker::dictionary:
        return readContainer(*object, number);
    }
    return std::nullopt;
  }

  std::optional<Value> readInteger(const Object& object) const {
    if (object.low > 4) return std::nullopt;
    const std::optional<ByteReader> bytes = bytesAt(object.contents, std::size_t{1} << object.low);
    if (!bytes) return std::nullopt;
    if (bytes->size() <= 8) {
      return Value(static_cast<std::int64_t>(bytes->number(0, bytes->size())));
    }
    const auto high = bytes->at<std::uint64_t>(0);
    const auto low = bytes->at<std::uint64_t>(8);
    const auto asSigned = static_cast<std::int64_t>(low);
    if (high == 0) return asSigned < 0 ? Value(low) : Value(asSigned);
    // The sign of a negative number goes on through the higher bytes.
    if (high + 1 == 0 && asSigned < 0) return Value(asSigned);
    return std::nullopt;
  }

  std::optional<Value> readReal(const Object& object) const {
    if (object.low != 2 && object.low != 3) return std::nullopt;
    const std::optional<ByteReader> bytes = bytesAt(object.contents, std::size_t{1} << object.low);
    if (!bytes) return std::nullopt;
    return object.low == 2 ? Value(bytes->at<float>(0)) : Value(bytes->at<double>(0));
  }

  std::optional<Value> readDate(const Object& object) const {
    if (object.low != 3 || !objects_.holds(object.contents, 8)) return std::nullopt;
    const auto date = dateWithSecondsSinceReferenceDate(objects_.at<double>(object.contents));
    return date ? std::optional<Value>(*date) : std::nullopt;
  }

  std::optional<Value> readData(const Object& object) {
    const std::optional<ByteReader> bytes = elements(object, 1);
    if (!bytes || !budget_.spendBytes(bytes->size())) return std::nullopt;
    return Value(Data(bytes->bytes()));
  }

  std::optional<std::string> readText(const Object& object) {
    const bool isASCII = object.marker == Marker::ascii;
    std::optional<ByteReader> bytes = elements(object, isASCII ? 1 : 2);
    if (!bytes || !budget_.spendBytes(bytes->size())) return std::nullopt;
    if (isASCII) {
      std::byte allBits{};
      for (const std::byte byte : bytes->bytes()) allBits |= byte;
      if (std::to_integer<unsigned>(allBits) > 0x7F) return std::nullopt;
      return std::string(asText(bytes->bytes()));
    }
    std::u16string units(bytes->size() / 2, u'\0');
    for (char16_t& unit : units) unit = bytes->take<char16_t>();
    return utf8::fromUtf16(units);
  }

  std::optional<Value> readUID(const Object& object) const {
    const std::size_t size = object.low + 1;
    if (size > 8 || !objects_.holds(object.contents, size)) return std::nullopt;
    return Value(std::make_shared<PropertyListUID>(objects_.number(object.contents, size)));
  }

  std::optional<Value> readContainer(const Object& object, std::uint64_t number) {
    if (isOpen_[number]) return std::nullopt;  // it reaches itself
    isOpen_[number] = true;
    --depth_;
    std::optional<Value> value =
        object.marker == Marker::array ? readArray(object) : readDictionary(object);
    ++depth_;
    isOpen_[number] = false;
    return value;
  }

  std::uint64_t reference(const ByteReader& references, std::size_t index) const {
    return references.number(index * referenceSize_, referenceSize_);
  }

  std::optional<Value> readArray(const Object& object) {
    const std::optional<ByteReader> references = elements(object, referenceSize_);
    if (!references) return std::nullopt;
    const std::size_t count = references->size() / referenceSize_;
    if (!budget_.spendValues(count)) return std::nullopt;  // before they are given memory
    Array array;
    array.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      std::optional<Value> element = readObject(reference(*references, i));
      if (!element) return std::nullopt;
      array.push_back(*std::move(element));
    }
    return Value(std::move(array));
  }

  std::optional<Value> readDictionary(const Object& object) {
    const std::optional<ByteReader> references = elements(object, 2 * referenceSize_);
    if (!references) return std::nullopt;
    const std::size_t count = references->size() / (2 * referenceSize_);
    if (!budget_.spendValues(2 * count)) return std::nullopt;
    Dictionary dictionary;
    dictionary.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      const std::optional<Object> keyObject = this->object(reference(*references, i));
      if (!keyObject ||
          (keyObject->marker != Marker::ascii && keyObject->marker != Marker::utf16)) {
        return std::nullopt;
      }
      std::optional<std::string> key = readText(*keyObject);
      if (!key) return std::nullopt;
      std::optional<Value> value = readObject(reference(*references, count + i));
      if (!value) return std::nullopt;
      dictionary.append(*std::move(key), *std::move(value));
    }
    if (hasEqualKeys(dictionary)) return std::nullopt;
    return Value(std::move(dictionary));
  }

  ByteReader objects_;  // from the signature to the table
  ByteReader offsets_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::uint64_t topObject_ = 0;
  std::vector<bool> isOpen_;  // whether the object is being read
  std::size_t depth_;         // how much deeper values may nest
  ExpansionBudget& budget_;
  bool isWhole_ = false;
};

}  // namespace

std::optional<Value> detail::readBinaryPropertyList(Bytes data, std::size_t depth,
                                                    ExpansionBudget& budget) {
  return Reader(data, depth, budget).readTop();
}

bool detail::isBinaryPropertyList(Bytes data) {
  return asText(data).starts_with(propertyListSignature);
}

}  // namespace FrameworkUtility
