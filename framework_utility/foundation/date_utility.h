#pragma once

#include <framework_utility/platform/foundation/values/date.h>

#include <optional>
#include <string>
#include <string_view>

/// Operations on dates. Calendar and clock are the user's, for files too, as the apps' photos have
/// it: under a locale with another calendar or other digits (th_TH, fa_IR, ar_EG) a photo gets the
/// year 2567 for 2024, which no other program reads so, and its own 2024 reads as 1481. A program
/// that writes files for others puts `ScopedLocale posix(Locale("POSIX"))` in the user's place.
///
/// Thread: any.
namespace FrameworkUtility::dates {

/// "yyyy:MM:dd HH:mm:ss", the form of dates in photos, in the user's time zone, calendar and
/// digits. Not UTC in spite of the name: EXIF's dates are local times.
/// Selector: utcFormatted
std::string utcFormatted(Date date);

/// The moment that `text` names in the form of `utcFormatted`, but read as UTC: what
/// `utcFormatted` wrote comes back shifted by the zone's offset, for the texts of photos bear no
/// zone. Absent unless the whole text is such a date, strictly.
std::optional<Date> dateFromTextInUTC(std::string_view text);

}  // namespace FrameworkUtility::dates
