#include <tools/kvtool/number_pair.h>

#include <charconv>
#include <cmath>

namespace kvtool {
namespace {

std::optional<double> number(std::string_view text) {
  double value = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (problem != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace

std::optional<std::pair<double, double>> numberPair(std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const std::optional<double> first = number(text.substr(0, comma));
  const std::optional<double> second = number(text.substr(comma + 1));
  if (!first || !second) return std::nullopt;
  return std::pair(*first, *second);
}

}  // namespace kvtool
