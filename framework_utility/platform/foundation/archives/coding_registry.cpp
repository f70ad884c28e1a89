#include <framework_utility/platform/foundation/archives/coding_registry.h>

#include <algorithm>
#include <charconv>
#include <deque>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace FrameworkUtility {
namespace {

/// A class's name in its parts. The module is empty where the name has none.
struct NameParts {
  std::string_view module;
  std::string_view name;

  friend bool operator==(const NameParts&, const NameParts&) = default;
};

/// Takes "6Sketch" off the front of "6Sketch6Stroke"; empty when there is no such part.
std::string_view takePart(std::string_view& mangled) {
  std::size_t length = 0;
  const char* const end = mangled.data() + mangled.size();
  const auto [digitsEnd, error] = std::from_chars(mangled.data(), end, length);
  if (error != std::errc() || length > static_cast<std::size_t>(end - digitsEnd)) return {};
  const std::string_view part(digitsEnd, length);
  mangled.remove_prefix(static_cast<std::size_t>(digitsEnd - mangled.data()) + length);
  return part;
}

NameParts partsOf(std::string_view name) {
  constexpr std::string_view mangling = "_TtC";
  if (name.starts_with(mangling)) {
    std::string_view rest = name.substr(mangling.size());
    const std::string_view module = takePart(rest);
    const std::string_view own = takePart(rest);
    if (!module.empty() && !own.empty() && rest.empty()) return {module, own};
  }
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return {{}, name};
  return {name.substr(0, dot), name.substr(dot + 1)};
}

/// Whether both may be names of one class: a name without a module goes with any.
bool areAlike(const NameParts& a, const NameParts& b) {
  return a.name == b.name && (a.module == b.module || a.module.empty() || b.module.empty());
}

class Registry {
 public:
  Registry() {
    for (const CodingClass& codingClass : detail::foundationClasses()) add(codingClass);
  }

  void add(const CodingClass& codingClass) {
    const std::unique_lock lock(mutex_);
    const NameParts parts = partsOf(codingClass.name);
    std::deque<Entry>& entries = classes_[parts.name];
    const auto isSame = [&](const Entry& entry) { return entry.parts == parts; };
    if (std::none_of(entries.begin(), entries.end(), isSame)) {
      entries.push_back({parts, codingClass});
    }
  }

  const CodingClass* find(std::string_view name) const {
    const std::shared_lock lock(mutex_);
    const NameParts parts = partsOf(name);
    const auto found = classes_.find(parts.name);
    if (found == classes_.end()) return nullptr;
    for (const Entry& entry : found->second) {
      if (areAlike(entry.parts, parts)) return &entry.codingClass;
    }
    return nullptr;
  }

 private:
  struct Entry {
    NameParts parts;
    CodingClass codingClass;
  };

  mutable std::shared_mutex mutex_;
  /// By name without module. A deque leaves its elements where they are.
  std::unordered_map<std::string_view, std::deque<Entry>> classes_;
};

/// Never destroyed, for objects that outlive `main` may still be archived.
Registry& registry() {
  static Registry& registry = *new Registry;
  return registry;
}

}  // namespace

NSCoding::~NSCoding() = default;

bool registerCodingClass(const CodingClass& codingClass) {
  registry().add(codingClass);
  return true;
}

const CodingClass* detail::codingClassNamed(std::string_view name) { return registry().find(name); }

bool detail::isKindOfAny(const CodingClass& codingClass, const ClassNames& names) {
  const auto isNamed = [&](std::string_view name) {
    const NameParts parts = partsOf(name);
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view other) { return areAlike(partsOf(other), parts); });
  };
  return isNamed(codingClass.name) || isNamed("NSObject") ||
         std::any_of(codingClass.superclasses.begin(), codingClass.superclasses.end(), isNamed);
}

}  // namespace FrameworkUtility
