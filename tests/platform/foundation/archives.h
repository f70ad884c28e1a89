#pragma once

#include <framework_utility/platform/foundation/data.h>
#include <framework_utility/platform/foundation/property_list.h>
#include <framework_utility/platform/foundation/value.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace FrameworkUtility::testing {

/// A reference to an object of an archive.
inline Value uid(std::uint64_t number) { return Value(std::make_shared<PropertyListUID>(number)); }

/// References side by side.
inline Value uids(const std::vector<std::uint64_t>& numbers) {
  Array all;
  for (const std::uint64_t number : numbers) all.push_back(uid(number));
  return Value(all);
}

/// The record of a class.
inline Value record(const std::string& name, const std::vector<std::string>& superclasses = {}) {
  Array classes{name};
  for (const std::string& superclass : superclasses) classes.emplace_back(superclass);
  classes.emplace_back("NSObject");
  return Dictionary{{"$classname", name}, {"$classes", Value(classes)}};
}

/// An archive written by hand: `objects` are those from number 1 on, the first of them is the root.
inline Data archive(Array objects, const Dictionary& top = {{"root", uid(1)}}) {
  objects.insert(objects.begin(), "$null");
  return *dataWithPropertyList(Dictionary{{"$version", 100000},
                                          {"$archiver", "NSKeyedArchiver"},
                                          {"$top", top},
                                          {"$objects", Value(std::move(objects))}});
}

}  // namespace FrameworkUtility::testing
