#pragma once

#include <framework_utility/platform/foundation/property_list.h>

#include <cstddef>
#include <optional>
#include <span>

namespace FrameworkUtility::detail {

// Each gives nothing when the bytes are corrupt. They let `std::bad_alloc` through.

std::optional<Value> readBinaryPropertyList(std::span<const std::byte> data,
                                            const PropertyListLimits& limits);
std::optional<Value> readXMLPropertyList(std::span<const std::byte> data,
                                         const PropertyListLimits& limits);

/// Whether `data` begins like a binary property list.
bool isBinaryPropertyList(std::span<const std::byte> data);

}  // namespace FrameworkUtility::detail
