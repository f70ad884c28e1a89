#pragma once

#include <framework_utility/platform/graphics/cg_image.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace FrameworkUtility::testing {

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

}  // namespace FrameworkUtility::testing
