#pragma once

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <string>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define FRAMEWORK_UTILITY_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define FRAMEWORK_UTILITY_SANITIZED 1
#endif
#endif

namespace FrameworkUtility::testing {

/// What some work took.
struct Expense {
  bool isDone = false;     ///< Else it crashed, or took a minute of processor time.
  std::size_t memory = 0;  ///< In bytes, at most, above what was there when it began.
};

#ifdef FRAMEWORK_UTILITY_SANITIZED
constexpr bool isMeasured = false;
#else
constexpr bool isMeasured = true;
#endif

/// "VmRSS:" or "VmHWM:" of this process, in bytes.
inline std::size_t status(const std::string& name) {
  std::ifstream file("/proc/self/status");
  for (std::string word; file >> word;) {
    if (std::size_t kilobytes = 0; word == name && file >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

inline void limit(int resource, rlim_t amount) {
  const rlimit both{amount, amount};
  setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

/// In the child.
inline std::size_t memoryOf(const std::function<void()>& preparation,
                            const std::function<void()>& work) {
  constexpr rlim_t seconds = 60, enough = rlim_t{4} << 30;
  limit(RLIMIT_CPU, seconds);
  limit(RLIMIT_CORE, 0);
  if (isMeasured) limit(RLIMIT_AS, enough);  // what goes astray must not take the machine along
  preparation();
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins here
  const std::size_t before = status("VmRSS:");
  work();
  const std::size_t peak = status("VmHWM:");
  return isMeasured && peak > before ? peak - before : 0;
}

/// Does `work` behind `preparation`, whose expense does not count, in a process of its own. Memory
/// is not measured under sanitizers, which need a multiple of it for themselves: that is said, and
/// the expense is 0.
inline Expense expenseOf(const std::function<void()>& preparation,
                         const std::function<void()>& work) {
  if (!isMeasured) std::puts("memory is not measured under a sanitizer");
  std::fflush(nullptr);
  int ends[2];
  if (pipe(ends) != 0) return {};
  const pid_t child = fork();
  if (child == 0) {
    const std::size_t memory = memoryOf(preparation, work);
    _exit(write(ends[1], &memory, sizeof memory) == sizeof memory ? 0 : 1);
  }
  close(ends[1]);
  Expense expense;
  expense.isDone =
      child > 0 && read(ends[0], &expense.memory, sizeof expense.memory) == sizeof expense.memory;
  close(ends[0]);
  int end = 0;
  if (child > 0) waitpid(child, &end, 0);
  return expense;
}

}  // namespace FrameworkUtility::testing
