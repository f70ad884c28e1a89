#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace FrameworkUtility::detail {

/// An open file descriptor, or none (-1); closed at the end.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }

  bool isOpen() const { return number_ >= 0; }
  int get() const { return number_; }
  int release() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};

/// Makes a system call again while a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

}  // namespace FrameworkUtility::detail
