#pragma once

#include <framework_utility/platform/foundation/date.h>

#include <optional>
#include <string>
#include <string_view>

/// Operations on dates. Calendar and clock are the user's.
///
/// Thread: any.
namespace FrameworkUtility::dates {

/// "yyyy:MM:dd HH:mm:ss", the form of dates in photos, in the user's time zone, calendar and
/// digits. Not UTC in spite of the name, which is meant.
/// Selector: utcFormatted
std::string utcFormatted(Date date);

/// The moment that `text` names in the form of `utcFormatted`, but read as UTC: what
/// `utcFormatted` wrote comes back shifted by the zone's offset, which is meant. Absent unless the
/// whole text is such a date, strictly.
std::optional<Date> dateFromTextInUTC(std::string_view text);

}  // namespace FrameworkUtility::dates
