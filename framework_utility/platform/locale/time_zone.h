#pragma once

#include <framework_utility/platform/foundation/values/date.h>
#include <framework_utility/platform/foundation/values/description.h>
#include <framework_utility/platform/foundation/values/scoped.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

namespace detail {
class ZoneRules;
}

/// The clock time of a place, past and future changes included. A cheap value.
///
/// Thread: any.
class TimeZone {
 public:
  static TimeZone utc();
  /// "Europe/Paris", "UTC", "GMT+5:30" (east of Greenwich); absent for a name that is not known.
  /// Selector: timeZoneWithName:
  static std::optional<TimeZone> withName(std::string_view name);

  /// The user's: what `TZ` holds, a name or an offset such as "JST-9", else the system's; UTC when
  /// that is none, as is a rule spelt out ("CET-1CEST,M3.5.0,M10.5.0/3"). It follows a change of
  /// either.
  /// Selector: localTimeZone
  static TimeZone current();

  const std::string& name() const& { return name_; }
  std::string name() const&& { return name_; }
  /// How far the clock is ahead of Greenwich's at `date`.
  /// Selector: secondsFromGMTForDate:
  std::chrono::seconds secondsFromGMTForDate(Date date) const;

  std::string description() const { return name_; }
  friend bool operator==(const TimeZone& a, const TimeZone& b) { return a.name_ == b.name_; }

 private:
  TimeZone(std::string name, std::shared_ptr<const detail::ZoneRules> rules);

  std::string name_;
  std::shared_ptr<const detail::ZoneRules> rules_;  // null for UTC, which loads no data
};

/// In the place of the user's.
using ScopedTimeZone = Scoped<TimeZone>;

}  // namespace FrameworkUtility
