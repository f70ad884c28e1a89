#include <framework_utility/platform/foundation/values/number_text.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace FrameworkUtility {
namespace {

constexpr double smallestPlain = 1e-4;
constexpr double largestPlain =
    9007199254740992;  // 2^53: from here on not every integer is a double

std::string textOfNonFinite(double value) {
  return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
}

}  // namespace

std::string textOfDouble(double value) {
  if (!std::isfinite(value)) return textOfNonFinite(value);
  const double magnitude = std::abs(value);
  const bool plain = magnitude == 0 || (magnitude >= smallestPlain && magnitude <= largestPlain);

  std::array<char, 32> buffer;
  char* const begin = buffer.data();
  const auto [end, error] =
      std::to_chars(begin, begin + buffer.size(), value,
                    plain ? std::chars_format::fixed : std::chars_format::scientific);
  std::string text(begin, end);
  if (plain && text.find('.') == std::string::npos) text += ".0";
  return text;
}

std::string textOfDouble(double value, int decimals) {
  if (!std::isfinite(value)) return textOfNonFinite(value);
  constexpr std::size_t longestWhole = std::numeric_limits<double>::max_exponent10 + 3;
  std::string text(longestWhole + static_cast<std::size_t>(decimals), '\0');
  char* const begin = text.data();
  const auto [end, error] =
      std::to_chars(begin, begin + text.size(), value, std::chars_format::fixed, decimals);
  text.resize(static_cast<std::size_t>(end - begin));
  return text;
}

}  // namespace FrameworkUtility
