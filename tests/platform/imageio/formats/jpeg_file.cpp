#include <tests/platform/imageio/formats/jpeg_file.h>

#include <framework_utility/platform/imageio/image_destination.h>

namespace FrameworkUtility::testing {

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

CGImage plainImage(std::size_t width, std::size_t height, const CGColorSpace& space,
                   CGImageAlphaInfo alphaInfo, const Bytes& pixel) {
  return makeImage(width, height, space, alphaInfo, [&](auto, auto) { return pixel; });
}

CGImage quarters(std::size_t width, std::size_t height) {
  const Bytes colors[] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}, Bytes(4, 255)};
  return makeImage(
      width, height, CGColorSpace::createDeviceRGB(), CGImageAlphaInfo::noneSkipLast,
      [&](std::size_t x, std::size_t y) { return colors[2 * y / height * 2 + 2 * x / width]; });
}

std::string cornersOf(const CGImage& image) {
  constexpr std::string_view names = "krg?b??w";
  std::string corners;
  for (const std::size_t y : {image.height() / 8, image.height() - 1 - image.height() / 8}) {
    for (const std::size_t x : {image.width() / 8, image.width() - 1 - image.width() / 8}) {
      const Bytes pixel = pixelOf(image, x, y);
      std::size_t bits = 0;
      for (std::size_t i = 0; i < 3; ++i) {
        const bool isBetween = pixel[i] > 80 && pixel[i] < 175;
        bits |= isBetween ? 8U : pixel[i] >= 175 ? 1U << i : 0U;
      }
      corners += bits < names.size() ? names[bits] : '?';
    }
  }
  return corners;
}

Bytes pixelOf(const CGImage& image, std::size_t x, std::size_t y) {
  const std::size_t size = image.layout().bitsPerPixel / 8;
  const auto* pixel = reinterpret_cast<const std::uint8_t*>(image.pixels().data()) +
                      y * image.layout().bytesPerRow + x * size;
  return {pixel, pixel + size};
}

Data jpegOf(const CGImage& image, const Dictionary& properties) {
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  destination->addImage(image, properties);
  return destination->finalize() ? *destination->data() : Data();
}

}  // namespace FrameworkUtility::testing
