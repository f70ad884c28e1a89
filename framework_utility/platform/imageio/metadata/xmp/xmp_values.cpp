#include <framework_utility/platform/imageio/metadata/xmp/xmp_values.h>

#include <framework_utility/platform/imageio/metadata/values/rational.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// The whole text as a finite decimal number.
std::optional<double> parseDecimal(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc{} || stop != end || !std::isfinite(number)) {
    return std::nullopt;
  }
  return number;
}

/// Takes a text apart from the left.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool isAtEnd() const { return rest_.empty(); }
  bool nextIsOneOf(std::string_view characters) const {
    return !rest_.empty() && characters.find(rest_.front()) != std::string_view::npos;
  }
  /// The next character when it is one of these, else 0.
  char take(std::string_view characters) {
    if (!nextIsOneOf(characters)) return 0;
    return std::exchange(rest_, rest_.substr(1)).front();
  }
  /// Everything up to the first character that is none of these.
  std::string_view takeAll(std::string_view characters) {
    const std::size_t length = std::min(rest_.find_first_not_of(characters), rest_.size());
    return std::exchange(rest_, rest_.substr(length)).substr(0, length);
  }
  /// Exactly `count` digits.
  std::optional<int> digits(std::size_t count) {
    int number = 0;
    for (; count != 0; --count) {
      const char digit = take("0123456789");
      if (digit == 0) return std::nullopt;
      number = 10 * number + (digit - '0');
    }
    return number;
  }
  /// Two digits below `limit`.
  std::optional<int> pair(int limit) {
    const std::optional<int> number = digits(2);
    return number && *number < limit ? number : std::nullopt;
  }

 private:
  std::string_view rest_;
};

std::string formatted(const char* format, auto... arguments) {
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), format, arguments...);
  return buffer.data();
}

bool scanTime(Scanner& scanner, XmpDate& date) {
  const std::optional<int> hour = scanner.pair(24);
  if (!hour || scanner.take(":") == 0) return false;
  const std::optional<int> minute = scanner.pair(60);
  std::optional<int> second = 0;
  if (minute && scanner.take(":") != 0) {
    second = scanner.pair(60);
    if (scanner.take(".") != 0) scanner.takeAll("0123456789");
  }
  if (!minute || !second) return false;
  date.time =
      std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second);
  return true;
}

bool scanOffset(Scanner& scanner, XmpDate& date) {
  if (scanner.take("Z") != 0) {
    date.offset = std::chrono::minutes(0);
    return true;
  }
  const char sign = scanner.take("+-");
  if (sign == 0) return true;
  const std::optional<int> hours = scanner.pair(24);
  scanner.take(":");
  const std::optional<int> minutes = scanner.pair(60);
  if (!hours || !minutes) return false;
  const std::chrono::minutes offset = std::chrono::hours(*hours) + std::chrono::minutes(*minutes);
  date.offset = sign == '-' ? -offset : offset;
  return true;
}

}  // namespace

std::optional<double> parseXmpRational(std::string_view text) {
  text = trimmed(text);
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) return parseDecimal(text);
  const std::optional<double> numerator = parseDecimal(text.substr(0, slash));
  const std::optional<double> denominator = parseDecimal(text.substr(slash + 1));
  if (!numerator || !denominator || *denominator == 0) return std::nullopt;
  const double number = *numerator / *denominator;
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<std::string> xmpRational(double number) {
  const auto fraction = nearestRational(number, std::numeric_limits<std::int32_t>::max());
  if (!fraction) return std::nullopt;
  return std::to_string(fraction->numerator) + '/' + std::to_string(fraction->denominator);
}

std::optional<XmpCoordinate> parseXmpCoordinate(std::string_view text) {
  constexpr std::string_view digits = "0123456789", decimals = "0123456789.";
  Scanner scanner(trimmed(text));
  const std::optional<double> degrees = parseDecimal(scanner.takeAll(digits));
  if (!degrees || scanner.take(",") == 0) return std::nullopt;
  const std::optional<double> minutes = parseDecimal(scanner.takeAll(decimals));
  std::optional<double> seconds = 0;
  if (scanner.take(",") != 0) seconds = parseDecimal(scanner.takeAll(decimals));
  const char hemisphere = scanner.take("NSEW");
  if (!minutes || !seconds || hemisphere == 0 || !scanner.isAtEnd()) return std::nullopt;
  const double value = *degrees + *minutes / 60 + *seconds / 3600;
  return value <= 180 ? std::optional(XmpCoordinate{value, hemisphere}) : std::nullopt;
}

std::optional<std::string> xmpCoordinate(const XmpCoordinate& coordinate) {
  if (!(coordinate.degrees >= 0 && coordinate.degrees <= 180)) return std::nullopt;
  constexpr std::int64_t unitsPerMinute = 1'000'000, unitsPerDegree = 60 * unitsPerMinute;
  // Rounded once, as a whole, so that minutes never read 60; no %f, whose point the locale chooses.
  const std::int64_t units = std::llround(coordinate.degrees * unitsPerDegree);
  const auto degrees = static_cast<int>(units / unitsPerDegree);
  const auto minutes = static_cast<int>(units % unitsPerDegree / unitsPerMinute);
  const auto fraction = static_cast<int>(units % unitsPerMinute);
  return formatted("%d,%d.%06d%c", degrees, minutes, fraction, coordinate.hemisphere);
}

std::optional<XmpDate> parseXmpDate(std::string_view text) {
  Scanner scanner(trimmed(text));
  const std::optional<int> year = scanner.digits(4);
  const char separator = scanner.take("-:");
  const std::optional<int> month = scanner.pair(13);
  if (!year || separator == 0 || !month || scanner.take({&separator, 1}) == 0) return std::nullopt;
  const std::optional<int> day = scanner.pair(32);
  if (!day) return std::nullopt;
  XmpDate date{.day = std::chrono::year(*year) / *month / *day};
  if (!date.day.ok()) return std::nullopt;
  if (scanner.take("T ") != 0 && !(scanTime(scanner, date) && scanOffset(scanner, date))) {
    return std::nullopt;
  }
  return scanner.isAtEnd() ? std::optional(date) : std::nullopt;
}

std::string exifDay(const XmpDate& date) {
  return formatted("%04d:%02u:%02u", static_cast<int>(date.day.year()),
                   static_cast<unsigned>(date.day.month()), static_cast<unsigned>(date.day.day()));
}

std::string exifTime(const XmpDate& date) {
  const std::chrono::hh_mm_ss time(date.time.value_or(std::chrono::seconds(0)));
  return formatted("%02d:%02d:%02d", static_cast<int>(time.hours().count()),
                   static_cast<int>(time.minutes().count()),
                   static_cast<int>(time.seconds().count()));
}

std::string xmpDate(const XmpDate& date) {
  std::string text = exifDay(date);
  text[4] = text[7] = '-';
  if (date.time) text += 'T' + exifTime(date);
  if (date.time && date.offset) {
    const auto minutes = static_cast<int>(std::abs(date.offset->count()));
    text += minutes == 0 ? "Z"
                         : formatted("%c%02d:%02d", date.offset->count() < 0 ? '-' : '+',
                                     minutes / 60, minutes % 60);
  }
  return text;
}

XmpDate inUniversalTime(const XmpDate& date) {
  if (!date.time || !date.offset) return date;
  const auto moment = std::chrono::sys_days(date.day) + *date.time - *date.offset;
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  return {.day = day, .time = moment - day, .offset = std::chrono::minutes(0)};
}

}  // namespace FrameworkUtility::detail
