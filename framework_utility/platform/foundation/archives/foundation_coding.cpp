#include <framework_utility/platform/foundation/archives/coding_registry.h>

#include <framework_utility/platform/foundation/archives/coder_failure.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/archives/set.h>
#include <framework_utility/platform/foundation/archives/uuid.h>
#include <framework_utility/platform/foundation/values/equal_keys.h>
#include <framework_utility/platform/foundation/values/reference_date.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

// The keys of the platform's own classes.
constexpr std::string_view objectsKey = "NS.objects";
constexpr std::string_view keysKey = "NS.keys";
constexpr std::string_view timeKey = "NS.time";
constexpr std::string_view stringKey = "NS.string";
constexpr std::string_view dataKey = "NS.data";
constexpr std::string_view baseKey = "NS.base";
constexpr std::string_view relativeKey = "NS.relative";
constexpr std::string_view uuidKey = "NS.uuidbytes";

bool always() { return true; }

std::nullopt_t corrupt(NSKeyedUnarchiver& coder, std::string_view reason) {
  coder.failWithError(coderError(CoderError::readCorrupt, reason));
  return std::nullopt;
}

std::optional<Value> decodeArray(NSKeyedUnarchiver& coder) {
  std::optional<Array> elements = coder.decodeObjectsForKey(objectsKey);
  return elements ? std::optional<Value>(*std::move(elements)) : std::nullopt;
}

std::optional<Key> keyFrom(const Value& value) {
  if (const auto* text = value.as<std::string>()) return Key(*text);
  if (const auto* number = value.as<Number>()) return Key(*number);
  return std::nullopt;
}

std::optional<Value> decodeDictionary(NSKeyedUnarchiver& coder) {
  const std::optional<Array> keys = coder.decodeObjectsForKey(keysKey);
  std::optional<Array> values = coder.decodeObjectsForKey(objectsKey);
  if (!keys || !values) return std::nullopt;
  if (keys->size() != values->size()) {
    return corrupt(coder, "a dictionary has more keys than values, or fewer");
  }
  Dictionary dictionary;
  dictionary.reserve(keys->size());
  for (std::size_t i = 0; i < keys->size(); ++i) {
    std::optional<Key> key = keyFrom((*keys)[i]);
    if (!key) return corrupt(coder, "a key of a dictionary is neither text nor number");
    dictionary.append(*std::move(key), std::move((*values)[i]));
  }
  if (hasEqualKeys(dictionary)) return corrupt(coder, "two keys of a dictionary are equal");
  return Value(std::move(dictionary));
}

std::optional<Value> decodeDate(NSKeyedUnarchiver& coder) {
  const auto date = dateWithSecondsSinceReferenceDate(coder.decodeDoubleForKey(timeKey));
  if (!date) return corrupt(coder, "a date is out of range");
  return Value(*date);
}

std::optional<Value> decodeURL(NSKeyedUnarchiver& coder) {
  const std::optional<Value> base = coder.decodeObjectOfClasses({"NSURL"}, baseKey);
  const std::optional<Value> relative = coder.decodeObjectOfClasses({"NSString"}, relativeKey);
  const auto* from = base ? base->as<URL>() : nullptr;
  const auto* text = relative ? relative->as<std::string>() : nullptr;
  if (!text || (base && !from)) return corrupt(coder, "a URL has no text");
  std::optional<URL> url = from ? URL::withString(*text, *from) : URL::withString(*text);
  if (!url) return corrupt(coder, "a URL is no address");
  return Value(*std::move(url));
}

std::optional<Value> decodeNull(NSKeyedUnarchiver&) { return Value(); }

// Texts and data that could be changed are objects of their own, with their contents inline; some
// writers refer to these instead.

std::optional<Value> decodeString(NSKeyedUnarchiver& coder) {
  std::optional<Value> text = coder.decodeInlineValueForKey(stringKey);
  if (!text) text = coder.decodeObjectOfClasses({"NSString"}, stringKey);
  if (!text || !text->as<std::string>()) return corrupt(coder, "a text has no characters");
  return text;
}

std::optional<Value> decodeData(NSKeyedUnarchiver& coder) {
  std::optional<Value> data = coder.decodeInlineValueForKey(dataKey);
  if (!data) data = coder.decodeObjectOfClasses({"NSData"}, dataKey);
  if (!data || !data->as<Data>()) return corrupt(coder, "data has no bytes");
  return data;
}

std::optional<Value> decodeSet(NSKeyedUnarchiver& coder) {
  std::optional<Array> objects = coder.decodeObjectsForKey(objectsKey);
  if (!objects) return std::nullopt;
  return Value(std::make_shared<NSSet>(*std::move(objects)));
}

std::optional<Value> decodeUUID(NSKeyedUnarchiver& coder) {
  const std::optional<Data> data = coder.decodeBytesForKey(uuidKey);
  NSUUID::Bytes bytes;
  if (!data || data->size() != bytes.size()) return corrupt(coder, "a UUID has not 16 bytes");
  std::copy(data->begin(), data->end(), bytes.begin());
  return Value(std::make_shared<NSUUID>(bytes));
}

/// Numbers stand in archives without a class; only lists of classes name it.
std::optional<Value> decodeNumber(NSKeyedUnarchiver& coder) {
  return corrupt(coder, "a number with a class is not read");
}

/// The classes of values, which come first.
enum FoundationClass : std::size_t {
  array,
  data,
  date,
  dictionary,
  null,
  number,
  string,
  url,
};

const std::array<CodingClass, 15>& table() {
  static const std::array<CodingClass, 15> classes{{
      {"NSArray", {}, decodeArray, always},
      {"NSData", {}, decodeData, always},
      {"NSDate", {}, decodeDate, always},
      {"NSDictionary", {}, decodeDictionary, always},
      {"NSNull", {}, decodeNull, always},
      {"NSNumber", {"NSValue"}, decodeNumber, always},
      {"NSString", {}, decodeString, always},
      {"NSURL", {}, decodeURL, always},
      {"NSMutableArray", {"NSArray"}, decodeArray, always},
      {"NSMutableData", {"NSData"}, decodeData, always},
      {"NSMutableDictionary", {"NSDictionary"}, decodeDictionary, always},
      {"NSMutableSet", {"NSSet"}, decodeSet, always},
      {"NSMutableString", {"NSString"}, decodeString, always},
      {"NSSet", {}, decodeSet, always},
      {"NSUUID", {}, decodeUUID, always},
  }};
  return classes;
}

void encodeElements(const Array& elements, NSKeyedArchiver& coder) {
  std::vector<const Value*> objects;
  objects.reserve(elements.size());
  for (const Value& element : elements) objects.push_back(&element);
  coder.encodeObjects(objects, objectsKey);
}

void encodeEntries(const Dictionary& entries, NSKeyedArchiver& coder) {
  Array keys;
  std::vector<const Value*> keyObjects, valueObjects;
  keys.reserve(entries.size());  // or the pointers would not stay good
  for (const auto& [key, value] : entries) {
    keys.push_back(key.text() ? Value(*key.text()) : Value(*key.number()));
    keyObjects.push_back(&keys.back());
    valueObjects.push_back(&value);
  }
  coder.encodeObjects(keyObjects, keysKey);
  coder.encodeObjects(valueObjects, objectsKey);
}

}  // namespace

std::span<const CodingClass> foundationClasses() { return table(); }

const CodingClass& foundationClassOf(const Value& value) {
  const FoundationClass index = value.as<Array>()         ? array
                                : value.as<Data>()        ? data
                                : value.as<Date>()        ? date
                                : value.as<Dictionary>()  ? dictionary
                                : value.as<Number>()      ? number
                                : value.as<std::string>() ? string
                                : value.as<URL>()         ? url
                                                          : null;
  return table()[index];
}

void encodeFoundationValue(const Value& value, NSKeyedArchiver& coder) {
  if (const auto* elements = value.as<Array>()) {
    encodeElements(*elements, coder);
  } else if (const auto* entries = value.as<Dictionary>()) {
    encodeEntries(*entries, coder);
  } else if (const auto* moment = value.as<Date>()) {
    if (const std::optional<double> seconds = secondsSinceReferenceDate(*moment)) {
      coder.encodeDouble(*seconds, timeKey);
    } else {
      coder.failWithError(coderError(CoderError::invalidValue, "a date is out of range"));
    }
  } else if (const auto* address = value.as<URL>()) {
    coder.encodeObject(std::nullopt, baseKey);
    coder.encodeObject(Value(address->absoluteString()), relativeKey);
  }
}

}  // namespace FrameworkUtility::detail

namespace FrameworkUtility {

std::string_view NSSet::className() const { return "NSSet"; }
void NSSet::encodeWithCoder(NSKeyedArchiver& coder) const {
  detail::encodeElements(objects_, coder);
}

std::string_view NSUUID::className() const { return "NSUUID"; }
void NSUUID::encodeWithCoder(NSKeyedArchiver& coder) const {
  coder.encodeBytes(bytes_, detail::uuidKey);
}

}  // namespace FrameworkUtility
