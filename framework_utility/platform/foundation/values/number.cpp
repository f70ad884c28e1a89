#include <framework_utility/platform/foundation/values/number.h>

#include <framework_utility/platform/foundation/values/number_text.h>
#include <framework_utility/platform/foundation/values/stop.h>

#include <cmath>
#include <limits>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr double twoTo32 = 4294967296.0;
constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

/// Without rounding the integer to a double on the way, which would make 2^53 + 1 equal to 2^53.
/// The integers of the type end below `end`.
template <class Integer>
std::partial_ordering compare(double real, Integer integer, double end) {
  if (std::isnan(real)) return std::partial_ordering::unordered;
  if (real >= end) return std::partial_ordering::greater;
  if (real < static_cast<double>(std::numeric_limits<Integer>::min())) {
    return std::partial_ordering::less;
  }
  const auto whole = static_cast<Integer>(real);
  if (whole != integer) return whole <=> integer;
  return real <=> std::trunc(real);
}

std::partial_ordering reversed(std::partial_ordering order) {
  if (std::is_lt(order)) return std::partial_ordering::greater;
  return std::is_gt(order) ? std::partial_ordering::less : order;
}

}  // namespace

bool Number::boolValue() const {
  return kind_ == Kind::real ? std::bit_cast<double>(bits_) != 0 : bits_ != 0;
}

std::int64_t Number::integerValue() const {
  if (kind_ == Kind::real) {
    const double value = std::bit_cast<double>(bits_);
    if (!(value >= -twoTo63 && value < twoTo63)) {
      stop("A number that is not finite, or too large, was asked for its integer value.");
    }
    return static_cast<std::int64_t>(value);
  }
  if (kind_ == Kind::unsignedInteger && !std::in_range<std::int64_t>(bits_)) {
    stop("A number that is too large was asked for its integer value.");
  }
  return static_cast<std::int64_t>(bits_);
}

std::uint64_t Number::unsignedIntegerValue() const {
  if (kind_ == Kind::real) {
    const double value = std::trunc(std::bit_cast<double>(bits_));
    if (value >= 0 && value < twoTo64) return static_cast<std::uint64_t>(value);
  } else if (kind_ == Kind::unsignedInteger || std::in_range<std::int64_t>(bits_)) {
    return bits_;
  }
  stop("A number that is negative, not finite or too large was asked for its unsigned value.");
}

std::uint32_t Number::unsignedIntValue() const {
  if (kind_ != Kind::real) return static_cast<std::uint32_t>(bits_);
  const double value = std::bit_cast<double>(bits_);
  if (!std::isfinite(value)) {
    stop("A number that is not finite was asked for its unsigned integer value.");
  }
  return static_cast<std::uint32_t>(
      static_cast<std::int64_t>(std::fmod(std::trunc(value), twoTo32)));
}

double Number::doubleValue() const {
  switch (kind_) {
    case Kind::real:
      return std::bit_cast<double>(bits_);
    case Kind::unsignedInteger:
      return static_cast<double>(bits_);
    default:
      return static_cast<double>(static_cast<std::int64_t>(bits_));
  }
}

std::string Number::description() const {
  switch (kind_) {
    case Kind::real:
      return textOfDouble(std::bit_cast<double>(bits_));
    case Kind::unsignedInteger:
      return std::to_string(bits_);
    default:
      return std::to_string(static_cast<std::int64_t>(bits_));
  }
}

std::partial_ordering operator<=>(const Number& a, const Number& b) {
  using Kind = Number::Kind;
  if (b.kind_ == Kind::real) {
    if (a.kind_ != Kind::real) return reversed(b <=> a);
    return std::bit_cast<double>(a.bits_) <=> std::bit_cast<double>(b.bits_);
  }
  const bool bIsUnsigned = b.kind_ == Kind::unsignedInteger;
  if (a.kind_ == Kind::real) {
    const double real = std::bit_cast<double>(a.bits_);
    return bIsUnsigned ? compare(real, b.bits_, twoTo64)
                       : compare(real, static_cast<std::int64_t>(b.bits_), twoTo63);
  }
  // The bits of a negative integer are those of a large unsigned one.
  const bool aIsNegative =
      a.kind_ != Kind::unsignedInteger && !std::in_range<std::int64_t>(a.bits_);
  const bool bIsNegative = !bIsUnsigned && !std::in_range<std::int64_t>(b.bits_);
  if (aIsNegative != bIsNegative) {
    return aIsNegative ? std::partial_ordering::less : std::partial_ordering::greater;
  }
  return a.bits_ <=> b.bits_;
}

}  // namespace FrameworkUtility
