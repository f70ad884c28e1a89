#include <framework_utility/platform/foundation/property_list.h>

#include <framework_utility/platform/foundation/platform_error.h>
#include <framework_utility/platform/foundation/property_lists/property_list_readers.h>

#include <algorithm>
#include <new>

namespace FrameworkUtility {
namespace {

constexpr std::size_t largestDepth = 512;

}  // namespace

std::optional<std::uint64_t> PropertyListUID::numberIn(const Value& value) {
  const auto* object = value.as<std::shared_ptr<NSObject>>();
  const auto* uid = object ? dynamic_cast<const PropertyListUID*>(object->get()) : nullptr;
  return uid ? std::optional(uid->number()) : std::nullopt;
}

std::optional<Value> propertyListWithData(std::span<const std::byte> data,
                                          const PropertyListLimits& limits, Error* error) {
  PropertyListLimits within = limits;
  within.depth = std::min(limits.depth, largestDepth);
  try {
    std::optional<Value> value = detail::isBinaryPropertyList(data)
                                     ? detail::readBinaryPropertyList(data, within)
                                     : detail::readXMLPropertyList(data, within);
    if (value) return value;
  } catch (const std::bad_alloc&) {
    // More than the memory holds, within the limits that the caller set.
  }
  return detail::failed(error, PropertyListError::readCorrupt);
}

}  // namespace FrameworkUtility
