#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <framework_utility/platform/foundation/archives/coder_failure.h>
#include <framework_utility/platform/foundation/archives/coding_registry.h>
#include <framework_utility/platform/foundation/archives/keyed_archive_format.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/values/expansion_budget.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace FrameworkUtility {

using namespace detail;

namespace {

bool isPropertyListLeaf(const Value& value) {
  return value.as<std::string>() || value.as<Number>() || value.as<Data>() || value.as<Date>();
}

}  // namespace

class NSKeyedUnarchiver::Archive {
 public:
  Archive(NSKeyedUnarchiver& coder, std::optional<ClassNames> classes,
          std::span<const std::byte> data, const ArchiveLimits& limits)
      : coder_(coder),
        classes_(std::move(classes)),
        depth_(std::min(limits.depth, largestDepth)),
        budget_(data.size(), limits.expansion, valuesOf(limits.objects)) {
    read(data, limits);
  }

  bool isSecure() const { return classes_.has_value(); }
  const std::optional<Error>& error() const { return error_; }

  void fail(const Error& error) {
    if (!error_) error_ = error;
  }

  bool contains(std::string_view key) { return part(key) != nullptr; }

  const Value* part(std::string_view key) {
    return error_ ? nullptr : find(key.starts_with('$') ? escapedKey(key) : key);
  }

  std::optional<Value> inlineValue(std::string_view key) {
    const Value* value = part(key);
    if (!value || !isPropertyListLeaf(*value)) return std::nullopt;
    return copied(*value);
  }

  enum class Kind { whole, floating };

  const Number* number(std::string_view key, Kind kind) {
    const Value* value = part(key);
    if (!value) return nullptr;
    const auto* number = value->as<Number>();
    if (number && (number->kind() == Number::Kind::real) == (kind == Kind::floating)) return number;
    failAt(key, kind == Kind::floating ? "is no floating-point number" : "is no integer");
    return nullptr;
  }

  void failAt(std::string_view key, std::string_view reason) {
    failBecause("value for key '" + std::string(key) + "' " + std::string(reason));
  }

  void failWithoutValue(std::string_view key) {
    fail(coderError(CoderError::valueNotFound, "requested key: '" + std::string(key) + '\''));
  }

  std::optional<Value> object(std::string_view key) {
    const Value* reference = part(key);
    return reference ? objectAt(*reference, key) : std::nullopt;
  }

  /// Decodes an object with a list of classes that counts for all below it.
  std::optional<Value> object(const ClassNames& classes, std::string_view key) {
    if (!isSecure()) return object(key);
    ClassNames outer = std::exchange(*classes_, classes);
    std::vector<const CodingClass*> outerAllowed = std::exchange(allowed_, {});
    std::optional<Value> value = object(key);
    *classes_ = std::move(outer);
    allowed_ = std::move(outerAllowed);
    return value;
  }

  std::optional<Array> objects(std::string_view key) {
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

 private:
  void failBecause(const std::string& reason) { fail(coderError(CoderError::readCorrupt, reason)); }

  void read(std::span<const std::byte> data, const ArchiveLimits& limits) {
    if (data.empty()) {
      return failBecause(
          "data is empty; did you forget to send -finishEncoding to the NSKeyedArchiver?");
    }
    if (data.size() > limits.bytes) return failBecause("the archive is too large");
    list_ = propertyListWithData(
        data, {.expansion = limits.expansion, .values = valuesOf(limits.objects)});
    if (!list_ || !findTable(limits)) failBecause("incomprehensible archive");
  }

  bool findTable(const ArchiveLimits& limits) {
    const auto* list = list_->as<Dictionary>();
    if (!list) return false;
    const auto* archiver = list->get<std::string>(archiverKey);
    const auto* version = list->get<Number>(versionKey);
    const auto* objects = list->get<Array>(objectsKey);
    current_ = list->get<Dictionary>(topKey);
    if (!archiver || *archiver != archiverName || !version || !(*version == archiveVersion) ||
        !objects || !current_ || objects->size() > limits.objects) {
      return false;
    }
    table_ = *objects;
    isOpen_.resize(table_.size());
    return true;
  }

  /// The part of the current object under a key as it stands there. Objects ask for their parts in
  /// the order in which they wrote them, so the search begins at the part found before. An object
  /// may have any number of parts and be asked any number of times: looking costs.
  const Value* find(std::string_view key) {
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

  std::optional<Value> copied(const Value& leaf) {
    const auto* text = leaf.as<std::string>();
    if (text && !isWithin(budget_.spendBytes(text->size()))) return std::nullopt;
    return leaf;
  }

  /// Whether what is still to be made goes on.
  bool isWithin(bool isSpent) {
    if (!isSpent) failBecause("the archive expands too much");
    return isSpent;
  }

  std::optional<Value> objectAt(const Value& reference, std::string_view key) {
    const std::optional<std::uint64_t> number = PropertyListUID::numberIn(reference);
    if (!number || *number >= table_.size()) {
      failAt(key, number ? "is an object that is not there" : "is no object");
      return std::nullopt;
    }
    if (*number == nilNumber || !isWithin(budget_.spendValues(1))) return std::nullopt;
    const Value& object = table_[*number];
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

  std::optional<Value> made(const Dictionary& parts, std::uint64_t number, std::string_view key) {
    const Dictionary* const outer = std::exchange(current_, &parts);
    const std::size_t outerNext = std::exchange(next_, 0);
    std::optional<Value> value = madeOfCurrent(number, key);
    current_ = outer;
    next_ = outerNext;
    return value;
  }

  std::optional<Value> madeOfCurrent(std::uint64_t number, std::string_view key) {
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

  /// The class of the object with the current parts.
  const CodingClass* classOfCurrent(std::string_view key) {
    const Value* reference = find(classKey);
    if (error_) return nullptr;
    const auto number = reference ? PropertyListUID::numberIn(*reference) : std::nullopt;
    const std::uint64_t record = number.value_or(table_.size());
    const auto [known, isNew] = classesOfRecords_.try_emplace(record, nullptr);
    if (isNew) known->second = classOfRecord(record, key);
    return known->second;
  }

  /// By the name in a class's record, else by the names that the record hints at, else by those of
  /// the superclasses.
  const CodingClass* classOfRecord(std::uint64_t number, std::string_view key) {
    const auto* record = number < table_.size() ? table_[number].as<Dictionary>() : nullptr;
    const auto* name = record ? record->get<std::string>(classNameKey) : nullptr;
    if (!name) {
      failAt(key, "is an object without a class");
      return nullptr;
    }
    if (const CodingClass* own = codingClassNamed(*name)) return own;
    for (const std::string_view others : {classHintsKey, classesKey}) {
      if (const auto* names = record->get<Array>(others)) {
        for (const Value& other : *names) {
          if (const auto* text = other.as<std::string>()) {
            if (const CodingClass* found = codingClassNamed(*text)) return found;
          }
        }
      }
    }
    failAt(key, "is of class '" + *name + "', which is unknown");
    return nullptr;
  }

  bool isAllowed(const CodingClass& codingClass, std::string_view key) {
    if (!isSecure()) return true;
    const bool isKnown =
        std::find(allowed_.begin(), allowed_.end(), &codingClass) != allowed_.end();
    if (!isKnown && !isKindOfAny(codingClass, *classes_)) {
      std::string reason = "was of unexpected class '" + std::string(codingClass.name) +
                           "'. Allowed classes are '{(";
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

  NSKeyedUnarchiver& coder_;
  std::optional<ClassNames> classes_;        // what is allowed now; absent where all is
  std::vector<const CodingClass*> allowed_;  // those of which that is known
  std::size_t depth_;
  ExpansionBudget budget_;
  std::optional<Value> list_;
  std::span<const Value> table_;
  const Dictionary* current_ = nullptr;  // the parts of the object that is being decoded
  std::size_t next_ = 0;                 // that one of them that was found last
  std::size_t level_ = 0;
  std::vector<bool> isOpen_;                       // whether the object is being decoded
  std::unordered_map<std::uint64_t, Value> made_;  // those with identity
  std::unordered_map<std::uint64_t, const CodingClass*> classesOfRecords_;
  std::optional<Error> error_;
};

NSKeyedUnarchiver::NSKeyedUnarchiver(std::span<const std::byte> data, const ArchiveLimits& limits)
    : archive_(std::make_unique<Archive>(*this, std::nullopt, data, limits)) {}

NSKeyedUnarchiver::NSKeyedUnarchiver(const ClassNames& classes, std::span<const std::byte> data,
                                     const ArchiveLimits& limits)
    : archive_(std::make_unique<Archive>(*this, classes, data, limits)) {}

NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

namespace {

std::optional<Value> rootOf(NSKeyedUnarchiver& coder, Error* error) {
  std::optional<Value> root = coder.decodeTopLevelObjectForKey(NSKeyedArchiveRootObjectKey);
  if (!root && error) {
    *error = coder.error().value_or(coderError(CoderError::valueNotFound, "the root is nil"));
  }
  return root;
}

}  // namespace

std::optional<Value> NSKeyedUnarchiver::unarchivedObjectOfClasses(const ClassNames& classes,
                                                                  std::span<const std::byte> data,
                                                                  Error* error) {
  NSKeyedUnarchiver coder(classes, data);
  return rootOf(coder, error);
}

std::optional<Value> NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(
    std::span<const std::byte> data, Error* error) {
  NSKeyedUnarchiver coder(data);
  return rootOf(coder, error);
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return archive_->contains(key);
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  const Number* number = archive_->number(key, Archive::Kind::whole);
  return number && number->boolValue();
}

std::int32_t NSKeyedUnarchiver::decodeInt32ForKey(std::string_view key) {
  const std::int64_t wide = decodeInt64ForKey(key);
  if (std::in_range<std::int32_t>(wide)) return static_cast<std::int32_t>(wide);
  archive_->failAt(key, "does not fit in 32 bits");
  return 0;
}

std::int64_t NSKeyedUnarchiver::decodeInt64ForKey(std::string_view key) {
  const Number* number = archive_->number(key, Archive::Kind::whole);
  if (!number) return 0;
  if (number->kind() != Number::Kind::unsignedInteger ||
      std::in_range<std::int64_t>(number->unsignedIntegerValue())) {
    return number->integerValue();
  }
  archive_->failAt(key, "does not fit in 64 bits with a sign");
  return 0;
}

float NSKeyedUnarchiver::decodeFloatForKey(std::string_view key) {
  const double wide = decodeDoubleForKey(key);
  if (!std::isfinite(wide) || std::abs(wide) <= std::numeric_limits<float>::max()) {
    return static_cast<float>(wide);
  }
  archive_->failAt(key, "does not fit in single precision");
  return 0;
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  const Number* number = archive_->number(key, Archive::Kind::floating);
  return number ? number->doubleValue() : 0;
}

std::optional<Value> NSKeyedUnarchiver::decodeInlineValueForKey(std::string_view key) {
  return archive_->inlineValue(key);
}

std::optional<Data> NSKeyedUnarchiver::decodeBytesForKey(std::string_view key) {
  const Value* part = archive_->part(key);
  if (!part) return std::nullopt;
  if (const auto* data = part->as<Data>()) return *data;
  archive_->failAt(key, "is not bytes");
  return std::nullopt;
}

std::optional<Value> NSKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  return archive_->object(key);
}

std::optional<Value> NSKeyedUnarchiver::decodeObjectOfClasses(const ClassNames& classes,
                                                              std::string_view key) {
  return archive_->object(classes, key);
}

std::optional<Array> NSKeyedUnarchiver::decodeObjectsForKey(std::string_view key) {
  return archive_->objects(key);
}

std::optional<Value> NSKeyedUnarchiver::decodeTopLevelObjectForKey(std::string_view key) {
  if (!archive_->contains(key) && !error()) archive_->failWithoutValue(key);
  return archive_->object(key);
}

bool NSKeyedUnarchiver::requiresSecureCoding() const { return archive_->isSecure(); }
void NSKeyedUnarchiver::failWithError(const Error& error) { archive_->fail(error); }
const std::optional<Error>& NSKeyedUnarchiver::error() const { return archive_->error(); }

}  // namespace FrameworkUtility
