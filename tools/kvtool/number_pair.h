#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace kvtool {

/// Reads exactly two finite numbers with a comma between: "48.2082,-16.3738".
std::optional<std::pair<double, double>> numberPair(std::string_view text);

}  // namespace kvtool
