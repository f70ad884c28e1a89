#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

namespace FrameworkUtility::detail {

/// What may still be made of some data that can refer to one of its parts many times.
class ExpansionBudget {
 public:
  /// Values that count together `perByte` times the size of the data, above a free 64 KB; at most
  /// `values` of them. A value counts 8, a byte of text or data 1.
  ExpansionBudget(std::size_t dataSize, std::size_t perByte, std::size_t values) : values_(values) {
    constexpr std::size_t all = std::numeric_limits<std::size_t>::max() - freeCost;
    const std::size_t each = std::max<std::size_t>(perByte, 1);
    cost_ = freeCost + (dataSize > all / each ? all : dataSize * each);
  }

  // Each is false when too little is left. Spend before giving memory.

  bool spendValues(std::size_t count) {
    if (count > values_ || count > cost_ / valueCost) return false;
    values_ -= count;
    cost_ -= count * valueCost;
    return true;
  }
  bool spendBytes(std::size_t count) {
    if (count > cost_) return false;
    cost_ -= count;
    return true;
  }

 private:
  static constexpr std::size_t freeCost = std::size_t{64} * 1024;
  static constexpr std::size_t valueCost = 8;

  std::size_t values_;
  std::size_t cost_;
};

}  // namespace FrameworkUtility::detail
