#include <framework_utility/platform/foundation/values/stop.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace FrameworkUtility {

void stop(std::string_view message) {
  // One call, so that lines of several threads do not mix.
  const std::string line = std::string(message) + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
  std::abort();
}

}  // namespace FrameworkUtility
