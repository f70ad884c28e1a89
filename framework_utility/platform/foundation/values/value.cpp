#include <framework_utility/platform/foundation/values/value.h>

#include <framework_utility/platform/foundation/values/object.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace FrameworkUtility {

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary&) = default;
Dictionary::Dictionary(Dictionary&&) noexcept = default;
Dictionary& Dictionary::operator=(const Dictionary&) = default;
Dictionary& Dictionary::operator=(Dictionary&&) noexcept = default;
Dictionary::~Dictionary() = default;

Dictionary::Dictionary(std::initializer_list<Entry> entries) {
  entries_.reserve(entries.size());
  for (const Entry& entry : entries) set(entry.key, entry.value);
}

std::size_t Dictionary::size() const { return entries_.size(); }
bool Dictionary::empty() const { return entries_.empty(); }
const Dictionary::Entry* Dictionary::begin() const { return entries_.data(); }
const Dictionary::Entry* Dictionary::end() const { return entries_.data() + entries_.size(); }
void Dictionary::reserve(std::size_t entries) { entries_.reserve(entries); }

const Value* Dictionary::find(const KeyView& key) const {
  if (const std::string_view* text = key.text()) {
    for (const Entry& entry : entries_) {
      if (entry.key.text() == *text) return &entry.value;
    }
  } else {
    for (const Entry& entry : entries_) {
      if (entry.key == key) return &entry.value;
    }
  }
  return nullptr;
}

Value* Dictionary::find(const KeyView& key) {
  return const_cast<Value*>(std::as_const(*this).find(key));
}

void Dictionary::set(Key key, Value value) {
  if (Value* present = find(key)) {
    *present = std::move(value);
  } else {
    append(std::move(key), std::move(value));
  }
}

bool Dictionary::remove(const KeyView& key) {
  return std::erase_if(entries_, [&](const Entry& entry) { return entry.key == key; }) > 0;
}

Dictionary& Dictionary::subdictionary(Key key) {
  Value* value = find(key);
  if (!value) return *append(std::move(key), Dictionary()).as<Dictionary>();
  if (!value->as<Dictionary>()) *value = Dictionary();
  return *value->as<Dictionary>();
}

bool operator==(const Dictionary& a, const Dictionary& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.entries_.size(); ++i) {
    // Most often both were filled in the same order.
    const auto& [key, value] = a.entries_[i];
    const Value* other = b.entries_[i].key == key ? &b.entries_[i].value : b.find(key);
    if (!other || !(value == *other)) return false;
  }
  return true;
}

Value::Value(Dictionary dictionary) : value_(std::move(dictionary)) {}
Value::Value(Array array) : value_(std::move(array)) {}
Value::Value(std::shared_ptr<NSObject> object) {
  if (object) value_ = std::move(object);
}

bool operator==(const Value& a, const Value& b) { return a.value_ == b.value_; }

namespace {

/// "2024-05-17 09:30:00 +0000", as the platform prints dates.
std::string textOf(Date date) {
  using namespace std::chrono;
  const auto day = floor<days>(date);
  // The calendar of the standard library has years of 16 bits.
  constexpr days limit{32'000 * 365};
  if (day.time_since_epoch() > limit || day.time_since_epoch() < -limit) {
    return std::to_string(floor<seconds>(date).time_since_epoch().count()) + " seconds since 1970";
  }
  const year_month_day calendar(day);
  const hh_mm_ss time(floor<seconds>(date - day));
  char text[48];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d +0000", int(calendar.year()),
                unsigned(calendar.month()), unsigned(calendar.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

void append(std::string& out, const Value& value, bool nested);

void append(std::string& out, const Array& array) {
  out += '[';
  const char* separator = "";
  for (const Value& element : array) {
    out += std::exchange(separator, ", ");
    append(out, element, true);
  }
  out += ']';
}

void append(std::string& out, const Dictionary& dictionary) {
  out += '{';
  const char* separator = "";
  for (const auto& [key, value] : dictionary) {
    out += std::exchange(separator, ", ");
    if (const auto text = key.text()) {
      out += *text;
    } else {
      out += key.number()->description();
    }
    out += " = ";
    append(out, value, true);
  }
  out += '}';
}

void append(std::string& out, const Value& value, bool nested) {
  if (const auto* number = value.as<Number>()) {
    out += number->description();
  } else if (const auto* text = value.as<std::string>()) {
    if (nested) out += '"';
    out += *text;
    if (nested) out += '"';
  } else if (const auto* data = value.as<Data>()) {
    out += '<' + std::to_string(data->size()) + " bytes>";
  } else if (const auto* date = value.as<Date>()) {
    out += textOf(*date);
  } else if (const auto* url = value.as<URL>()) {
    out += url->description();
  } else if (const auto* error = value.as<Error>()) {
    out += error->description();
  } else if (const auto* array = value.as<Array>()) {
    append(out, *array);
  } else if (const auto* dictionary = value.as<Dictionary>()) {
    append(out, *dictionary);
  } else if (const auto* object = value.as<std::shared_ptr<NSObject>>()) {
    (out += '<') += (*object)->className();
    out += '>';
  } else {
    out += "null";
  }
}

}  // namespace

std::string Value::description() const {
  std::string text;
  append(text, *this, false);
  return text;
}

}  // namespace FrameworkUtility
