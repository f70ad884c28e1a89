#include <framework_utility/platform/foundation/number_text.h>

#include <array>
#include <charconv>
#include <cmath>

namespace FrameworkUtility {
namespace {

constexpr double smallestPlain = 1e-4;
constexpr double largestPlain =
    9007199254740992;  // 2^53: from here on not every integer is a double

}  // namespace

std::string textOfDouble(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
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

}  // namespace FrameworkUtility
