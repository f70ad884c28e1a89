#pragma once

#include <framework_utility/platform/foundation/values/expansion_budget.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// What the metadata of one file may still expand to, all blocks together, and what was left out
/// because it did not fit. Records can share bytes, so that a few kilobytes stand for gigabytes.
/// A value: whoever reads a block again from a copy leaves out the same.
class MetadataBudget {
 public:
  /// Whether `values` values that hold `bytes` bytes of text or data fit in. Spend before reading.
  bool spend(std::size_t values, std::size_t bytes) {
    return memory_.spendValues(values) && memory_.spendBytes(bytes);
  }
  ExpansionBudget& memory() { return memory_; }

  /// `name` is a constant: that of the dictionary that lacks something, or of what is not read.
  void leaveOut(std::string_view name);
  /// Says in the properties what was left out.
  void tell(Dictionary& properties) const;

 private:
  /// The properties, and what it takes to make them and to save them, are a few times as large.
  static constexpr std::size_t size = std::size_t{8} << 20;

  ExpansionBudget memory_ = ExpansionBudget::ofMemory(size);
  std::vector<std::string_view> leftOut_;
};

}  // namespace FrameworkUtility::detail
