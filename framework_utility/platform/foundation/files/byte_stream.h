#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/foundation/values/data.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace FrameworkUtility::detail {

/// A source's bytes one after the other, a window at a time.
class ByteStream {
 public:
  explicit ByteStream(ByteSource source, std::uint64_t offset = 0,
                      std::size_t windowSize = std::size_t{256} << 10)
      : source_(std::move(source)), offset_(offset), windowSize_(windowSize) {}

  /// The bytes at hand, at least one unless the source has ended. Good until the next call.
  std::span<const std::byte> ahead() {
    if (rest_.empty()) {
      window_ = source_.bytes(offset_, windowSize_);
      offset_ += window_.size();
      rest_ = window_;
    }
    return rest_;
  }
  /// Takes so many of those at hand.
  void take(std::size_t count) { rest_ = rest_.subspan(count); }
  /// Leaves out so many behind those at hand, which are taken too.
  void skip(std::uint64_t count) {
    rest_ = {};
    offset_ += count;
  }

 private:
  ByteSource source_;
  std::uint64_t offset_;  // of what follows the window
  std::size_t windowSize_;
  Data window_;
  std::span<const std::byte> rest_;
};

}  // namespace FrameworkUtility::detail
