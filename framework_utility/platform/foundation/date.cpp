#include <framework_utility/platform/foundation/date.h>

#include <atomic>

namespace FrameworkUtility {
namespace {

class SystemClock final : public Clock {
 public:
  Date now() const override {
    return std::chrono::floor<Date::duration>(std::chrono::system_clock::now());
  }
};

std::atomic<const Clock*>& clockInUse() {
  static const SystemClock systemClock;
  static std::atomic<const Clock*> clock = &systemClock;
  return clock;
}

}  // namespace

const Clock& Clock::current() { return *clockInUse(); }

ScopedClock::ScopedClock(const Clock& clock) : previous_(clockInUse().exchange(&clock)) {}

ScopedClock::~ScopedClock() { clockInUse() = previous_; }

}  // namespace FrameworkUtility
