#include <framework_utility/color/even_locations.h>

#include <algorithm>

namespace FrameworkUtility::detail {

std::vector<double> evenLocations(std::size_t count) {
  std::vector<double> locations(count);
  const double step = 1 / (static_cast<double>(count) - 1);
  for (std::size_t i = 1; i < count; ++i) locations[i] = std::min(locations[i - 1] + step, 1.0);
  return locations;
}

}  // namespace FrameworkUtility::detail
