#include <bench/paired.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

double seconds(const std::function<void()>& work, int repeats) {
  const auto start = Clock::now();
  for (int i = 0; i < repeats; ++i) work();
  return std::chrono::duration<double>(Clock::now() - start).count() / repeats;
}

int repeatsFor(const std::function<void()>& work) {
  constexpr double turn = 0.002;
  work();  // warm
  return std::clamp(static_cast<int>(turn / std::max(seconds(work, 1), 1e-9)), 1, 100'000);
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// A line of /proc/self/status in bytes.
long statusLine(std::string_view key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(key)) return std::strtol(line.c_str() + key.size(), nullptr, 10) * 1024;
  }
  return 0;
}

}  // namespace

void compare(std::string_view title, const std::vector<Contender>& contenders, int turns) {
  std::vector<int> repeats;
  for (const Contender& contender : contenders) repeats.push_back(repeatsFor(contender.work));
  std::vector<std::vector<double>> times(contenders.size());
  for (int turn = 0; turn < turns; ++turn) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      times[i].push_back(seconds(contenders[i].work, repeats[i]));
    }
  }

  std::printf("%.*s\n", static_cast<int>(title.size()), title.data());
  const double first = median(times[0]);
  for (std::size_t i = 0; i < contenders.size(); ++i) {
    const double own = median(times[i]);
    std::printf("  %-44s %10.2f us   %6.2f\n", contenders[i].name.c_str(), own * 1e6, own / first);
  }
}

long peakGrowth(const std::function<void()>& work) {
  std::ofstream("/proc/self/clear_refs") << "5";  // resets the peak
  const long before = statusLine("VmRSS:");
  work();
  return statusLine("VmHWM:") - before;
}

}  // namespace bench
