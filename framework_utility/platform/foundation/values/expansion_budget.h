#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

namespace FrameworkUtility::detail {

/// What may still be made of some data that can refer to one of its parts many times.
class ExpansionBudget {
 public:
  /// Values that count together `perByte` times the size of the data, above a free 64 KB; at most
  /// `values` of them. A value counts 8, a byte of text or data 1. When the data are part of
  /// something, `whole` is spent from too, and must outlive this.
  ExpansionBudget(std::size_t dataSize, std::size_t perByte, std::size_t values,
                  ExpansionBudget* whole = nullptr)
      : values_(values), whole_(whole) {
    const std::size_t each = std::max<std::size_t>(perByte, 1);
    cost_ = freeCost + (dataSize > (most - freeCost) / each ? most - freeCost : dataSize * each);
  }
  /// About as much as so many bytes of memory hold. A value counts 96, a byte of text or data 1.
  static ExpansionBudget ofMemory(std::size_t bytes) {
    ExpansionBudget budget(0, 0, all);
    budget.cost_ = std::min(bytes, most);
    budget.valueCost_ = memoryOfValue;
    return budget;
  }

  // Each is false when too little is left, and takes nothing from this budget then. Spend before
  // giving memory.

  bool spendValues(std::size_t count) {
    // Their product cannot overflow; a quotient would be what takes longest here.
    if (count > values_ || count > cost_ || count * valueCost_ > cost_) return false;
    if (whole_ && !whole_->spendValues(count)) return !(isWholeSpent_ = true);
    values_ -= count;
    cost_ -= count * valueCost_;
    return true;
  }
  bool spendBytes(std::size_t count) {
    if (count > cost_) return false;
    if (whole_ && !whole_->spendBytes(count)) return !(isWholeSpent_ = true);
    cost_ -= count;
    return true;
  }
  /// Whether it was the whole that had too little left.
  bool isWholeSpent() const { return isWholeSpent_; }

 private:
  static constexpr std::size_t memoryOfValue = 96;
  static constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
  static constexpr std::size_t most = all / memoryOfValue;
  static constexpr std::size_t freeCost = std::size_t{64} * 1024;

  std::size_t values_;
  std::size_t cost_;
  std::size_t valueCost_ = 8;
  ExpansionBudget* whole_;
  bool isWholeSpent_ = false;
};

}  // namespace FrameworkUtility::detail
