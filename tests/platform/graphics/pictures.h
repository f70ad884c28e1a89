#pragma once

#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/cg_context.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/image_reducer.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <utility>
#include <vector>

namespace FrameworkUtility::testing {

using Pixel = std::array<std::uint8_t, 4>;

/// Bytes that are the same in every run.
inline std::vector<std::uint8_t> noise(std::size_t size, std::uint32_t seed = 1) {
  std::mt19937 random(seed);
  std::vector<std::uint8_t> bytes(size);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 24);
  return bytes;
}

inline Data dataOf(const std::vector<std::uint8_t>& bytes) {
  return Data(std::as_bytes(std::span(bytes)));
}

inline std::vector<std::uint8_t> bytesOf(const Data& data) {
  const auto* begin = reinterpret_cast<const std::uint8_t*>(data.data());
  return {begin, begin + data.size()};
}

/// A layout without padding.
inline CGImageLayout layoutOf(std::size_t width, std::size_t height, std::size_t components,
                              CGImageAlphaInfo alphaInfo, std::size_t bitsPerComponent = 8,
                              CGImageByteOrder byteOrder = CGImageByteOrder::unspecified) {
  CGImageLayout layout;
  layout.width = width;
  layout.height = height;
  layout.bitsPerComponent = bitsPerComponent;
  layout.bitsPerPixel = bitsPerComponent * components;
  layout.bytesPerRow = width * layout.bitsPerPixel / 8;
  layout.alphaInfo = alphaInfo;
  layout.byteOrder = byteOrder;
  return layout;
}

/// `layout` with another value for one member.
template <class Member>
CGImageLayout changed(CGImageLayout layout, Member CGImageLayout::*member,
                      std::type_identity_t<Member> value) {
  layout.*member = value;
  return layout;
}

/// Noise in every layout that the device spaces have, with rows that are padded.
inline std::vector<CGImage> imagesInEveryLayout(std::size_t width, std::size_t height) {
  using Order = CGImageByteOrder;
  std::vector<CGImage> images;
  for (const CGColorSpace& space :
       {CGColorSpace::createDeviceGray(), CGColorSpace::createDeviceRGB(),
        CGColorSpace::createDeviceCMYK()}) {
    for (std::uint32_t info = 0; info <= 7; ++info) {
      const CGImageAlphaInfo alphaInfo{info};
      const std::size_t colors =
          alphaInfo == CGImageAlphaInfo::alphaOnly ? 0 : space.numberOfComponents();
      for (const std::size_t bits : {8U, 16U}) {
        for (const Order order :
             {Order::unspecified, Order::little16, Order::big16, Order::little32, Order::big32}) {
          CGImageLayout layout =
              layoutOf(width, height, colors + (info > 0 ? 1 : 0), alphaInfo, bits, order);
          layout.bytesPerRow += 5;
          const Data bytes = dataOf(noise(layout.bytesPerRow * height, info + 1));
          // Absent for an order that the layout cannot have.
          if (const auto image = CGImage::create(layout, space, bytes)) images.push_back(*image);
        }
      }
    }
  }
  return images;
}

/// A context whose points begin at the top left, as those of the image renderer.
inline std::unique_ptr<CGContext> contextOf(std::size_t width, std::size_t height,
                                            double scale = 1) {
  auto context = CGContext::createBitmap(width, height);
  context->concatCTM({scale, 0, 0, -scale, 0, static_cast<double>(height)});
  return context;
}

/// Of an image of four 8-bit components.
inline Pixel pixelAt(const CGImage& image, std::size_t x, std::size_t y) {
  const auto* p = reinterpret_cast<const std::uint8_t*>(image.pixels().data()) +
                  y * image.layout().bytesPerRow + 4 * x;
  return {p[0], p[1], p[2], p[3]};
}

/// By definition: component `c` of the average of what a pixel from (left, top) on shows of 8-bit
/// pixels that are stretched into `area`, nothing beside it.
inline double averageShown(const std::vector<std::uint8_t>& bytes, const detail::PixelSize& size,
                           std::size_t components, Size area, double left, double top,
                           std::size_t c) {
  const auto overlap = [](double begin, std::size_t i, std::size_t count, double length) {
    const double step = length / static_cast<double>(count);
    const double from = static_cast<double>(i) * step;
    return std::max(std::min(begin + 1, from + step) - std::max(begin, from), 0.0);
  };
  double sum = 0;
  for (std::size_t y = 0; y < size.height; ++y) {
    const double share = overlap(top, y, size.height, area.height);
    for (std::size_t x = 0; share > 0 && x < size.width; ++x) {
      sum += share * overlap(left, x, size.width, area.width) *
             bytes[(y * size.width + x) * components + c];
    }
  }
  return sum;
}

/// The image reduced so that no side exceeds `maxPixelSize`; absent for Lab.
inline std::optional<CGImage> reducedImage(const CGImage& image, std::size_t maxPixelSize) {
  const auto reduced = detail::fittedSize({image.width(), image.height()}, maxPixelSize);
  auto reducer = detail::ImageReducer::create(
      image.layout(), image.colorSpace().value_or(CGColorSpace::createDeviceGray()), reduced);
  std::vector<std::uint8_t> rows = bytesOf(image.pixels());
  for (std::size_t y = 0; reducer && y < image.height(); ++y) {
    reducer->push(&rows[y * image.layout().bytesPerRow]);
  }
  return reducer ? std::move(*reducer).image() : std::nullopt;
}

}  // namespace FrameworkUtility::testing
