#pragma once

#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/foundation/values/object.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace FrameworkUtility {

/// An identifier of 16 bytes, as archives hold it; `newUUIDString` makes one's text.
///
/// Thread: any.
class NSUUID final : public NSObject, public NSCoding {
 public:
  using Bytes = std::array<std::byte, 16>;

  /// Selector: initWithUUIDBytes:
  explicit NSUUID(const Bytes& bytes) : bytes_(bytes) {}

  /// Selector: getUUIDBytes:
  Bytes uuidBytes() const { return bytes_; }

  std::string_view className() const override;
  void encodeWithCoder(NSKeyedArchiver& coder) const override;

 private:
  Bytes bytes_;
};

}  // namespace FrameworkUtility
