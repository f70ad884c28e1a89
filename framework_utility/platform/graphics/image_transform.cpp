#include <framework_utility/platform/graphics/image_transform.h>

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

const std::uint8_t* pixelsOf(const CGImage& image) {
  return reinterpret_cast<const std::uint8_t*>(image.pixels().data());
}

/// Where the upright picture's pixels come from: its top left one, and how far apart in the source
/// those of a row and those of a column are, in bytes.
struct Walk {
  std::ptrdiff_t start = 0;
  std::ptrdiff_t right = 0;
  std::ptrdiff_t down = 0;
};

Walk walkFor(const CGImageLayout& layout, std::size_t exifOrientation) {
  const auto pixel = static_cast<std::ptrdiff_t>(layout.bitsPerPixel / 8);
  const auto row = static_cast<std::ptrdiff_t>(layout.bytesPerRow);
  const std::ptrdiff_t lastColumn = static_cast<std::ptrdiff_t>(layout.width - 1) * pixel;
  const std::ptrdiff_t lastRow = static_cast<std::ptrdiff_t>(layout.height - 1) * row;
  switch (exifOrientation) {
    case 2:
      return {lastColumn, -pixel, row};
    case 3:
      return {lastRow + lastColumn, -pixel, -row};
    case 4:
      return {lastRow, pixel, -row};
    case 5:
      return {0, row, pixel};
    case 6:
      return {lastRow, -row, pixel};
    case 7:
      return {lastRow + lastColumn, -row, -pixel};
    case 8:
      return {lastColumn, row, -pixel};
    default:
      return {0, pixel, row};
  }
}

/// Where rows become columns, in blocks: few columns, for the rows of the source that they come
/// from may all fall into one set of the cache, and as many rows as use up the lines read for them.
template <std::size_t pixelBytes>
void movePixels(const std::uint8_t* source, const Walk& walk, const PixelSize& size,
                PixelBuffer& target) {
  constexpr std::size_t blockHeight = 64;
  const bool isTurned = std::abs(walk.right) != static_cast<std::ptrdiff_t>(pixelBytes);
  const std::size_t blockWidth = isTurned ? 8 : size.width;
  for (std::size_t top = 0; top < size.height; top += blockHeight) {
    const std::size_t bottom = std::min(top + blockHeight, size.height);
    for (std::size_t left = 0; left < size.width; left += blockWidth) {
      const std::size_t right = std::min(left + blockWidth, size.width);
      for (std::size_t y = top; y < bottom; ++y) {
        const std::uint8_t* from = source + walk.start +
                                   static_cast<std::ptrdiff_t>(y) * walk.down +
                                   static_cast<std::ptrdiff_t>(left) * walk.right;
        std::uint8_t* to = target.row(y) + left * pixelBytes;
        for (std::size_t x = left; x < right; ++x) {
          std::memcpy(to, from, pixelBytes);
          to += pixelBytes;
          from += walk.right;
        }
      }
    }
  }
}

void movePixels(std::size_t pixelBytes, const std::uint8_t* source, const Walk& walk,
                const PixelSize& size, PixelBuffer& target) {
  switch (pixelBytes) {
    case 1:
      return movePixels<1>(source, walk, size, target);
    case 2:
      return movePixels<2>(source, walk, size, target);
    case 3:
      return movePixels<3>(source, walk, size, target);
    case 4:
      return movePixels<4>(source, walk, size, target);
    case 5:
      return movePixels<5>(source, walk, size, target);
    case 6:
      return movePixels<6>(source, walk, size, target);
    case 8:
      return movePixels<8>(source, walk, size, target);
    case 10:
      return movePixels<10>(source, walk, size, target);
    default:
      break;  // no layout has another size
  }
}

}  // namespace

std::optional<CGImage> uprightImage(const CGImage& image, std::size_t exifOrientation) {
  if (exifOrientation < 2 || exifOrientation > 8) return image;
  CGImageLayout layout = image.layout();
  const Walk walk = walkFor(layout, exifOrientation);
  if (exifOrientation >= 5) std::swap(layout.width, layout.height);
  const std::size_t pixelBytes = layout.bitsPerPixel / 8;
  if (layout.width > maximumPixelBytes) return std::nullopt;
  layout.bytesPerRow = layout.width * pixelBytes;
  std::optional<PixelBuffer> target = PixelBuffer::allocate(layout.height, layout.bytesPerRow);
  if (!target) return std::nullopt;
  movePixels(pixelBytes, pixelsOf(image), walk, {layout.width, layout.height}, *target);
  // An alpha mask has no space, and none is looked at.
  return CGImage::create(layout, image.colorSpace().value_or(CGColorSpace::createDeviceGray()),
                         std::move(*target).share());
}

}  // namespace FrameworkUtility::detail
