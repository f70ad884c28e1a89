#include <framework_utility/platform/ui/geometry_text.h>

#include <framework_utility/plane/number_list.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

namespace FrameworkUtility {
namespace {

/// The numbers that stand where `form` has "#".
template <std::size_t count>
std::optional<std::array<double, count>> numbersIn(std::string_view text, std::string_view form) {
  std::array<double, count> numbers{};
  std::size_t found = 0;
  const auto skipBlanks = [&] {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  };
  for (const char expected : form) {
    skipBlanks();
    if (expected == '#') {
      const auto [end, error] =
          std::from_chars(text.data(), text.data() + text.size(), numbers[found++]);
      if (error != std::errc()) return std::nullopt;
      text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    } else {
      if (!text.starts_with(expected)) return std::nullopt;
      text.remove_prefix(1);
    }
  }
  skipBlanks();
  return text.empty() ? std::optional(numbers) : std::nullopt;
}

}  // namespace

std::string NSStringFromCGPoint(Point point) {
  return '{' + detail::numberList({point.x, point.y}) + '}';
}

std::string NSStringFromCGRect(const Rect& rect) {
  return '{' + NSStringFromCGPoint(rect.origin) + ", {" +
         detail::numberList({rect.size.width, rect.size.height}) + "}}";
}

Point CGPointFromString(std::string_view text) {
  const auto numbers = numbersIn<2>(text, "{#,#}");
  return numbers ? Point{(*numbers)[0], (*numbers)[1]} : Point{};
}

Rect CGRectFromString(std::string_view text) {
  const auto numbers = numbersIn<4>(text, "{{#,#},{#,#}}");
  if (!numbers) return {};
  const auto& [x, y, width, height] = *numbers;
  return {x, y, width, height};
}

}  // namespace FrameworkUtility
