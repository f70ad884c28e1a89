#pragma once

#include <framework_utility/platform/foundation/values/date.h>
#include <framework_utility/platform/locale/locale.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

// Clock times as "2024:05:17 08:30:00", the form in photos, without the locale data.

namespace FrameworkUtility::detail {

inline constexpr std::string_view plainDatePattern = "yyyy:MM:dd HH:mm:ss";

/// Whether the locale is known to write dates with the digits 0 to 9 in the Gregorian calendar.
/// False where it is not known.
bool writesPlainDates(const Locale& locale);

/// Absent outside of the years 1583 to 9999: calendars skip days in 1582, and before it have other
/// leap years.
std::optional<std::string> plainDateText(std::chrono::sys_seconds clockTime);

enum class PlainDateReading { date, noDate, undecided };

/// The clock time in `text`; undecided for what the locale data may still know: other digits and
/// years.
PlainDateReading readPlainDate(std::string_view text, std::chrono::sys_seconds& clockTime);

}  // namespace FrameworkUtility::detail
