#pragma once

#include <cmath>
#include <cstdint>

namespace FrameworkUtility::detail {

/// Dots an inch from dots a metre, which a file holds as a whole number: the whole number of inches
/// that it came from, where there is one (2834 and 2835 are 72), else the exact quotient.
inline double dotsPerInch(std::uint32_t perMetre) {
  constexpr double inch = 0.0254;
  const double exact = perMetre * inch;
  const double whole = std::round(exact);
  return std::abs(whole / inch - perMetre) < 1 ? whole : exact;
}

}  // namespace FrameworkUtility::detail
