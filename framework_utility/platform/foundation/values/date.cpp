#include <framework_utility/platform/foundation/values/date.h>

namespace FrameworkUtility {
namespace {

class SystemClock final : public Clock {
 public:
  Date now() const override {
    return std::chrono::floor<Date::duration>(std::chrono::system_clock::now());
  }
};

}  // namespace

const Clock& Clock::current() {
  static const SystemClock systemClock;
  const auto* clock = ScopedClock::inPlace();
  return clock ? clock->get() : systemClock;
}

}  // namespace FrameworkUtility
