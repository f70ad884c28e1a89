#include <framework_utility/platform/graphics/cg_context.h>

#include <framework_utility/platform/graphics/gradient_fill.h>
#include <framework_utility/platform/graphics/gradient_kernels.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/pixel_word.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace FrameworkUtility {

namespace {

constexpr std::size_t bytesPerPixel = 4;

bool canHold(CGImageAlphaInfo alphaInfo) {
  return alphaInfo == CGImageAlphaInfo::premultipliedLast ||
         alphaInfo == CGImageAlphaInfo::noneSkipLast;
}

CGImageLayout tightLayout(std::size_t width, std::size_t height, CGImageAlphaInfo alphaInfo) {
  CGImageLayout layout;
  layout.width = width;
  layout.height = height;
  layout.bytesPerRow = width * bytesPerPixel;
  layout.alphaInfo = alphaInfo;
  return layout;
}

}  // namespace

/// The pixels: the caller's, or own ones that are shared with an image once one is made.
class CGContext::Memory {
 public:
  explicit Memory(std::span<std::byte> memory)
      : pixels_(reinterpret_cast<std::uint8_t*>(memory.data())), isClear_(false) {}
  explicit Memory(detail::PixelBuffer&& buffer)
      : own_(std::move(buffer)), pixels_(own_->data()), isClear_(true) {}

  /// Whether the pixels are still to be cleared, which is put off while it may not be needed.
  bool isClear() const { return isClear_; }

  /// Pixels to be overwritten as a whole, or else to be drawn upon; null when memory is short.
  std::uint8_t* pixels(const CGImageLayout& layout, bool overwritesAll) {
    if (shared_) {
      own_ = detail::PixelBuffer::allocate(layout.height, layout.bytesPerRow);
      if (!own_) return nullptr;
      if (!overwritesAll) std::memcpy(own_->data(), shared_->data(), shared_->size());
      pixels_ = own_->data();
      shared_.reset();
    } else if (isClear_ && !overwritesAll) {
      const std::uint32_t opaque = layout.alphaInfo == CGImageAlphaInfo::noneSkipLast ? 255 : 0;
      detail::fillRun(detail::wordOf(0, 0, 0, opaque), pixels_, layout.width * layout.height);
    }
    isClear_ = false;
    return pixels_;
  }

  /// The pixels as they are now; absent when memory is short.
  std::optional<Data> share(const CGImageLayout& layout) {
    if (shared_) return shared_;
    const std::uint8_t* const now = pixels(layout, false);
    if (own_) {
      shared_ = std::move(*own_).share();
      own_.reset();
      return shared_;
    }
    auto copy = detail::PixelBuffer::allocate(layout.height, layout.bytesPerRow);
    if (!copy) return std::nullopt;
    std::memcpy(copy->data(), now, copy->size());
    return std::move(*copy).share();
  }

 private:
  std::optional<detail::PixelBuffer> own_;
  std::optional<Data> shared_;
  std::uint8_t* pixels_;
  bool isClear_;
};

CGContext::CGContext(const CGImageLayout& layout, std::unique_ptr<Memory> memory)
    : layout_(layout), memory_(std::move(memory)) {
  ctm_.d = -1;
  ctm_.ty = static_cast<double>(layout.height);
}

CGContext::~CGContext() = default;

std::unique_ptr<CGContext> CGContext::createBitmap(std::size_t width, std::size_t height,
                                                   CGImageAlphaInfo alphaInfo) {
  if (!canHold(alphaInfo) || width > detail::maximumPixelBytes) return nullptr;
  auto pixels = detail::PixelBuffer::allocate(height, width * bytesPerPixel);
  if (!pixels) return nullptr;
  return std::unique_ptr<CGContext>(new CGContext(tightLayout(width, height, alphaInfo),
                                                  std::make_unique<Memory>(std::move(*pixels))));
}

std::unique_ptr<CGContext> CGContext::createBitmapWithData(std::span<std::byte> memory,
                                                           const CGImageLayout& layout) {
  CGImageLayout known = tightLayout(layout.width, layout.height, layout.alphaInfo);
  known.bytesPerRow = layout.bytesPerRow;
  known.byteOrder = layout.byteOrder;
  const bool isKnown = layout == known && canHold(layout.alphaInfo) &&
                       (layout.byteOrder == CGImageByteOrder::unspecified ||
                        layout.byteOrder == CGImageByteOrder::big32);
  if (!isKnown || layout.width == 0 || layout.height == 0 ||
      layout.width > layout.bytesPerRow / bytesPerPixel ||
      layout.height > memory.size() / layout.bytesPerRow) {
    return nullptr;
  }
  return std::unique_ptr<CGContext>(new CGContext(layout, std::make_unique<Memory>(memory)));
}

void CGContext::concatCTM(const AffineTransform& t) {
  const AffineTransform& m = ctm_;
  ctm_ = {m.a * t.a + m.c * t.b, m.b * t.a + m.d * t.b,          m.a * t.c + m.c * t.d,
          m.b * t.c + m.d * t.d, m.a * t.tx + m.c * t.ty + m.tx, m.b * t.tx + m.d * t.ty + m.ty};
}

void CGContext::drawLinearGradient(const CGGradient& gradient, Point start, Point end) {
  draw(detail::GradientFill::linear(gradient, start, end, ctm_), gradient.isOpaque());
}

void CGContext::drawRadialGradient(const CGGradient& gradient, Point center, double radius) {
  draw(detail::GradientFill::radial(gradient, center, radius, ctm_), gradient.isOpaque());
}

void CGContext::draw(const std::optional<detail::GradientFill>& fill, bool isOpaque) {
  if (!fill) return;
  const bool overwritesAll = isOpaque || memory_->isClear();
  std::uint8_t* const pixels = memory_->pixels(layout_, overwritesAll);
  if (!pixels) return;
  const detail::PixelRows rows{pixels, layout_.width, layout_.height, layout_.bytesPerRow};
  if (overwritesAll) {
    fill->fill(rows);
    return;
  }
  std::vector<std::uint8_t> above(layout_.width * bytesPerPixel);
  for (std::size_t y = 0; y < layout_.height; ++y) {
    fill->fillRow(y, above.data(), layout_.width);
    detail::blendOver(above.data(), rows.row(y), layout_.width);
  }
}

std::optional<CGImage> CGContext::createImage() {
  const std::optional<Data> pixels = memory_->share(layout_);
  return pixels ? CGImage::create(layout_, CGColorSpace::createDeviceRGB(), *pixels) : std::nullopt;
}

}  // namespace FrameworkUtility
