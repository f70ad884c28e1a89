#include <framework_utility/platform/locale/date_formatter.h>

#include <framework_utility/platform/locale/icu_text.h>
#include <framework_utility/platform/locale/icu_time_zone.h>
#include <framework_utility/platform/locale/plain_date_text.h>

#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>

#include <cmath>
#include <utility>

namespace FrameworkUtility {
namespace {

using std::chrono::floor;

constexpr std::size_t longestText = 1000;  // of a pattern, and of what can be a date

/// Null when the pattern is none. The formatter that the thread made last is kept: to make one
/// takes longer than ten dates.
icu::SimpleDateFormat* icuFormat(const std::string& pattern, const Locale& locale,
                                 const TimeZone& zone) {
  struct Made {
    std::string pattern;
    Locale locale;
    std::unique_ptr<icu::SimpleDateFormat> format;
  };
  thread_local std::optional<Made> last;

  if (pattern.size() > longestText) return nullptr;
  if (!last || last->pattern != pattern || last->locale != locale) {
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(detail::icuText(pattern),
                                                          detail::icuLocale(locale), status);
    if (U_FAILURE(status)) return nullptr;
    format->setLenient(false);
    last.emplace(Made{pattern, locale, std::move(format)});
  }
  std::unique_ptr<icu::TimeZone> icuZone = detail::icuTimeZone(zone.name());
  if (!icuZone) return nullptr;
  last->format->adoptTimeZone(icuZone.release());
  return last->format.get();
}

icu::UnicodeString formatted(const icu::SimpleDateFormat& format, UDate date) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text;
  format.format(date, text, nullptr, status);
  return U_FAILURE(status) ? icu::UnicodeString() : text;
}

icu::UnicodeString withAsciiDigits(const icu::UnicodeString& text) {
  icu::UnicodeString result;
  for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
    const UChar32 character = text.char32At(at);
    const std::int32_t digit = u_charDigitValue(character);
    result.append(digit < 0 ? character : static_cast<UChar32>('0' + digit));
  }
  return result;
}

}  // namespace

DateFormatter::DateFormatter(std::string pattern, Locale locale, TimeZone zone)
    : pattern_(std::move(pattern)),
      locale_(std::move(locale)),
      zone_(std::move(zone)),
      isPlain_(pattern_ == detail::plainDatePattern && detail::writesPlainDates(locale_)) {}

std::string DateFormatter::stringFromDate(Date date) const {
  if (isPlain_) {
    const auto clockTime = floor<std::chrono::seconds>(date) + zone_.secondsFromGMTForDate(date);
    if (auto text = detail::plainDateText(clockTime)) return *std::move(text);
  }
  return stringByLocale(date);
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const {
  if (isPlain_) {
    std::chrono::sys_seconds clockTime;
    const auto reading = detail::readPlainDate(text, clockTime);
    if (reading == detail::PlainDateReading::noDate) return std::nullopt;
    // Only a zone without changes gives the moment of a clock time by itself.
    if (reading == detail::PlainDateReading::date && zone_ == TimeZone::utc()) return clockTime;
  }
  return dateByLocale(text);
}

std::string DateFormatter::stringByLocale(Date date) const {
  const auto* format = icuFormat(pattern_, locale_, zone_);
  if (!format) return {};
  const auto milliseconds = floor<std::chrono::milliseconds>(date.time_since_epoch());
  return detail::utf8Text(formatted(*format, static_cast<double>(milliseconds.count())));
}

std::optional<Date> DateFormatter::dateByLocale(std::string_view text) const {
  if (text.size() > longestText) return std::nullopt;
  const auto* format = icuFormat(pattern_, locale_, zone_);
  if (!format) return std::nullopt;
  const icu::UnicodeString read = detail::icuText(text);
  icu::ParsePosition position;
  const double milliseconds = format->parse(read, position);
  if (position.getErrorIndex() >= 0 || position.getIndex() != read.length()) return std::nullopt;

  // The data's own strictness lets leading blanks, short years and "2e3" pass. A date is strict
  // when it is written as it was read.
  const icu::UnicodeString written = formatted(*format, milliseconds);
  if (withAsciiDigits(written).caseCompare(withAsciiDigits(read), U_FOLD_CASE_DEFAULT) != 0) {
    return std::nullopt;
  }

  constexpr double longestDistance = 9.2e15;  // in milliseconds; a date counts microseconds
  if (!(std::abs(milliseconds) < longestDistance)) return std::nullopt;
  return Date(std::chrono::milliseconds(std::llround(milliseconds)));
}

}  // namespace FrameworkUtility
