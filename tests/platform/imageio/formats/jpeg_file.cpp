#include <tests/platform/imageio/formats/jpeg_file.h>

#include <framework_utility/platform/imageio/image_destination.h>

#include <span>

namespace FrameworkUtility::testing {

Data dataOf(std::string_view bytes) {
  return Data(std::as_bytes(std::span(bytes.data(), bytes.size())));
}

std::string textOf(const Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

std::string u16(std::size_t number) {
  return {static_cast<char>(number >> 8 & 0xFF), static_cast<char>(number & 0xFF)};
}

std::string jpegSegment(unsigned marker, std::string_view contents) {
  return u16(0xFF00 | marker) + u16(contents.size() + 2) + std::string(contents);
}

std::string jpegFrame(const JpegFrame& frame) {
  std::string contents(1, static_cast<char>(frame.precision));
  contents += u16(frame.height) + u16(frame.width);
  contents += static_cast<char>(frame.components);
  for (std::size_t i = 1; i <= frame.components; ++i) {
    contents += static_cast<char>(i);
    contents += std::string("\x11\0", 2);
  }
  return jpegSegment(frame.marker, contents);
}

std::string jpegHeader(std::string_view segments) {
  return "\xFF\xD8" + std::string(segments) +
         jpegSegment(0xDA, std::string("\3\1\0\2\0\3\0\0\x3F\0", 10));
}

CGImage quarters(std::size_t width, std::size_t height) {
  return makeImage(width, height, CGColorSpace::createDeviceRGB(), CGImageAlphaInfo::noneSkipLast,
                   [&](std::size_t x, std::size_t y) {
                     const bool right = 2 * x >= width;
                     const bool bottom = 2 * y >= height;
                     return bottom ? (right ? Pixel{255, 255, 255, 255} : Pixel{0, 0, 255, 255})
                                   : (right ? Pixel{0, 255, 0, 255} : Pixel{255, 0, 0, 255});
                   });
}

char colorAt(const CGImage& image, std::size_t x, std::size_t y) {
  const Pixel pixel = pixelOf(image, x, y);
  unsigned bits = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    if (pixel[i] > 80 && pixel[i] < 175) return '?';
    bits |= pixel[i] >= 175 ? 1U << i : 0U;
  }
  constexpr std::string_view names = "krg?b??w";
  return names[bits];
}

std::string cornersOf(const CGImage& image) {
  const std::size_t right = image.width() - 1 - image.width() / 8;
  const std::size_t bottom = image.height() - 1 - image.height() / 8;
  const std::size_t left = image.width() / 8;
  const std::size_t top = image.height() / 8;
  return {colorAt(image, left, top), colorAt(image, right, top), colorAt(image, left, bottom),
          colorAt(image, right, bottom)};
}

Pixel pixelOf(const CGImage& image, std::size_t x, std::size_t y) {
  const CGImageLayout& layout = image.layout();
  const std::size_t size = layout.bitsPerPixel / 8;
  const auto* pixel = reinterpret_cast<const std::uint8_t*>(image.pixels().data()) +
                      y * layout.bytesPerRow + x * size;
  return {pixel, pixel + size};
}

Data jpegOf(const CGImage& image, const Dictionary& properties) {
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  destination->addImage(image, properties);
  return destination->finalize() ? *destination->data() : Data();
}

}  // namespace FrameworkUtility::testing
