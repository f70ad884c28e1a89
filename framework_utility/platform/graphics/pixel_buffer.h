#pragma once

#include <framework_utility/platform/foundation/values/data.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace FrameworkUtility::detail {

/// What one picture's pixels may take: 536 megapixels of 8-bit RGBA. Files that announce more are
/// damaged or hostile.
inline constexpr std::size_t maximumPixelBytes = std::size_t{1} << 31;

/// Memory for pixels that somebody is about to write: never filled with zeros first, aligned to 64
/// bytes, on huge pages where it is large. Movable; the finished bytes become a `Data` in place.
class PixelBuffer {
 public:
  /// Absent when a side is 0, the product exceeds `maximumPixelBytes`, or memory is short.
  static std::optional<PixelBuffer> allocate(std::size_t rows, std::size_t bytesPerRow);

  std::size_t bytesPerRow() const { return bytesPerRow_; }
  std::size_t size() const { return rows_ * bytesPerRow_; }
  std::uint8_t* data() { return bytes_.get(); }
  const std::uint8_t* data() const { return bytes_.get(); }
  std::uint8_t* row(std::size_t y) { return bytes_.get() + y * bytesPerRow_; }

  /// The bytes, which nobody may write any more.
  Data share() &&;

 private:
  struct Free {
    void operator()(std::uint8_t* bytes) const;
  };

  PixelBuffer() = default;

  std::unique_ptr<std::uint8_t[], Free> bytes_;
  std::size_t rows_ = 0;
  std::size_t bytesPerRow_ = 0;
};

}  // namespace FrameworkUtility::detail
