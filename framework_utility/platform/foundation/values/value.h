#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/date.h>
#include <framework_utility/platform/foundation/values/description.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/url.h>

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace FrameworkUtility {

class NSObject;
class Value;

/// Write a list inside a list as `Array{Value(Array{1, 2})}`.
using Array = std::vector<Value>;

class Dictionary;

/// What a value can hold.
template <class T>
concept Held = std::same_as<T, Number> || std::same_as<T, std::string> || std::same_as<T, Data> ||
    std::same_as<T, Date> || std::same_as<T, URL> || std::same_as<T, Error> ||
    std::same_as<T, Array> || std::same_as<T, Dictionary> ||
    std::same_as<T, std::shared_ptr<NSObject>>;

class Key;

/// A key to look for: text or number, seen and not kept. Nothing is allocated for it.
class KeyView {
 public:
  KeyView(const char* text) : key_(std::string_view(text)) {}
  KeyView(std::string_view text) : key_(text) {}
  KeyView(const std::string& text) : key_(std::string_view(text)) {}
  KeyView(Number number) : key_(number) {}
  KeyView(Numeric auto number) : key_(Number(number)) {}
  KeyView(const Key& key);
  KeyView(std::nullptr_t) = delete;

  const std::string_view* text() const { return std::get_if<std::string_view>(&key_); }
  const Number* number() const { return std::get_if<Number>(&key_); }

  /// By value: 17 and "17" are two keys, 17 and 17.0 are one.
  friend bool operator==(const KeyView& a, const KeyView& b);

 private:
  std::variant<std::string_view, Number> key_;
};

/// A dictionary's key: text or number. 17 and "17" are two keys, 17 and 17.0 are one.
class Key {
 public:
  Key(const char* text) : key_(std::string(text)) {}
  Key(std::string_view text) : key_(std::string(text)) {}
  Key(std::string text) : key_(std::move(text)) {}
  Key(Number number) : key_(number) {}
  Key(Numeric auto number) : key_(Number(number)) {}
  Key(std::nullptr_t) = delete;

  /// Refers to `text`, which must live as long as the process: a constant. Costs no allocation,
  /// however long the text is.
  static Key withConstant(std::string_view text) { return Key(Constant{text}); }

  std::optional<std::string_view> text() const;  ///< Absent for a number.
  const Number* number() const { return std::get_if<Number>(&key_); }

  friend bool operator==(const KeyView& a, const KeyView& b);

 private:
  struct Constant {
    std::string_view text;
  };
  explicit Key(Constant constant) : key_(constant) {}

  std::variant<Constant, std::string, Number> key_;
};

/// Keys and values in the order in which the keys were first set.
///
///     Dictionary properties{{"Orientation", 6}, {"{TIFF}", Dictionary{{"Software", "Pelvar"}}}};
///     if (const Dictionary* tiff = properties.get<Dictionary>("{TIFF}")) ...
///
/// A key is found by looking at one entry after the other, which is fastest for the dozens of
/// entries that properties have. A copy is deep. A pointer into a dictionary is good until the
/// dictionary changes.
///
/// Copying, comparing and destroying go into dictionaries and arrays that are nested. Readers of
/// files and archives nest them at most 64 deep; an app that nests its own must stay below some
/// thousand.
class Dictionary {
 public:
  struct Entry;

  Dictionary();
  Dictionary(std::initializer_list<Entry> entries);  ///< Of two equal keys the last value wins.
  // Written out, for `Entry` holds values and values hold dictionaries.
  Dictionary(const Dictionary&);
  Dictionary(Dictionary&&) noexcept;
  Dictionary& operator=(const Dictionary&);
  Dictionary& operator=(Dictionary&&) noexcept;
  ~Dictionary();

  std::size_t size() const;
  bool empty() const;
  const Entry* begin() const;
  const Entry* end() const;

  const Value* find(const KeyView& key) const;  ///< Null when the key is missing.
  Value* find(const KeyView& key);
  /// The value of this type; null when the key is missing or holds another type.
  template <Held T>
  const T* get(const KeyView& key) const;

  void set(Key key, Value value);
  /// `set` without a search, for a key that is known to be missing. The value is made in its place.
  template <class T>
  requires std::constructible_from<Value, T> Value& append(Key key, T&& value);
  bool remove(const KeyView& key);  ///< Whether it was there.
  /// The dictionary under `key`, put there empty when it is missing or something else.
  Dictionary& subdictionary(Key key);
  void reserve(std::size_t entries);

  friend bool operator==(const Dictionary& a, const Dictionary& b);  ///< In any order.

 private:
  std::vector<Entry> entries_;
};

/// What a property, an archive or a user default holds. It converts from each of its types and from
/// no other: not from a pointer, an optional or an enumeration.
///
/// Thread: any; a value that one thread changes no other may use at that time.
class Value {
 public:
  Value() = default;  ///< The null value, which is not the absence of a value.
  Value(Number number) : value_(number) {}
  Value(Numeric auto number) : value_(Number(number)) {}
  Value(const char* text) : value_(std::string(text)) {}
  Value(std::string_view text) : value_(std::string(text)) {}
  Value(std::string text) : value_(std::move(text)) {}
  Value(Data data) : value_(std::move(data)) {}
  Value(Date date) : value_(date) {}
  Value(URL url) : value_(std::move(url)) {}
  Value(Error error) : value_(std::move(error)) {}
  Value(Dictionary dictionary);
  Value(std::shared_ptr<NSObject> object);  ///< A null pointer gives the null value.
  explicit Value(Array array);  ///< Explicit, or compilers differ on `Array{Array{1, 2}}`.
  Value(std::nullptr_t) = delete;

  bool isNull() const { return std::holds_alternative<std::monostate>(value_); }

  /// The value of this type, null when it is of another.
  template <Held T>
  const T* as() const {
    return std::get_if<T>(&value_);
  }
  template <Held T>
  T* as() {
    return std::get_if<T>(&value_);
  }

  std::string description() const;  ///< One line; texts inside lists and dictionaries in quotes.
  /// By value, but objects by identity.
  friend bool operator==(const Value& a, const Value& b);

 private:
  std::variant<std::monostate, Number, std::string, Data, Date, URL, Error, Array, Dictionary,
               std::shared_ptr<NSObject>>
      value_;
};

struct Dictionary::Entry {
  Entry(Key k, Value v) : key(std::move(k)), value(std::move(v)) {}
  template <class T>
  requires std::constructible_from<Value, T> Entry(Key k, T&& v)
      : key(std::move(k)), value(std::forward<T>(v)) {}

  Key key;
  Value value;
};

// Implementation details

inline std::optional<std::string_view> Key::text() const {
  if (const auto* constant = std::get_if<Constant>(&key_)) return constant->text;
  if (const auto* text = std::get_if<std::string>(&key_)) return *text;
  return std::nullopt;
}

inline KeyView::KeyView(const Key& key) : key_(std::string_view()) {
  if (const std::optional<std::string_view> text = key.text()) {
    key_ = *text;
  } else {
    key_ = *key.number();
  }
}

inline bool operator==(const KeyView& a, const KeyView& b) { return a.key_ == b.key_; }

template <class T>
requires std::constructible_from<Value, T> Value& Dictionary::append(Key key, T&& value) {
  return entries_.emplace_back(std::move(key), std::forward<T>(value)).value;
}

template <Held T>
const T* Dictionary::get(const KeyView& key) const {
  const Value* value = find(key);
  return value ? value->as<T>() : nullptr;
}

}  // namespace FrameworkUtility
