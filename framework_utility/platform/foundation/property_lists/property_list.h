#pragma once

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace FrameworkUtility {

// Values as bytes, in the platform's property lists: binary ones ("bplist00") are read and written,
// those in XML read. A list holds numbers, texts, data, dates, arrays and dictionaries with texts
// as keys; a number keeps its kind, and in a binary list one made from a `float` its four bytes.
// Archives are property lists too: they refer to their objects by `PropertyListUID`.

struct PropertyListError {
  static constexpr std::string_view domain = NSCocoaErrorDomain;
  /// The bytes are no property list, or one past the limits.
  static constexpr ErrorCode readCorrupt{
      domain, 3840, "The data couldn’t be read because it isn’t in the correct format."};
  /// The value is, or holds, one that no property list can hold.
  static constexpr ErrorCode writeInvalid{
      domain, 3851, "The data couldn’t be written because it isn’t in the correct format."};
};

/// The number of an object in an archive, as a value of a property list.
class PropertyListUID final : public NSObject {
 public:
  explicit PropertyListUID(std::uint64_t number) : number_(number) {}

  std::uint64_t number() const { return number_; }
  std::string_view className() const override { return "__NSCFKeyedArchiverUID"; }

  /// The number that `value` holds; absent when it holds something else.
  static std::optional<std::uint64_t> numberIn(const Value& value);

 private:
  std::uint64_t number_;
};

/// What a reader accepts. A binary list can refer to one of its objects many times, so that a few
/// bytes stand for more values than any memory holds.
struct PropertyListLimits {
  /// How deep values may nest: a text or number on its own is at 1. Never more than 512, which a
  /// thread's stack is sure to hold.
  std::size_t depth = 64;
  /// How many times the size of the data all values may count together, above a free 64 KB. A value
  /// counts 8, a byte of text or data 1.
  std::size_t expansion = 16;
  /// How many values there may be, keys among them.
  std::size_t values = 10'000'000;
};

/// The value in the bytes of a property list, binary or XML. Fails with `readCorrupt`; what was
/// read before is dropped. Two equal keys in one dictionary are corrupt. An unpaired surrogate in a
/// text becomes U+FFFD. Time and memory are proportional to the size of the data.
///
/// Of XML, a DOCTYPE may name the property lists' own; one that declares anything is corrupt, and
/// nothing outside of the data is read. A dictionary whose one key is "CF$UID" is a
/// `PropertyListUID`. Integers may be hexadecimal, and lie in -2^63 ... 2^64 - 1.
///
/// Thread: any. Selector: propertyListWithData:options:format:error:
[[nodiscard]] std::optional<Value> propertyListWithData(std::span<const std::byte> data,
                                                        const PropertyListLimits& limits = {},
                                                        Error* error = nullptr);

/// The bytes of a binary property list, equal texts written once. Fails with `writeInvalid` for a
/// null value, a URL, an error, an object other than `PropertyListUID`, a key that is a number, a
/// text that is not UTF-8, a date some 291,000 years away, and values that nest more than 64 deep.
/// Thread: any.
/// Selector: dataWithPropertyList:format:options:error:
[[nodiscard]] std::optional<Data> dataWithPropertyList(const Value& value, Error* error = nullptr);

}  // namespace FrameworkUtility
