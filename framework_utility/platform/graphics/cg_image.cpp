#include <framework_utility/platform/graphics/cg_image.h>

#include <limits>
#include <utility>

namespace FrameworkUtility {

namespace {

bool hasAlphaComponent(CGImageAlphaInfo info) { return info != CGImageAlphaInfo::none; }

/// Whether the swapping of bytes fits the pixels: the 16-bit orders swap components of 16 bits, the
/// 32-bit orders pixels of four 8-bit components.
bool byteOrderFits(const CGImageLayout& layout) {
  switch (layout.byteOrder) {
    case CGImageByteOrder::unspecified:
      return true;
    case CGImageByteOrder::little16:
    case CGImageByteOrder::big16:
      return layout.bitsPerComponent == 16;
    case CGImageByteOrder::little32:
    case CGImageByteOrder::big32:
      return layout.bitsPerComponent == 8 && layout.bitsPerPixel == 32;
  }
  return false;
}

bool layoutFits(const CGImageLayout& layout, const CGColorSpace& space, std::size_t byteCount) {
  if (layout.width == 0 || layout.height == 0 || layout.alphaInfo > CGImageAlphaInfo::alphaOnly ||
      (layout.bitsPerComponent != 8 && layout.bitsPerComponent != 16)) {
    return false;
  }
  const std::size_t colors =
      layout.alphaInfo == CGImageAlphaInfo::alphaOnly ? 0 : space.numberOfComponents();
  const std::size_t components = colors + (hasAlphaComponent(layout.alphaInfo) ? 1 : 0);
  if (layout.bitsPerPixel != components * layout.bitsPerComponent || !byteOrderFits(layout)) {
    return false;
  }
  const std::size_t bytesPerPixel = layout.bitsPerPixel / 8;
  return layout.width <= std::numeric_limits<std::size_t>::max() / bytesPerPixel &&
         layout.bytesPerRow >= layout.width * bytesPerPixel &&
         layout.height <= byteCount / layout.bytesPerRow;
}

}  // namespace

struct CGImage::Contents {
  CGImageLayout layout;
  std::optional<CGColorSpace> space;
  Data pixels;
};

CGImage::CGImage(std::shared_ptr<const Contents> contents) : contents_(std::move(contents)) {}

std::optional<CGImage> CGImage::create(const CGImageLayout& layout, const CGColorSpace& space,
                                       const Data& pixels) {
  if (!layoutFits(layout, space, pixels.size())) return std::nullopt;
  std::optional<CGColorSpace> own;
  if (layout.alphaInfo != CGImageAlphaInfo::alphaOnly) own = space;
  return CGImage(std::make_shared<const Contents>(Contents{layout, own, pixels}));
}

std::size_t CGImage::width() const { return contents_->layout.width; }

std::size_t CGImage::height() const { return contents_->layout.height; }

const CGImageLayout& CGImage::layout() const& { return contents_->layout; }

CGImageAlphaInfo CGImage::alphaInfo() const { return contents_->layout.alphaInfo; }

const std::optional<CGColorSpace>& CGImage::colorSpace() const& { return contents_->space; }

const Data& CGImage::pixels() const& { return contents_->pixels; }

}  // namespace FrameworkUtility
