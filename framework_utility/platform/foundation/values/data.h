#pragma once

#include <framework_utility/platform/foundation/values/description.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace FrameworkUtility {

/// Bytes that never change, shared by all copies: a copy costs one reference. Where bytes are only
/// looked at during a call, a parameter is `std::span<const std::byte>`, which takes a `Data` too.
///
/// Thread: any.
class Data {
 public:
  Data() = default;                                 ///< No bytes.
  explicit Data(std::span<const std::byte> bytes);  ///< Copies.
  explicit Data(std::vector<std::byte>&& bytes);    ///< Takes over without a copy.

  /// Refers to bytes that `owner` keeps alive and that nobody changes.
  static Data withBytesNoCopy(std::span<const std::byte> bytes, std::shared_ptr<const void> owner);

  const std::byte* data() const { return bytes_.data(); }
  std::size_t size() const { return bytes_.size(); }
  bool empty() const { return bytes_.empty(); }
  const std::byte* begin() const { return data(); }
  const std::byte* end() const { return data() + size(); }

  friend bool operator==(const Data& a, const Data& b);  ///< The same bytes.

 private:
  std::span<const std::byte> bytes_;
  std::shared_ptr<const void> owner_;
};

}  // namespace FrameworkUtility
