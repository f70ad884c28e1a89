#pragma once

#include <framework_utility/platform/foundation/values/scoped.h>

#include <chrono>
#include <functional>

namespace FrameworkUtility {

/// A moment, to the microsecond. Coarser times convert by themselves (`sys_days{2024y / 5 / 17} +
/// 9h`); the system clock's finer ones need `floor`, or `Clock::current().now()`.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// The source of the present moment. `now` never fails, may go back, and may be called by any
/// thread.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual Date now() const = 0;

  /// The clock in use: the system's, or the one that a test has put in its place.
  static const Clock& current();
};

/// In the system clock's place.
using ScopedClock = Scoped<std::reference_wrapper<const Clock>>;

}  // namespace FrameworkUtility
