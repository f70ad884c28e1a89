#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Keeps the compiler from dropping a result.
template <class T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

/// One way to do a piece of work.
struct Contender {
  std::string name;
  std::function<void()> work;
};

/// Runs the contenders in turns, so that a noisy moment of the machine meets them all, and prints
/// each one's median time and its ratio to the first one's. Short work is repeated until a turn
/// takes about two milliseconds.
void compare(std::string_view title, const std::vector<Contender>& contenders, int turns = 41);

/// By how many bytes the process's memory grew at most while `work` ran.
long peakGrowth(const std::function<void()>& work);

}  // namespace bench
