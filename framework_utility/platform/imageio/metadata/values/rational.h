#pragma once

#include <cstdint>
#include <optional>

namespace FrameworkUtility::detail {

struct Rational {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;

  bool operator==(const Rational&) const = default;
};

/// The fraction with the smallest terms that gives `value` again as a double, 28/5 for 5.6, or the
/// nearest one when the terms would exceed `limit` (at most 2^32 - 1). Absent for what is not
/// finite and for a magnitude above `limit`.
std::optional<Rational> nearestRational(double value, std::int64_t limit);

}  // namespace FrameworkUtility::detail
