#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/cg_image.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::testing {

// JPEG files made of parts, and pictures to put into them.

Data dataOf(std::string_view bytes);
std::string textOf(const Data& data);

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

using Pixel = std::vector<std::uint8_t>;

/// A bitmap of 8-bit components: `pixelAt(x, y)` gives those of a pixel.
template <class PixelAt>
CGImage makeImage(std::size_t width, std::size_t height, const CGColorSpace& space,
                  CGImageAlphaInfo alphaInfo, const PixelAt& pixelAt) {
  std::vector<std::byte> bytes;
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      for (const std::uint8_t component : Pixel(pixelAt(x, y))) {
        bytes.push_back(std::byte{component});
      }
    }
  }
  const std::size_t bytesPerRow = bytes.size() / height;
  return *CGImage::create({.width = width,
                           .height = height,
                           .bitsPerPixel = 8 * bytesPerRow / width,
                           .bytesPerRow = bytesPerRow,
                           .alphaInfo = alphaInfo},
                          space, Data(std::move(bytes)));
}

/// Red, green, blue and white quarters: top left, top right, bottom left, bottom right.
CGImage quarters(std::size_t width, std::size_t height);

/// 'r', 'g', 'b', 'w' or 'k' for black, whichever is near; '?' for another.
char colorAt(const CGImage& image, std::size_t x, std::size_t y);
/// The colours near the four corners in reading order, "rgbw" for `quarters`.
std::string cornersOf(const CGImage& image);

/// The components of one pixel of an image with 8 bits each.
Pixel pixelOf(const CGImage& image, std::size_t x, std::size_t y);

Data jpegOf(const CGImage& image, const Dictionary& properties = {});

}  // namespace FrameworkUtility::testing
