#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace FrameworkUtility::testing {

/// What stands between the spaces and the ends of lines.
inline std::vector<std::string> words(const std::string& text) {
  std::istringstream in(text);
  return {std::istream_iterator<std::string>(in), {}};
}

}  // namespace FrameworkUtility::testing
