#pragma once

#include <cstddef>
#include <functional>

namespace FrameworkUtility::testing {

/// What some work took.
struct Expense {
  bool isDone = false;     ///< Else it crashed, or took a minute of processor time.
  std::size_t memory = 0;  ///< In bytes, at most, above what was there when it began.
};

/// Does `work` behind `preparation`, whose expense does not count, in a process of its own. Memory
/// is not measured under sanitizers, which need a multiple of it for themselves: that is said, and
/// the expense is 0.
Expense expenseOf(const std::function<void()>& preparation, const std::function<void()>& work);

}  // namespace FrameworkUtility::testing
