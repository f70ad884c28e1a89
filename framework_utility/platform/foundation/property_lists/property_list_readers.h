#pragma once

#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/values/expansion_budget.h>

#include <cstddef>
#include <optional>
#include <span>

namespace FrameworkUtility::detail {

// Each gives nothing when the bytes are corrupt or stand for more than the budget holds.

/// `propertyListWithData` for a list that is part of something with a budget of its own.
std::optional<Value> readPropertyList(std::span<const std::byte> data, std::size_t depth,
                                      ExpansionBudget& budget);

// These let `std::bad_alloc` through.
std::optional<Value> readBinaryPropertyList(std::span<const std::byte> data, std::size_t depth,
                                            ExpansionBudget& budget);
std::optional<Value> readXMLPropertyList(std::span<const std::byte> data, std::size_t depth,
                                         ExpansionBudget& budget);

/// Whether `data` begins like a binary property list.
bool isBinaryPropertyList(std::span<const std::byte> data);

}  // namespace FrameworkUtility::detail
