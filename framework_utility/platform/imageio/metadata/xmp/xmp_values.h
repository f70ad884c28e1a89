#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

// The texts of single XMP values (XMP specification part 1, 8.2, and part 2, for the EXIF schema).
// A text that is not wholly of its form is absent.

/// "9/5" and "1.8" alike. Absent for a denominator of 0 and for what is not finite.
std::optional<double> parseXmpRational(std::string_view text);
/// "9/5": a fraction of 32-bit integers that is the number, or as near as EXIF could store it.
/// Absent for numbers that are too large or not finite.
std::optional<std::string> xmpRational(double number);

/// Degrees without sign, and the hemisphere: 'N', 'S', 'E' or 'W'.
struct XmpCoordinate {
  double degrees = 0;
  char hemisphere = 'N';
};

/// "48,51.504N" or "48,51,30N".
std::optional<XmpCoordinate> parseXmpCoordinate(std::string_view text);
/// Minutes with six decimals, which is 2 mm.
std::optional<std::string> xmpCoordinate(const XmpCoordinate& coordinate);

/// A date, and a time of day as the clock on the wall shows it.
struct XmpDate {
  std::chrono::year_month_day day{};
  std::optional<std::chrono::seconds> time{};    // since midnight; fractions are dropped
  std::optional<std::chrono::minutes> offset{};  // of the zone, east positive
};

/// "2024-05-01", "2024-05-01T12:30", "2024-05-01T12:30:15.5+02:00", and the same with the colons
/// and the blank of an EXIF date, which many writers use.
std::optional<XmpDate> parseXmpDate(std::string_view text);
std::string xmpDate(const XmpDate& date);
/// "2024:05:01".
std::string exifDay(const XmpDate& date);
/// "12:30:15"; midnight when there is no time.
std::string exifTime(const XmpDate& date);
/// The same moment with offset 0; without an offset, or without a time, the date as it is.
XmpDate inUniversalTime(const XmpDate& date);

}  // namespace FrameworkUtility::detail
