#pragma once

#include <framework_utility/platform/foundation/values/date.h>

#include <optional>

namespace FrameworkUtility::detail {

// Property lists and archives write a date as seconds since the start of 2001, UTC. Both give
// nothing for dates 291,000 years away from it or more: counting from 1970 instead must still fit
// in a `Date`.

std::optional<double> secondsSinceReferenceDate(Date date);
std::optional<Date> dateWithSecondsSinceReferenceDate(double seconds);

}  // namespace FrameworkUtility::detail
