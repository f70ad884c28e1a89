#pragma once

namespace FrameworkUtility::detail {

/// Into 0...1 by comparisons, so that NaN stays NaN; std::clamp does not take NaN.
constexpr double clampedToUnit(double value) { return value < 0 ? 0 : value > 1 ? 1 : value; }

}  // namespace FrameworkUtility::detail
