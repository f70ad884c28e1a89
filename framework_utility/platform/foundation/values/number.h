#pragma once

#include <framework_utility/platform/foundation/values/description.h>

#include <bit>
#include <compare>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>

namespace FrameworkUtility {

/// What a number is made from: bool, the integers and the two floating types. Characters are text.
template <class T>
concept Numeric = std::same_as<T, float> || std::same_as<T, double> ||
    (std::integral<T> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
     !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>);

/// A number that remembers what it was made from, so that 6 is written as 6 and 6.0 as 6.0. Numbers
/// compare by value, exactly whatever their kinds and sizes: 1, 1.0 and true are equal. One that is
/// not a number (NaN) is neither equal to any nor less nor greater.
///
/// Thread: any.
class Number {
 public:
  enum class Kind : std::uint8_t { boolean, integer, unsignedInteger, real };

  constexpr Number(Numeric auto value);

  constexpr Kind kind() const { return kind_; }
  /// Whether it was made from a `float`, so that four bytes hold it; its kind is `real`.
  constexpr bool isSinglePrecision() const { return isSinglePrecision_; }
  bool boolValue() const;             ///< Whether it differs from 0.
  std::int64_t integerValue() const;  ///< Truncated towards zero; stops the process if that fails.
  /// Truncated towards zero; stops the process for one below 0 or above 2^64 - 1.
  std::uint64_t unsignedIntegerValue() const;
  /// The low 32 bits of the truncated value; stops the process for one that is not finite.
  std::uint32_t unsignedIntValue() const;
  double doubleValue() const;  ///< The nearest one, for an integer of more than 53 bits.

  /// Integers in decimal, real numbers as `textOfDouble` writes them, true and false as 1 and 0.
  std::string description() const;
  friend std::partial_ordering operator<=>(const Number& a, const Number& b);
  friend bool operator==(const Number& a, const Number& b) { return std::is_eq(a <=> b); }

 private:
  Kind kind_;
  bool isSinglePrecision_ = false;
  std::uint64_t bits_;
};

// Implementation details

constexpr Number::Number(Numeric auto value) {
  using T = decltype(value);
  if constexpr (std::floating_point<T>) {
    kind_ = Kind::real;
    isSinglePrecision_ = std::same_as<T, float>;
    bits_ = std::bit_cast<std::uint64_t>(static_cast<double>(value));
  } else {
    kind_ = std::same_as<T, bool>                                  ? Kind::boolean
            : std::signed_integral<T> || sizeof(T) < sizeof(bits_) ? Kind::integer
                                                                   : Kind::unsignedInteger;
    bits_ = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));  // the sign extended
  }
}

}  // namespace FrameworkUtility
