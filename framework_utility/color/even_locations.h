#pragma once

#include <cstddef>
#include <vector>

namespace FrameworkUtility::detail {

/// 0, s, s + s and so on with s = 1 / (count - 1), each sum clamped to 1. Sums and not multiples,
/// for stored gradients have them so: of seven locations the last is 0.9999999999999999. One
/// location is 0.
std::vector<double> evenLocations(std::size_t count);

}  // namespace FrameworkUtility::detail
