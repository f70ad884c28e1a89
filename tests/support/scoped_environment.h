#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace FrameworkUtility::testing {

/// Sets a variable of the environment while it lives; null removes it.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* variable, const char* value) : variable_(variable) {
    if (const char* previous = std::getenv(variable)) previous_ = previous;
    set(value);
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment() { set(previous_ ? previous_->c_str() : nullptr); }

 private:
  void set(const char* value) const {
    if (value) {
      setenv(variable_, value, 1);
    } else {
      unsetenv(variable_);
    }
  }

  const char* variable_;
  std::optional<std::string> previous_;
};

}  // namespace FrameworkUtility::testing
