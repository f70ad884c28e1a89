#include <framework_utility/platform/foundation/number.h>

#include <framework_utility/platform/foundation/number_text.h>
#include <framework_utility/platform/foundation/stop.h>

#include <cmath>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr double twoTo32 = 4294967296.0;
constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

/// Whether a double is the very same number as an integer: no rounding to double on the way, which
/// would make 2^53 + 1 equal to 2^53.
bool isSame(double real, std::int64_t integer) {
  return real >= -twoTo63 && real < twoTo63 && std::trunc(real) == real &&
         static_cast<std::int64_t>(real) == integer;
}

bool isSame(double real, std::uint64_t integer) {
  return real >= 0 && real < twoTo64 && std::trunc(real) == real &&
         static_cast<std::uint64_t>(real) == integer;
}

}  // namespace

bool Number::boolValue() const {
  return kind_ == Kind::real ? std::bit_cast<double>(bits_) != 0 : bits_ != 0;
}

std::int64_t Number::integerValue() const {
  if (kind_ == Kind::real) {
    const double value = std::bit_cast<double>(bits_);
    if (!(value >= -twoTo63 && value < twoTo63))
      stop("A number that is not finite, or too large, was asked for its integer value.");
    return static_cast<std::int64_t>(value);
  }
  if (kind_ == Kind::unsignedInteger && !std::in_range<std::int64_t>(bits_))
    stop("A number that is too large was asked for its integer value.");
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
  if (!std::isfinite(value))
    stop("A number that is not finite was asked for its unsigned integer value.");
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

bool operator==(const Number& a, const Number& b) {
  using Kind = Number::Kind;
  if (b.kind_ == Kind::real) {
    if (a.kind_ != Kind::real) return b == a;
    return std::bit_cast<double>(a.bits_) == std::bit_cast<double>(b.bits_);
  }
  const bool bIsUnsigned = b.kind_ == Kind::unsignedInteger;
  if (a.kind_ == Kind::real) {
    const double real = std::bit_cast<double>(a.bits_);
    return bIsUnsigned ? isSame(real, b.bits_) : isSame(real, static_cast<std::int64_t>(b.bits_));
  }
  // The bits of a negative integer are those of a large unsigned one.
  const bool aIsUnsigned = a.kind_ == Kind::unsignedInteger;
  return a.bits_ == b.bits_ && (aIsUnsigned == bIsUnsigned || std::in_range<std::int64_t>(a.bits_));
}

}  // namespace FrameworkUtility
