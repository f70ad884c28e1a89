#include <framework_utility/platform/locale/byte_count_formatter.h>

#include <framework_utility/platform/locale/icu_text.h>

#include <unicode/measunit.h>
#include <unicode/numberformatter.h>

#include <cmath>
#include <utility>

namespace FrameworkUtility {
namespace {

struct Unit {
  const char* englishWord;  ///< The locale data spell KB with a small k and shorten "byte".
  const char* identifier;   ///< In the locale data.
  int fractionDigits;
};

constexpr Unit units[] = {{"bytes", "byte", 0},  {"KB", "kilobyte", 0}, {"MB", "megabyte", 1},
                          {"GB", "gigabyte", 2}, {"TB", "terabyte", 2}, {"PB", "petabyte", 2},
                          {"EB", "exabyte", 2}};

/// The power of 1024 in the size of `count`, 0 to 6.
std::size_t powerOf1024(std::int64_t count) {
  // Negated unsigned, the lowest number has a size too.
  std::uint64_t size = static_cast<std::uint64_t>(count);
  if (count < 0) size = 0 - size;
  std::size_t power = 0;
  for (; size >= 1024; size /= 1024) ++power;
  return power;
}

}  // namespace

ByteCountFormatter::ByteCountFormatter(Locale locale) : locale_(std::move(locale)) {}

std::string ByteCountFormatter::stringFromByteCount(std::int64_t count) const {
  using icu::number::NumberFormatter, icu::number::Precision;
  const std::size_t power = powerOf1024(count);
  const Unit& unit = units[power];
  const double amount = std::ldexp(static_cast<double>(count), -10 * static_cast<int>(power));

  const bool english = locale_.languageCode() == "en";
  // English without a country does not group its digits; people read them grouped.
  const icu::Locale locale =
      locale_ == Locale("C") ? icu::Locale::getUS() : detail::icuLocale(locale_);
  auto format = NumberFormatter::withLocale(locale)
                    .precision(Precision::maxFraction(unit.fractionDigits))
                    .roundingMode(UNUM_ROUND_HALFEVEN);
  UErrorCode status = U_ZERO_ERROR;
  if (!english) {
    format = format.unit(icu::MeasureUnit::forIdentifier(unit.identifier, status))
                 .unitWidth(power == 0 ? UNUM_UNIT_WIDTH_FULL_NAME : UNUM_UNIT_WIDTH_SHORT);
  }
  std::string text = detail::utf8Text(format.formatDouble(amount, status).toString(status));
  if (U_FAILURE(status)) return {};
  if (!english) return text;
  const bool single = count == 1 || count == -1;
  return text + ' ' + (single ? "byte" : unit.englishWord);
}

}  // namespace FrameworkUtility
