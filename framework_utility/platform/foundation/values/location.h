#pragma once

#include <framework_utility/platform/foundation/values/date.h>

namespace FrameworkUtility {

/// A place on the earth at a time. A designated initialiser makes one:
/// `CLLocation{.latitude = 48.2082, .longitude = 16.3738}`.
struct CLLocation {
  double latitude = 0;            ///< Degrees, south negative.
  double longitude = 0;           ///< Degrees, west negative.
  double altitude = 0;            ///< Metres above sea level.
  double horizontalAccuracy = 0;  ///< Metres.
  Date timestamp = {};

  bool operator==(const CLLocation&) const = default;
};

}  // namespace FrameworkUtility
