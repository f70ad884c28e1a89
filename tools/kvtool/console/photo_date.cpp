#include <tools/kvtool/console/photo_date.h>

#include <fmt/core.h>

#include <array>
#include <chrono>
#include <cstddef>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// Takes a number of exactly `count` digits off the front of `text`.
std::optional<int> takeDigits(std::string_view& text, std::size_t count) {
  int number = 0;
  if (text.size() < count) return std::nullopt;
  for (const char digit : text.substr(0, count)) {
    if (digit < '0' || digit > '9') return std::nullopt;
    number = 10 * number + (digit - '0');
  }
  text.remove_prefix(count);
  return number;
}

}  // namespace

bool isOffset(std::string_view text) {
  if (!text.starts_with('+') && !text.starts_with('-')) return false;
  text.remove_prefix(1);
  const std::optional<int> hours = takeDigits(text, 2);
  if (!hours || *hours > 14 || !text.starts_with(':')) return false;
  text.remove_prefix(1);
  const std::optional<int> minutes = takeDigits(text, 2);
  return minutes && *minutes <= 59 && text.empty();
}

std::optional<PhotoDate> photoDateFrom(std::string_view text) {
  constexpr std::string_view separators = "--T::";
  std::array<int, 6> fields{};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::optional<int> field = takeDigits(text, i == 0 ? 4 : 2);
    if (!field) return std::nullopt;
    fields[i] = *field;
    if (i == separators.size()) break;
    if (!text.starts_with(separators[i])) return std::nullopt;
    text.remove_prefix(1);
  }
  const auto [year, month, day, hour, minute, second] = fields;
  const std::chrono::year_month_day calendar{std::chrono::year(year),
                                             std::chrono::month(static_cast<unsigned>(month)),
                                             std::chrono::day(static_cast<unsigned>(day))};
  if (!calendar.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  PhotoDate date{std::chrono::sys_days(calendar) + std::chrono::hours(hour) +
                 std::chrono::minutes(minute) + std::chrono::seconds(second)};
  if (text == "Z") text = "+00:00";
  if (!text.empty() && !isOffset(text)) return std::nullopt;
  if (!text.empty()) date.offset = std::string(text);
  return date;
}

std::string textOf(const PhotoDate& date) {
  const auto day = std::chrono::floor<std::chrono::days>(date.clock);
  const std::chrono::year_month_day calendar(day);
  const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(date.clock - day));
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}", static_cast<int>(calendar.year()),
                     static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                     time.hours().count(), time.minutes().count(), time.seconds().count(),
                     date.offset.value_or(""));
}

}  // namespace kvtool
