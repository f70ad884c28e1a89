#pragma once

#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace FrameworkUtility::detail {

/// A bitmap context's pixels: the caller's, or own ones that are shared with an image once one is
/// made.
class BitmapMemory {
 public:
  explicit BitmapMemory(std::span<std::byte> memory)
      : pixels_(reinterpret_cast<std::uint8_t*>(memory.data())), isClear_(false) {}
  explicit BitmapMemory(PixelBuffer&& buffer)
      : own_(std::move(buffer)), pixels_(own_->data()), isClear_(true) {}

  /// Whether the pixels are still to be cleared, which is put off while it may not be needed.
  bool isClear() const { return isClear_; }

  /// Pixels to be overwritten as a whole, or else to be drawn upon; null when memory is short.
  std::uint8_t* pixels(const CGImageLayout& layout, bool overwritesAll);

  /// The pixels as they are now; absent when memory is short.
  std::optional<Data> share(const CGImageLayout& layout);

 private:
  std::optional<PixelBuffer> own_;
  std::optional<Data> shared_;
  std::uint8_t* pixels_;
  bool isClear_;
};

}  // namespace FrameworkUtility::detail
