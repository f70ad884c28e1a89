#include <framework_utility/platform/foundation/values/reference_date.h>

#include <chrono>
#include <cmath>
#include <cstdint>

namespace FrameworkUtility::detail {
namespace {

constexpr Date epoch = std::chrono::sys_days{std::chrono::year{2001} / std::chrono::January / 1};
constexpr Date::duration reach{9'200'000'000'000'000'000};

}  // namespace

std::optional<double> secondsSinceReferenceDate(Date date) {
  if (date <= epoch - reach || date >= epoch + reach) return std::nullopt;
  return std::chrono::duration<double>(date - epoch).count();
}

std::optional<Date> dateWithSecondsSinceReferenceDate(double seconds) {
  const double microseconds = std::round(seconds * 1e6);
  if (!(std::abs(microseconds) < static_cast<double>(reach.count()))) return std::nullopt;
  return epoch + Date::duration(static_cast<std::int64_t>(microseconds));
}

}  // namespace FrameworkUtility::detail
