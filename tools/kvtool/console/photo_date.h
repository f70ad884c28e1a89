#pragma once

#include <framework_utility/platform/foundation/values/date.h>

#include <optional>
#include <string>
#include <string_view>

namespace kvtool {

/// A moment as photos hold it: what the camera's clock showed, and, where that is known, how far
/// the clock was ahead of Greenwich's.
struct PhotoDate {
  FrameworkUtility::Date clock = {};  ///< As if the clock stood in Greenwich; whole seconds.
  std::optional<std::string> offset = std::nullopt;  ///< "+02:00".
};

/// Reads exactly "2024-05-06T07:08:09", with "+02:00" or "Z" behind it or nothing.
std::optional<PhotoDate> photoDateFrom(std::string_view text);

/// The same form, without "Z": "+00:00" is what files hold.
std::string textOf(const PhotoDate& date);

/// Whether it is like "+02:00", of a zone that there could be.
bool isOffset(std::string_view text);

}  // namespace kvtool
