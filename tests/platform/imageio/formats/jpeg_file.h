#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <tests/platform/graphics/pictures.h>
#include <tests/platform/imageio/formats/format_coding.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::testing {

// JPEG files made of parts, and pictures to put into them.

using Bytes = std::vector<std::uint8_t>;

/// Big-endian.
std::string u16(std::size_t number);

/// Marker, length, contents.
std::string jpegSegment(unsigned marker, std::string_view contents);

struct JpegFrame {
  unsigned marker = 0xC0;
  std::size_t width = 6;
  std::size_t height = 4;
  std::size_t components = 3;
  std::size_t precision = 8;
};
std::string jpegFrame(const JpegFrame& frame = {});

/// A signature, these segments, and the beginning of a scan that has no pixels.
std::string jpegHeader(std::string_view segments);

/// A bitmap of 8-bit components: `pixelAt(x, y)` gives those of a pixel.
template <class PixelAt>
CGImage makeImage(std::size_t width, std::size_t height, const CGColorSpace& space,
                  CGImageAlphaInfo alphaInfo, const PixelAt& pixelAt) {
  Bytes bytes;
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const Bytes pixel = pixelAt(x, y);
      bytes.insert(bytes.end(), pixel.begin(), pixel.end());
    }
  }
  const std::size_t components = bytes.size() / (width * height);
  return *CGImage::create(layoutOf(width, height, components, alphaInfo), space, dataOf(bytes));
}

/// Of one colour.
CGImage plainImage(std::size_t width, std::size_t height, const CGColorSpace& space,
                   CGImageAlphaInfo alphaInfo, const Bytes& pixel);

/// Red, green, blue and white quarters: top left, top right, bottom left, bottom right.
CGImage quarters(std::size_t width, std::size_t height);

/// The colours near the four corners in reading order, "rgbw" for `quarters`: 'r', 'g', 'b', 'w' or
/// 'k' for black, whichever is near; '?' for another.
std::string cornersOf(const CGImage& image);

/// The components of one pixel of an image with 8 bits each.
Bytes pixelOf(const CGImage& image, std::size_t x, std::size_t y);

Data jpegOf(const CGImage& image, const Dictionary& properties = {});

}  // namespace FrameworkUtility::testing
