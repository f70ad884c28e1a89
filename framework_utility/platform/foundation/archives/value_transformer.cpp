#include <framework_utility/platform/foundation/archives/value_transformer.h>

#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <map>
#include <mutex>
#include <utility>

namespace FrameworkUtility {
namespace {

using Transformer = std::shared_ptr<const NSValueTransformer>;

class Transformers {
 public:
  Transformers() {
    const auto make = [] { return std::make_shared<NSSecureUnarchiveFromDataTransformer>(); };
    byName_.emplace(NSSecureUnarchiveFromDataTransformerName, make());
    classes_.emplace("NSSecureUnarchiveFromDataTransformer", make);
  }

  void set(Transformer transformer, std::string_view name) {
    const std::lock_guard lock(mutex_);
    if (transformer) {
      byName_.insert_or_assign(std::string(name), std::move(transformer));
    } else if (const auto found = byName_.find(name); found != byName_.end()) {
      byName_.erase(found);
    }
  }

  Transformer find(std::string_view name) {
    std::function<Transformer()> make;
    {
      const std::lock_guard lock(mutex_);
      if (const auto found = byName_.find(name); found != byName_.end()) return found->second;
      const auto found = classes_.find(name);
      if (found == classes_.end()) return nullptr;
      make = found->second;
    }
    Transformer made = make();  // which may look for others itself
    if (!made) return nullptr;
    const std::lock_guard lock(mutex_);
    return byName_.try_emplace(std::string(name), std::move(made)).first->second;
  }

  std::vector<std::string> names() {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> names;
    for (const auto& entry : byName_) names.push_back(entry.first);
    return names;
  }

  void registerClass(std::string_view name, std::function<Transformer()> make) {
    const std::lock_guard lock(mutex_);
    classes_.insert_or_assign(std::string(name), std::move(make));
  }

 private:
  std::mutex mutex_;
  std::map<std::string, Transformer, std::less<>> byName_;
  std::map<std::string, std::function<Transformer()>, std::less<>> classes_;
};

/// Never destroyed, for a store may be saved after `main`.
Transformers& transformers() {
  static Transformers& transformers = *new Transformers;
  return transformers;
}

}  // namespace

NSValueTransformer::~NSValueTransformer() = default;

std::optional<Value> NSValueTransformer::reverseTransformedValue(
    const std::optional<Value>&) const {
  return std::nullopt;
}

void NSValueTransformer::setValueTransformer(Transformer transformer, std::string_view name) {
  transformers().set(std::move(transformer), name);
}

Transformer NSValueTransformer::valueTransformerForName(std::string_view name) {
  return transformers().find(name);
}

std::vector<std::string> NSValueTransformer::valueTransformerNames() {
  return transformers().names();
}

void NSValueTransformer::registerClass(std::string_view name, std::function<Transformer()> make) {
  transformers().registerClass(name, std::move(make));
}

ClassNames NSSecureUnarchiveFromDataTransformer::allowedTopLevelClasses() const {
  return {"NSArray", "NSDictionary", "NSSet", "NSString", "NSNumber",
          "NSDate",  "NSData",       "NSURL", "NSUUID",   "NSNull"};
}

std::optional<Value> NSSecureUnarchiveFromDataTransformer::transformedValue(
    const std::optional<Value>& value) const {
  const auto* data = value ? value->as<Data>() : nullptr;
  if (!data) return std::nullopt;
  return NSKeyedUnarchiver::unarchivedObjectOfClasses(allowedTopLevelClasses(), *data);
}

bool NSSecureUnarchiveFromDataTransformer::allowsReverseTransformation() const { return true; }

std::optional<Value> NSSecureUnarchiveFromDataTransformer::reverseTransformedValue(
    const std::optional<Value>& value) const {
  if (!value) return std::nullopt;
  std::optional<Data> data =
      NSKeyedArchiver::archivedDataWithRootObject(*value, SecureCoding::required);
  return data ? std::optional<Value>(*std::move(data)) : std::nullopt;
}

}  // namespace FrameworkUtility
