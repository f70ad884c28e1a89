#include <framework_utility/platform/locale/plain_date_text.h>

#include <algorithm>
#include <array>

namespace FrameworkUtility::detail {
namespace {

using namespace std::chrono;

constexpr sys_days firstDay = year{1583} / 1 / 1;
constexpr sys_days dayBehindLast = year{10000} / 1 / 1;

/// Sorted. Languages that are written with the digits 0 to 9 in every country.
constexpr std::string_view plainLanguages[] = {
    "bg", "ca", "cs", "da", "de", "el", "en", "es", "et", "eu", "fi", "fr", "ga", "gl",
    "he", "hr", "hu", "id", "is", "it", "ja", "ko", "lt", "lv", "ms", "nb", "nl", "nn",
    "no", "pl", "pt", "ro", "ru", "sk", "sl", "sv", "tr", "uk", "vi", "zh"};

/// Countries with a calendar of their own, in any language.
constexpr std::string_view otherCalendars[] = {"AF", "IR", "SA", "TH"};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

void write(char* at, unsigned digits, unsigned value) {
  for (unsigned i = digits; i-- > 0; value /= 10) at[i] = static_cast<char>('0' + value % 10);
}

unsigned read(std::string_view digits) {
  unsigned value = 0;
  for (const char c : digits) value = value * 10 + static_cast<unsigned>(c - '0');
  return value;
}

bool hasShape(std::string_view text) {
  constexpr std::string_view shape = "0000:00:00 00:00:00";
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                    [](char c, char kind) { return kind == '0' ? isDigit(c) : c == kind; });
}

}  // namespace

bool writesPlainDates(const Locale& locale) {
  const std::string_view identifier = locale.identifier();
  if (identifier == "en_US_POSIX") return true;
  const std::string_view language = locale.languageCode();
  if (!std::binary_search(std::begin(plainLanguages), std::end(plainLanguages), language)) {
    return false;
  }
  if (identifier.size() == 2) return true;
  return identifier.size() == 5 && std::find(std::begin(otherCalendars), std::end(otherCalendars),
                                             identifier.substr(3)) == std::end(otherCalendars);
}

std::optional<std::string> plainDateText(sys_seconds clockTime) {
  const sys_days day = floor<days>(clockTime);
  if (day < firstDay || day >= dayBehindLast) return std::nullopt;
  const year_month_day date(day);
  const hh_mm_ss time(clockTime - day);
  std::string text = "yyyy:MM:dd HH:mm:ss";
  write(&text[0], 4, static_cast<unsigned>(static_cast<int>(date.year())));
  write(&text[5], 2, static_cast<unsigned>(date.month()));
  write(&text[8], 2, static_cast<unsigned>(date.day()));
  write(&text[11], 2, static_cast<unsigned>(time.hours().count()));
  write(&text[14], 2, static_cast<unsigned>(time.minutes().count()));
  write(&text[17], 2, static_cast<unsigned>(time.seconds().count()));
  return text;
}

PlainDateReading readPlainDate(std::string_view text, sys_seconds& clockTime) {
  if (!hasShape(text)) {
    // Only a year beyond 9999 or digits of another script can still make a date.
    const bool isShortAscii = text.size() <= plainDatePattern.size() &&
                              std::all_of(text.begin(), text.end(),
                                          [](char c) { return static_cast<signed char>(c) >= 0; });
    return isShortAscii ? PlainDateReading::noDate : PlainDateReading::undecided;
  }
  const year_month_day date{year{static_cast<int>(read(text.substr(0, 4)))},
                            month{read(text.substr(5, 2))}, day{read(text.substr(8, 2))}};
  const hours hour{read(text.substr(11, 2))};
  const minutes minute{read(text.substr(14, 2))};
  const seconds second{read(text.substr(17, 2))};
  if (date.year() < year{1583}) return PlainDateReading::undecided;
  if (!date.ok() || hour >= days{1} || minute >= hours{1} || second >= minutes{1}) {
    return PlainDateReading::noDate;
  }
  clockTime = sys_days(date) + hour + minute + second;
  return PlainDateReading::date;
}

}  // namespace FrameworkUtility::detail
