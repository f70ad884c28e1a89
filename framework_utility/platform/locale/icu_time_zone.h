#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string_view>

namespace FrameworkUtility::detail {

/// The rules of a zone, shared by the values that name it.
class ZoneRules {
 public:
  explicit ZoneRules(std::unique_ptr<const icu::TimeZone> zone) : zone_(std::move(zone)) {}
  const icu::TimeZone& zone() const { return *zone_; }

 private:
  std::unique_ptr<const icu::TimeZone> zone_;
};

/// The zone of this name; null when it is not known.
std::unique_ptr<icu::TimeZone> icuTimeZone(std::string_view name);

}  // namespace FrameworkUtility::detail
