#pragma once

#include <framework_utility/platform/foundation/property_list.h>
#include <framework_utility/platform/foundation/value.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace FrameworkUtility::testing {

inline Value reference(std::uint64_t number) {
  return Value(std::make_shared<PropertyListUID>(number));
}

/// An archive as the platform writes it, of `objects` behind "$null", the first of them the root.
inline Data archiveOf(Array objects) {
  objects.insert(objects.begin(), Value("$null"));
  return *dataWithPropertyList(Dictionary{{"$version", 100000},
                                          {"$archiver", "NSKeyedArchiver"},
                                          {"$top", Dictionary{{"root", reference(1)}}},
                                          {"$objects", Value(std::move(objects))}});
}

inline Value classRecord(const std::string& name) {
  return Dictionary{{"$classname", name}, {"$classes", Value(Array{name, "NSObject"})}};
}

/// An archive of one object with these parts.
inline Data archiveOfObject(Dictionary parts, const std::string& className) {
  parts.set("$class", reference(2));
  return archiveOf({Value(std::move(parts)), classRecord(className)});
}

}  // namespace FrameworkUtility::testing
