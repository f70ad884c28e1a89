#include <framework_utility/platform/locale/time_zone.h>

#include <framework_utility/platform/locale/icu_text.h>
#include <framework_utility/platform/locale/icu_time_zone.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr std::string_view utcName = "UTC";
constexpr char systemZoneLink[] = "/etc/localtime";

/// The part of a path behind "zoneinfo/", else all of it.
std::string_view withoutZoneFolder(std::string_view path) {
  constexpr std::string_view folder = "/zoneinfo/";
  const auto at = path.find(folder);
  return at == path.npos ? path : path.substr(at + folder.size());
}

/// "GMT+0900" for "JST-9" or "<+09>-9": the form of `TZ` that gives an offset without daylight
/// saving. There, unlike everywhere else, west is positive. Empty for another form.
std::string nameOfFixedOffset(std::string_view text) {
  std::size_t at = 0;
  const auto isAt = [&](auto test) {
    return at < text.size() && test(static_cast<unsigned char>(text[at]));
  };
  const auto isDigit = [](int c) { return std::isdigit(c) != 0; };
  const auto isLetter = [](int c) { return std::isalpha(c) != 0; };
  if (text.starts_with('<')) {
    at = text.find('>');
    if (at == text.npos) return {};
    ++at;
  } else {
    while (isAt(isLetter)) ++at;
    if (at < 3) return {};
  }
  const bool east = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;

  std::string digits;
  for (int field = 0; field < 3; ++field) {
    if (field > 0 && !isAt([](int c) { return c == ':'; })) break;
    if (field > 0) ++at;
    std::string two;
    for (; isAt(isDigit) && two.size() < 2; ++at) two += text[at];
    if (two.empty()) return {};
    digits.append(2 - two.size(), '0').append(two);
  }
  if (at != text.size()) return {};
  if (digits.size() == 2) digits += "00";
  return (east ? "GMT+" : "GMT-") + digits;
}

TimeZone zoneOfSetting(std::string_view setting) {
  if (setting.starts_with(':')) setting.remove_prefix(1);
  const std::string offset = nameOfFixedOffset(setting);
  const auto zone = TimeZone::withName(offset.empty() ? withoutZoneFolder(setting) : offset);
  return zone.value_or(TimeZone::utc());
}

/// The zone whose file is the system's clock setting, found by the file's bytes: for systems where
/// it is a copy and no link.
TimeZone zoneOfSystemFile() {
  std::error_code failure;
  if (!std::filesystem::exists(systemZoneLink, failure)) return TimeZone::utc();
  const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
  icu::UnicodeString name;
  if (zone) zone->getID(name);
  return TimeZone::withName(detail::utf8Text(name)).value_or(TimeZone::utc());
}

}  // namespace

std::unique_ptr<icu::TimeZone> detail::icuTimeZone(std::string_view name) {
  constexpr std::size_t longestName = 100;
  if (name.size() > longestName) return nullptr;
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(icuText(name)));
  return zone && *zone != icu::TimeZone::getUnknown() ? std::move(zone) : nullptr;
}

TimeZone::TimeZone(std::string name, std::shared_ptr<const detail::ZoneRules> rules)
    : name_(std::move(name)), rules_(std::move(rules)) {}

TimeZone TimeZone::utc() { return {std::string(utcName), nullptr}; }

std::optional<TimeZone> TimeZone::withName(std::string_view name) {
  if (name == utcName || name == "Etc/UTC") return utc();
  auto zone = detail::icuTimeZone(name);
  if (!zone) return std::nullopt;
  return TimeZone(std::string(name), std::make_shared<detail::ZoneRules>(std::move(zone)));
}

TimeZone TimeZone::current() {
  if (const TimeZone* zone = ScopedTimeZone::inPlace()) return *zone;

  // What the answer depends on, to make a zone only when it changes.
  std::string source;
  const char* setting = std::getenv("TZ");
  if (setting) {
    source = setting;
  } else {
    std::error_code failure;
    source = std::filesystem::read_symlink(systemZoneLink, failure).string();
  }

  static std::mutex mutex;
  static std::optional<std::pair<std::string, TimeZone>> known;
  const std::lock_guard lock(mutex);
  if (!known || known->first != source) {
    known.emplace(source, setting || !source.empty() ? zoneOfSetting(source) : zoneOfSystemFile());
  }
  return known->second;
}

std::chrono::seconds TimeZone::secondsFromGMTForDate(Date date) const {
  if (!rules_) return std::chrono::seconds{0};
  const auto moment = std::chrono::floor<std::chrono::milliseconds>(date.time_since_epoch());
  std::int32_t standard = 0, daylight = 0;
  UErrorCode status = U_ZERO_ERROR;
  rules_->zone().getOffset(static_cast<double>(moment.count()), false, standard, daylight, status);
  if (U_FAILURE(status)) return std::chrono::seconds{0};
  return std::chrono::seconds{(standard + daylight) / 1000};
}

}  // namespace FrameworkUtility
