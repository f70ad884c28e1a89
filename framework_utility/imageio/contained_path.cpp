#include <framework_utility/imageio/contained_path.h>

#include <algorithm>

namespace FrameworkUtility::detail {

bool staysInFolder(std::string_view relativePath) {
  int depth = 0;
  while (!relativePath.empty()) {
    const std::size_t end = std::min(relativePath.find('/'), relativePath.size());
    const std::string_view component = relativePath.substr(0, end);
    if (component == "..") {
      if (--depth < 0) return false;
    } else if (!component.empty() && component != ".") {
      ++depth;
    }
    relativePath.remove_prefix(std::min(end + 1, relativePath.size()));
  }
  return true;
}

}  // namespace FrameworkUtility::detail
