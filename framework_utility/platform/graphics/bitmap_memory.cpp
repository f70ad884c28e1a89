#include <framework_utility/platform/graphics/bitmap_memory.h>

#include <framework_utility/platform/graphics/gradient_kernels.h>
#include <framework_utility/platform/graphics/pixel_word.h>

#include <cstring>
#include <utility>

namespace FrameworkUtility::detail {

std::uint8_t* BitmapMemory::pixels(const CGImageLayout& layout, bool overwritesAll) {
  if (shared_) {
    own_ = PixelBuffer::allocate(layout.height, layout.bytesPerRow);
    if (!own_) return nullptr;
    if (!overwritesAll) std::memcpy(own_->data(), shared_->data(), shared_->size());
    pixels_ = own_->data();
    shared_.reset();
  } else if (isClear_ && !overwritesAll) {
    const std::uint32_t opaque = layout.alphaInfo == CGImageAlphaInfo::noneSkipLast ? 255 : 0;
    fillRun(wordOf(0, 0, 0, opaque), pixels_, layout.width * layout.height);
  }
  isClear_ = false;
  return pixels_;
}

std::optional<Data> BitmapMemory::share(const CGImageLayout& layout) {
  if (shared_) return shared_;
  const std::uint8_t* const now = pixels(layout, false);
  if (own_) {
    shared_ = std::move(*own_).share();
    own_.reset();
    return shared_;
  }
  auto copy = PixelBuffer::allocate(layout.height, layout.bytesPerRow);
  if (!copy) return std::nullopt;
  std::memcpy(copy->data(), now, copy->size());
  return std::move(*copy).share();
}

}  // namespace FrameworkUtility::detail
