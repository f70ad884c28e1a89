#pragma once

#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Archives as the platform writes them, made by hand. A test that includes this uses
// platform_foundation.

namespace FrameworkUtility::testing {

/// The object of this number.
inline Value reference(std::uint64_t number) {
  return Value(std::make_shared<PropertyListUID>(number));
}

inline Value references(const std::vector<std::uint64_t>& numbers) {
  Array all;
  for (const std::uint64_t number : numbers) all.push_back(reference(number));
  return Value(all);
}

inline Value classRecord(const std::string& name,
                         const std::vector<std::string>& superclasses = {}) {
  Array classes{name};
  for (const std::string& superclass : superclasses) classes.emplace_back(superclass);
  classes.emplace_back("NSObject");
  return Dictionary{{"$classname", name}, {"$classes", Value(classes)}};
}

/// An archive of `objects` behind "$null", the first of them the root.
inline Data archiveOf(Array objects, const Dictionary& top = {{"root", reference(1)}}) {
  objects.insert(objects.begin(), "$null");
  return *dataWithPropertyList(Dictionary{{"$version", 100000},
                                          {"$archiver", "NSKeyedArchiver"},
                                          {"$top", top},
                                          {"$objects", Value(std::move(objects))}});
}

/// An archive of one object with these parts.
inline Data archiveOfObject(Dictionary parts, const std::string& className) {
  parts.set("$class", reference(2));
  return archiveOf({Value(std::move(parts)), classRecord(className)});
}

}  // namespace FrameworkUtility::testing
