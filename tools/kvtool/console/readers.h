#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvtool {

/// How the text of an argument is read, and to where.
struct Reader {
  std::string shape;     ///< What the help shows: "PIXELS"; empty for a flag, which has no text.
  std::string expected;  ///< "1 to 8", where a message says "--orientation is 1 to 8, not ...".
  std::function<bool(const std::string&)> read;  ///< False for a text that is not as expected.
  bool takesMany = false;
};

// Each reads to `target`, which must live as long as the reader.

Reader flag(bool& target);
/// One or more.
Reader fileNames(std::vector<std::string>& target);
/// Not empty.
Reader anyName(std::string& target, std::string shape);
Reader anyName(std::optional<std::string>& target, std::string shape);
Reader anyText(std::optional<std::string>& target, std::string shape);
Reader oneOf(std::string& target, std::vector<std::string> names);
Reader wholeNumber(int& target, int least, int most, std::string shape);
Reader wholeNumber(std::optional<int>& target, int least, int most, std::string shape);
/// A whole number above 0 with one of these units behind it: {"KiB", 1024}.
Reader amount(std::uint64_t& target, std::vector<std::pair<std::string, std::uint64_t>> units,
              std::string shape);
Reader finiteNumber(double& target, std::string shape);
/// From 0 to 1.
Reader fraction(std::optional<double>& target, std::string shape);
/// Two finite numbers, both above `bound`: "300,200".
Reader numberPair(std::pair<double, double>& target, double bound, std::string shape);

/// Reads from `least` to `most` finite numbers with commas between: "48.2082,-16.3738". Empty for
/// anything else.
std::vector<double> numbersIn(std::string_view text, std::size_t least, std::size_t most);

}  // namespace kvtool
