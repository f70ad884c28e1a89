#include <framework_utility/platform/foundation/archives/keyed_archiver.h>

#include <framework_utility/platform/foundation/archives/coder_failure.h>
#include <framework_utility/platform/foundation/archives/coding_registry.h>
#include <framework_utility/platform/foundation/archives/keyed_archive_format.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>

#include <unordered_map>
#include <utility>

namespace FrameworkUtility {

using namespace detail;

class NSKeyedArchiver::Archive {
 public:
  Archive(NSKeyedArchiver& coder, SecureCoding secureCoding, const ArchiveLimits& limits)
      : coder_(coder), secureCoding_(secureCoding), limits_(limits) {
    objects_.emplace_back(nilText);
  }

  bool isSecure() const { return secureCoding_ == SecureCoding::required; }
  /// Whether it takes more.
  bool isOpen() const { return !error_ && !data_; }

  void put(std::string_view key, Value value) {
    if (isOpen()) current_->set(escapedKey(key), std::move(value));
  }

  void putObject(std::string_view key, const std::optional<Value>& object) {
    if (isOpen()) put(key, object ? referenceTo(*object) : reference(nilNumber));
  }

  void putObjects(std::string_view key, const std::vector<const Value*>& objects) {
    Array references;
    for (const Value* object : objects) {
      if (!isOpen()) return;
      references.push_back(referenceTo(*object));
    }
    put(key, Value(std::move(references)));
  }

  void fail(const Error& error) {
    if (!error_) error_ = error;
  }

  std::optional<Data> data(Error* error) {
    if (!error_ && !data_) finish();
    if (!error_) return data_;
    if (error) *error = *error_;
    return std::nullopt;
  }

 private:
  /// The table's number of an object with identity, and whether it is being written.
  struct Known {
    std::uint64_t number;
    bool isOpen;
    std::shared_ptr<NSObject> object;  // for as long as its address stands for it
  };

  static Value reference(std::uint64_t number) {
    return Value(std::make_shared<PropertyListUID>(number));
  }

  void failBecause(const std::string& reason) {
    fail(coderError(CoderError::invalidValue, "Caught exception during archival: " + reason));
  }

  void finish() {
    Dictionary list;
    list.reserve(4);
    list.append(Key::withConstant(versionKey), archiveVersion);
    list.append(Key::withConstant(archiverKey), archiverName);
    list.append(Key::withConstant(topKey), std::move(top_));
    list.append(Key::withConstant(objectsKey), Value(std::move(objects_)));
    data_ = dataWithPropertyList(list);
    if (!data_) return failBecause("a text is not UTF-8");
    if (data_->size() > limits_.bytes) failBecause("the archive is too large");
  }

  /// A new place in the table.
  std::uint64_t reserve() {
    if (objects_.size() >= limits_.objects) failBecause("the archive has too many objects");
    objects_.emplace_back();
    return objects_.size() - 1;
  }

  Value add(const Value& bare) {
    const std::uint64_t number = reserve();
    objects_[number] = bare;
    return reference(number);
  }

  Value referenceTo(const Value& value) {
    if (value.as<Number>() || value.as<std::string>() || value.as<Data>()) return add(value);
    if (const auto* object = value.as<std::shared_ptr<NSObject>>()) return referenceTo(*object);
    if (value.as<Error>()) {
      failBecause("an error cannot be archived");
      return {};
    }
    return reference(addParts(foundationClassOf(value), reserve(),
                              [&] { encodeFoundationValue(value, coder_); }));
  }

  Value referenceTo(const std::shared_ptr<NSObject>& object) {
    const auto [known, isNew] = known_.try_emplace(object.get(), Known{0, true, object});
    if (!isNew) {
      if (known->second.isOpen) failBecause("the graph of objects reaches itself");
      return reference(known->second.number);
    }
    const std::string name(object->className());
    const auto* coding = dynamic_cast<const NSCoding*>(object.get());
    const CodingClass* codingClass = codingClassNamed(name);
    if (!coding || !codingClass) {
      failBecause("class '" + name + "' cannot be archived");
      return {};
    }
    if (isSecure() && !codingClass->supportsSecureCoding()) {
      failBecause("class '" + name + "' does not support secure coding");
      return {};
    }
    Known& self = known->second;  // stays where it is while others are added
    self.number = reserve();
    addParts(*codingClass, self.number, [&] { coding->encodeWithCoder(coder_); });
    self.isOpen = false;
    return reference(self.number);
  }

  /// Fills the place in the table with what `encode` writes, then adds the class's record.
  std::uint64_t addParts(const CodingClass& codingClass, std::uint64_t number, const auto& encode) {
    if (depth_ == limits_.depth || depth_ == largestDepth) {
      failBecause("the graph of objects is too deep");
    }
    if (error_) return number;
    Dictionary parts;
    Dictionary* const outer = std::exchange(current_, &parts);
    ++depth_;
    encode();
    --depth_;
    current_ = outer;
    parts.append(Key::withConstant(classKey), reference(recordOf(codingClass)));
    objects_[number] = std::move(parts);
    return number;
  }

  std::uint64_t recordOf(const CodingClass& codingClass) {
    const auto [record, isNew] = records_.try_emplace(&codingClass, 0);
    if (!isNew) return record->second;
    Array classes{codingClass.name};
    for (const std::string_view name : codingClass.superclasses) classes.emplace_back(name);
    classes.emplace_back(rootClassName);
    const std::uint64_t number = record->second = reserve();
    objects_[number] = Dictionary{{Key::withConstant(classNameKey), codingClass.name},
                                  {Key::withConstant(classesKey), Value(std::move(classes))}};
    return number;
  }

  NSKeyedArchiver& coder_;
  SecureCoding secureCoding_;
  ArchiveLimits limits_;
  Array objects_;
  Dictionary top_;
  Dictionary* current_ = &top_;  // where encoding puts parts
  std::size_t depth_ = 0;
  std::unordered_map<const NSObject*, Known> known_;
  std::unordered_map<const CodingClass*, std::uint64_t> records_;
  std::optional<Error> error_;
  std::optional<Data> data_;
};

NSKeyedArchiver::NSKeyedArchiver(SecureCoding secureCoding, const ArchiveLimits& limits)
    : archive_(std::make_unique<Archive>(*this, secureCoding, limits)) {}

NSKeyedArchiver::~NSKeyedArchiver() = default;

std::optional<Data> NSKeyedArchiver::archivedDataWithRootObject(const Value& object,
                                                                SecureCoding secureCoding,
                                                                Error* error) {
  NSKeyedArchiver coder(secureCoding);
  coder.encodeObject(object, NSKeyedArchiveRootObjectKey);
  return coder.encodedData(error);
}

void NSKeyedArchiver::encodeBool(bool value, std::string_view key) { archive_->put(key, value); }
void NSKeyedArchiver::encodeInt32(std::int32_t value, std::string_view key) {
  archive_->put(key, value);
}
void NSKeyedArchiver::encodeInt64(std::int64_t value, std::string_view key) {
  archive_->put(key, value);
}
void NSKeyedArchiver::encodeFloat(float value, std::string_view key) { archive_->put(key, value); }
void NSKeyedArchiver::encodeDouble(double value, std::string_view key) {
  archive_->put(key, value);
}
void NSKeyedArchiver::encodeBytes(std::span<const std::byte> bytes, std::string_view key) {
  archive_->put(key, Data(bytes));
}
void NSKeyedArchiver::encodeObject(const std::optional<Value>& object, std::string_view key) {
  archive_->putObject(key, object);
}
void NSKeyedArchiver::encodeObjects(const std::vector<const Value*>& objects,
                                    std::string_view key) {
  archive_->putObjects(key, objects);
}

bool NSKeyedArchiver::requiresSecureCoding() const { return archive_->isSecure(); }
void NSKeyedArchiver::failWithError(const Error& error) { archive_->fail(error); }
std::optional<Data> NSKeyedArchiver::encodedData(Error* error) { return archive_->data(error); }

}  // namespace FrameworkUtility
