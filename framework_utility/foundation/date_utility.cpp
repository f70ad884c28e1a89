#include <framework_utility/foundation/date_utility.h>

#include <framework_utility/platform/locale/date_formatter.h>

namespace FrameworkUtility::dates {
namespace {

constexpr char photoPattern[] = "yyyy:MM:dd HH:mm:ss";

}  // namespace

std::string utcFormatted(Date date) { return DateFormatter(photoPattern).stringFromDate(date); }

std::optional<Date> dateFromTextInUTC(std::string_view text) {
  const DateFormatter formatter(photoPattern, Locale::current(LocaleCategory::dates),
                                TimeZone::utc());
  return formatter.dateFromString(text);
}

}  // namespace FrameworkUtility::dates
