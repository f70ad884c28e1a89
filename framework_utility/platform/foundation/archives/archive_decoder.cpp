#include <framework_utility/platform/foundation/archives/archive_decoder.h>

#include <framework_utility/platform/foundation/archives/coder_failure.h>
#include <framework_utility/platform/foundation/archives/coding_registry.h>
#include <framework_utility/platform/foundation/archives/keyed_archive_format.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>

#include <algorithm>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

bool isPropertyListLeaf(const Value& value) {
  return value.as<std::string>() || value.as<Number>() || value.as<Data>() || value.as<Date>();
}

}  // namespace

ArchiveDecoder::ArchiveDecoder(NSKeyedUnarchiver& coder, std::optional<ClassNames> classes,
                               std::span<const std::byte> data, const ArchiveLimits& limits)
    : coder_(coder),
      classes_(std::move(classes)),
      depth_(std::min(limits.depth, largestDepth)),
      budget_(data.size(), limits.expansion, valuesOf(limits.objects)) {
  std::string problem;
  contents_ = archiveContents(data, limits, problem);
  if (!contents_) {
    failBecause(problem);
    return;
  }
  current_ = contents_->top;
  isOpen_.resize(contents_->objects.size());
}

void ArchiveDecoder::fail(const Error& error) {
  if (!error_) error_ = error;
}

const Value* ArchiveDecoder::part(std::string_view key) {
  return error_ ? nullptr : find(key.starts_with('$') ? escapedKey(key) : key);
}

std::optional<Value> ArchiveDecoder::inlineValue(std::string_view key) {
  const Value* value = part(key);
  if (!value || !isPropertyListLeaf(*value)) return std::nullopt;
  return copied(*value);
}

const Number* ArchiveDecoder::number(std::string_view key, Kind kind) {
  const Value* value = part(key);
  if (!value) return nullptr;
  const auto* number = value->as<Number>();
  if (number && (number->kind() == Number::Kind::real) == (kind == Kind::floating)) return number;
  failAt(key, kind == Kind::floating ? "is no floating-point number" : "is no integer");
  return nullptr;
}

void ArchiveDecoder::failAt(std::string_view key, std::string_view reason) {
  failBecause("value for key '" + std::string(key) + "' " + std::string(reason));
}

void ArchiveDecoder::failWithoutValue(std::string_view key) {
  fail(coderError(CoderError::valueNotFound, "requested key: '" + std::string(key) + '\''));
}

std::optional<Value> ArchiveDecoder::object(std::string_view key) {
  const Value* reference = part(key);
  return reference ? objectAt(*reference, key) : std::nullopt;
}

std::optional<Value> ArchiveDecoder::object(const ClassNames& classes, std::string_view key) {
  if (!isSecure()) return object(key);
  ClassNames outer = std::exchange(*classes_, classes);
  std::vector<const CodingClass*> outerAllowed = std::exchange(allowed_, {});
  std::optional<Value> value = object(key);
  *classes_ = std::move(outer);
  allowed_ = std::move(outerAllowed);
  return value;
}

std::optional<Array> ArchiveDecoder::objects(std::string_view key) {
  const Value* references = part(key);
  if (!references) return std::nullopt;
  const auto* list = references->as<Array>();
  if (!list) {
    failAt(key, "is no list of objects");
    return std::nullopt;
  }
  Array objects;
  objects.reserve(list->size());
  for (const Value& reference : *list) {
    std::optional<Value> object = objectAt(reference, key);
    if (!object && !error_) failAt(key, "has an object that is nil");
    if (error_) return std::nullopt;
    objects.push_back(*std::move(object));
  }
  return objects;
}

void ArchiveDecoder::failBecause(const std::string& reason) {
  fail(coderError(CoderError::readCorrupt, reason));
}

const Value* ArchiveDecoder::find(std::string_view key) {
  constexpr std::size_t lookCost = 2;
  const std::size_t count = current_->size();
  const auto* const parts = current_->begin();
  std::size_t looked = 0;
  const Value* found = nullptr;
  for (; looked < count && !found; ++looked) {
    const std::size_t index = next_ + looked < count ? next_ + looked : next_ + looked - count;
    if (parts[index].key.text() == key) found = &parts[index].value;
  }
  if (!isWithin(budget_.spendBytes(lookCost * looked))) return nullptr;
  if (found) next_ = (next_ + looked - 1) % count;
  return found;
}

std::optional<Value> ArchiveDecoder::copied(const Value& leaf) {
  const auto* text = leaf.as<std::string>();
  if (text && !isWithin(budget_.spendBytes(text->size()))) return std::nullopt;
  return leaf;
}

bool ArchiveDecoder::isWithin(bool isSpent) {
  if (!isSpent) failBecause("the archive expands too much");
  return isSpent;
}

std::optional<Value> ArchiveDecoder::objectAt(const Value& reference, std::string_view key) {
  const std::optional<std::uint64_t> number = PropertyListUID::numberIn(reference);
  if (!number || *number >= table().size()) {
    failAt(key, number ? "is an object that is not there" : "is no object");
    return std::nullopt;
  }
  if (*number == nilNumber || !isWithin(budget_.spendValues(1))) return std::nullopt;
  const Value& object = table()[*number];
  if (const auto* parts = object.as<Dictionary>()) return made(*parts, *number, key);
  if (!isPropertyListLeaf(object)) {
    failAt(key, "is an object without a class");
    return std::nullopt;
  }
  // The platform lets texts and numbers pass inside an allowed object.
  const bool isPlain = level_ > 0 && (object.as<std::string>() || object.as<Number>());
  if (!isPlain && !isAllowed(foundationClassOf(object), key)) return std::nullopt;
  return copied(object);
}

std::optional<Value> ArchiveDecoder::made(const Dictionary& parts, std::uint64_t number,
                                          std::string_view key) {
  const Dictionary* const outer = std::exchange(current_, &parts);
  const std::size_t outerNext = std::exchange(next_, 0);
  std::optional<Value> value = madeOfCurrent(number, key);
  current_ = outer;
  next_ = outerNext;
  return value;
}

std::optional<Value> ArchiveDecoder::madeOfCurrent(std::uint64_t number, std::string_view key) {
  const CodingClass* codingClass = classOfCurrent(key);
  if (!codingClass || !isAllowed(*codingClass, key)) return std::nullopt;
  if (const auto known = made_.find(number); known != made_.end()) return known->second;
  if (isOpen_[number]) {
    failAt(key, "is an object that reaches itself");
    return std::nullopt;
  }
  if (level_ == depth_) {
    failBecause("the graph of objects is too deep");
    return std::nullopt;
  }
  isOpen_[number] = true;
  ++level_;
  std::optional<Value> value = codingClass->withCoder(coder_);
  --level_;
  isOpen_[number] = false;
  if (error_) return std::nullopt;
  if (value && value->as<std::shared_ptr<NSObject>>()) made_.emplace(number, *value);
  return value;
}

const CodingClass* ArchiveDecoder::classOfCurrent(std::string_view key) {
  const Value* reference = find(classKey);
  if (error_) return nullptr;
  const auto number = reference ? PropertyListUID::numberIn(*reference) : std::nullopt;
  const std::uint64_t record = number.value_or(table().size());
  const auto [known, isNew] = classesOfRecords_.try_emplace(record, nullptr);
  if (isNew) known->second = classOfRecord(record, key);
  return known->second;
}

const CodingClass* ArchiveDecoder::classOfRecord(std::uint64_t number, std::string_view key) {
  const auto* record = number < table().size() ? table()[number].as<Dictionary>() : nullptr;
  const auto* name = record ? record->get<std::string>(classNameKey) : nullptr;
  const CodingClass* found = name ? codingClassOfRecord(*record) : nullptr;
  if (!name) {
    failAt(key, "is an object without a class");
  } else if (!found) {
    failAt(key, "is of class '" + *name + "', which is unknown");
  }
  return found;
}

bool ArchiveDecoder::isAllowed(const CodingClass& codingClass, std::string_view key) {
  if (!isSecure()) return true;
  const bool isKnown = std::find(allowed_.begin(), allowed_.end(), &codingClass) != allowed_.end();
  if (!isKnown && !isKindOfAny(codingClass, *classes_)) {
    std::string reason =
        "was of unexpected class '" + std::string(codingClass.name) + "'. Allowed classes are '{(";
    for (const std::string_view one : *classes_) {
      (reason += reason.ends_with('(') ? "" : ", ") += one;
    }
    failAt(key, reason += ")}'.");
    return false;
  }
  if (!codingClass.supportsSecureCoding()) {
    failBecause("This decoder will only decode classes that adopt NSSecureCoding. Class '" +
                std::string(codingClass.name) + "' does not adopt it.");
    return false;
  }
  if (!isKnown) allowed_.push_back(&codingClass);
  return true;
}

}  // namespace FrameworkUtility::detail
