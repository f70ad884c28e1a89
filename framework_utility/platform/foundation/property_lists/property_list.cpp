#include <framework_utility/platform/foundation/property_lists/property_list.h>

#include <framework_utility/platform/foundation/property_lists/property_list_readers.h>
#include <framework_utility/platform/foundation/values/fail.h>

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
  detail::ExpansionBudget budget(data.size(), limits.expansion, limits.values);
  std::optional<Value> value = detail::readPropertyList(data, limits.depth, budget);
  if (value) return value;
  return detail::fail(error, PropertyListError::readCorrupt);
}

std::optional<Value> detail::readPropertyList(std::span<const std::byte> data, std::size_t depth,
                                              ExpansionBudget& budget) {
  const std::size_t within = std::min(depth, largestDepth);
  try {
    return isBinaryPropertyList(data) ? readBinaryPropertyList(data, within, budget)
                                      : readXMLPropertyList(data, within, budget);
  } catch (const std::bad_alloc&) {
    return std::nullopt;  // more than the memory holds, within the limits that the caller set
  }
}

}  // namespace FrameworkUtility
