#include <framework_utility/platform/imageio/metadata/values/rational.h>

#include <algorithm>
#include <cmath>

namespace FrameworkUtility::detail {

/// The convergents of the continued fraction, each of which is the best approximation with terms as
/// small as its own; at the limit the best of those in between (Knuth, The Art of Computer
/// Programming 4.5.3).
std::optional<Rational> nearestRational(double value, std::int64_t limit) {
  const double magnitude = std::abs(value);
  if (!(magnitude <= static_cast<double>(limit))) return std::nullopt;
  Rational before{0, 1};
  Rational last{1, 0};
  const auto error = [&](const Rational& r) {
    return std::abs(static_cast<double>(r.numerator) / static_cast<double>(r.denominator) -
                    magnitude);
  };
  for (double rest = magnitude;;) {
    const double whole = std::floor(rest);
    // No step is larger than the limit, and no term than its square: all fits 64 bits.
    auto step = static_cast<std::int64_t>(std::min(whole, static_cast<double>(limit)));
    if (last.numerator > 0) step = std::min(step, (limit - before.numerator) / last.numerator);
    if (last.denominator > 0) {
      step = std::min(step, (limit - before.denominator) / last.denominator);
    }
    const Rational next{step * last.numerator + before.numerator,
                        step * last.denominator + before.denominator};
    if (static_cast<double>(step) < whole) {
      if (step > 0 && error(next) < error(last)) last = next;
      break;
    }
    before = last;
    last = next;
    rest -= whole;
    if (rest == 0 || error(last) == 0) break;
    rest = 1 / rest;
  }
  if (value < 0) last.numerator = -last.numerator;
  return last;
}

}  // namespace FrameworkUtility::detail
