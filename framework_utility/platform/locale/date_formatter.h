#pragma once

#include <framework_utility/platform/foundation/values/date.h>
#include <framework_utility/platform/locale/locale.h>
#include <framework_utility/platform/locale/time_zone.h>

#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

/// Dates as text, after a pattern of Unicode's date fields: "yyyy:MM:dd HH:mm:ss". Calendar and
/// digits are those of the locale: in "th_TH" the year 2024 is written 2567.
///
/// The pattern above, in the common locales with the digits 0 to 9 and the Gregorian calendar, is
/// written and read in well under a microsecond. All else asks the locale data: a few hundred
/// microseconds for the first date of a pattern and locale on a thread, some ten for the next.
///
/// Thread: any.
class DateFormatter {
 public:
  /// Selector: setDateFormat:, setLocale:, setTimeZone:
  explicit DateFormatter(std::string pattern,
                         Locale locale = Locale::current(LocaleCategory::dates),
                         TimeZone zone = TimeZone::current());

  /// Fractions that the pattern does not show are cut. Empty when the pattern is none.
  /// Selector: stringFromDate:
  std::string stringFromDate(Date date) const;

  /// The moment that is written so, exactly: the whole text is used, each field is in range, there
  /// is no 30 February, no leap second and no time that the zone leaps over. Letters of either
  /// case and digits of any script do. Of a time that the zone repeats it is the later one.
  /// Selector: dateFromString:
  std::optional<Date> dateFromString(std::string_view text) const;

 private:
  std::string stringByLocale(Date date) const;
  std::optional<Date> dateByLocale(std::string_view text) const;

  std::string pattern_;
  Locale locale_;
  TimeZone zone_;
  bool isPlain_;  // the pattern and kind of locale that need no locale data
};

}  // namespace FrameworkUtility
