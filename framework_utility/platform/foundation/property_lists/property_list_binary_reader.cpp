#include <framework_utility/platform/foundation/property_lists/property_list_readers.h>

#include <framework_utility/platform/foundation/property_lists/property_list_format.h>
#include <framework_utility/platform/foundation/values/equal_keys.h>
#include <framework_utility/platform/foundation/values/reference_date.h>
#include <framework_utility/platform/foundation/values/utf8.h>

#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace detail;
using Bytes = std::span<const std::byte>;

/// At most 8 bytes.
std::uint64_t bigEndian(Bytes bytes) {
  if (bytes.size() == 1) return std::to_integer<std::uint64_t>(bytes[0]);  // most references
  std::uint64_t value = 0;
  for (const std::byte byte : bytes) value = value << 8 | std::to_integer<std::uint64_t>(byte);
  return value;
}

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
    std::size_t contents;  // the offset behind the marker
  };

  bool findTables(Bytes data) {
    constexpr std::size_t headerSize = sizeof propertyListSignature;
    if (data.size() < headerSize + trailer::size) return false;
    const Bytes end = data.last(trailer::size);
    offsetSize_ = std::to_integer<std::size_t>(end[trailer::offsetSize]);
    referenceSize_ = std::to_integer<std::size_t>(end[trailer::referenceSize]);
    const std::uint64_t count = bigEndian(end.subspan(trailer::objectCount, 8));
    const std::uint64_t table = bigEndian(end.subspan(trailer::tableOffset, 8));
    topObject_ = bigEndian(end.subspan(trailer::topObject, 8));

    const std::size_t endOfTable = data.size() - trailer::size;
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) {
      return false;
    }
    if (table < headerSize || table > endOfTable || count > (endOfTable - table) / offsetSize_) {
      return false;
    }
    objects_ = data.first(table);
    offsets_ = data.subspan(table, count * offsetSize_);
    isOpen_.resize(count);
    return true;
  }

  std::optional<Bytes> bytesAt(std::size_t offset, std::size_t count) const {
    if (offset > objects_.size() || count > objects_.size() - offset) return std::nullopt;
    return objects_.subspan(offset, count);
  }

  std::optional<Object> objectAt(std::size_t offset) const {
    if (offset < sizeof propertyListSignature || offset >= objects_.size()) return std::nullopt;
    const auto marker = std::to_integer<unsigned>(objects_[offset]);
    return Object{static_cast<Marker>(marker & 0xF0), marker & 0x0F, offset + 1};
  }

  std::optional<Object> object(std::uint64_t number) const {
    if (number >= isOpen_.size()) return std::nullopt;
    const std::uint64_t offset = bigEndian(offsets_.subspan(number * offsetSize_, offsetSize_));
    if (offset > objects_.size()) return std::nullopt;
    return objectAt(static_cast<std::size_t>(offset));
  }

  /// The bytes of an object with a length, each element of `elementSize` bytes.
  std::optional<Bytes> elements(const Object& object, std::size_t elementSize) const {
    std::uint64_t count = object.low;
    std::size_t start = object.contents;
    if (object.low == lengthFollows) {
      const std::optional<Object> length = objectAt(start);
      if (!length || length->marker != Marker::integer || length->low > 3) return std::nullopt;
      const std::optional<Bytes> bytes = bytesAt(length->contents, std::size_t{1} << length->low);
      if (!bytes) return std::nullopt;
      count = bigEndian(*bytes);
      start = length->contents + bytes->size();
    }
    if (count > objects_.size() / elementSize) return std::nullopt;
    return bytesAt(start, static_cast<std::size_t>(count) * elementSize);
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
    const std::optional<Bytes> bytes = bytesAt(object.contents, std::size_t{1} << object.low);
    if (!bytes) return std::nullopt;
    if (bytes->size() <= 8) return Value(static_cast<std::int64_t>(bigEndian(*bytes)));
    const std::uint64_t high = bigEndian(bytes->first(8));
    const std::uint64_t low = bigEndian(bytes->last(8));
    const auto asSigned = static_cast<std::int64_t>(low);
    if (high == 0) return asSigned < 0 ? Value(low) : Value(asSigned);
    // The sign of a negative number goes on through the higher bytes.
    if (high + 1 == 0 && asSigned < 0) return Value(asSigned);
    return std::nullopt;
  }

  std::optional<Value> readReal(const Object& object) const {
    if (object.low != 2 && object.low != 3) return std::nullopt;
    const std::optional<Bytes> bytes = bytesAt(object.contents, std::size_t{1} << object.low);
    if (!bytes) return std::nullopt;
    const std::uint64_t bits = bigEndian(*bytes);
    if (object.low == 2) return Value(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    return Value(std::bit_cast<double>(bits));
  }

  std::optional<Value> readDate(const Object& object) const {
    const std::optional<Bytes> bytes = bytesAt(object.contents, 8);
    if (!bytes || object.low != 3) return std::nullopt;
    const auto date = dateWithSecondsSinceReferenceDate(std::bit_cast<double>(bigEndian(*bytes)));
    return date ? std::optional<Value>(*date) : std::nullopt;
  }

  std::optional<Value> readData(const Object& object) {
    const std::optional<Bytes> bytes = elements(object, 1);
    if (!bytes || !budget_.spendBytes(bytes->size())) return std::nullopt;
    return Value(Data(*bytes));
  }

  std::optional<std::string> readText(const Object& object) {
    const bool isASCII = object.marker == Marker::ascii;
    const std::optional<Bytes> bytes = elements(object, isASCII ? 1 : 2);
    if (!bytes || !budget_.spendBytes(bytes->size())) return std::nullopt;
    if (isASCII) {
      std::byte allBits{};
      for (const std::byte byte : *bytes) allBits |= byte;
      if (std::to_integer<unsigned>(allBits) > 0x7F) return std::nullopt;
      return std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    }
    std::u16string units(bytes->size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
      units[i] = static_cast<char16_t>(bigEndian(bytes->subspan(2 * i, 2)));
    }
    return utf8::fromUtf16(units);
  }

  std::optional<Value> readUID(const Object& object) const {
    const std::optional<Bytes> bytes = bytesAt(object.contents, object.low + 1);
    if (!bytes || bytes->size() > 8) return std::nullopt;
    return Value(std::make_shared<PropertyListUID>(bigEndian(*bytes)));
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

  std::uint64_t reference(Bytes references, std::size_t index) const {
    return bigEndian(references.subspan(index * referenceSize_, referenceSize_));
  }

  std::optional<Value> readArray(const Object& object) {
    const std::optional<Bytes> references = elements(object, referenceSize_);
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
    const std::optional<Bytes> references = elements(object, 2 * referenceSize_);
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

  Bytes objects_;  // from the signature to the table
  Bytes offsets_;
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
  constexpr std::size_t size = sizeof propertyListSignature;
  const auto isSame = [](std::byte a, char b) { return a == static_cast<std::byte>(b); };
  return data.size() >= size &&
         std::equal(data.begin(), data.begin() + size, propertyListSignature, isSame);
}

}  // namespace FrameworkUtility
