#pragma once

#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/platform/graphics/cg_image.h>

#include <tests/platform/graphics/pictures.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace FrameworkUtility::testing {

using Pixel = std::array<std::uint8_t, 4>;
inline constexpr Pixel red{255, 0, 0, 255};
inline constexpr Pixel green{0, 255, 0, 255};
inline constexpr Pixel blue{0, 0, 255, 255};
inline constexpr Pixel white{255, 255, 255, 255};
inline constexpr Pixel black{0, 0, 0, 255};

using PixelAt = std::function<Pixel(std::size_t x, std::size_t y)>;

inline PixelAt all(const Pixel& pixel) {
  return [pixel](std::size_t, std::size_t) { return pixel; };
}

inline CGImage bitmapOf(std::size_t width, std::size_t height, const PixelAt& pixel,
                        CGImageAlphaInfo info = CGImageAlphaInfo::premultipliedLast) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t y = 0; y < height; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      for (const std::uint8_t component : pixel(x, y)) bytes.push_back(component);
    }
  }
  return *CGImage::create(layoutOf(width, height, 4, info), CGColorSpace::createDeviceRGB(),
                          dataOf(bytes));
}

/// "FF0000 00FF00", or "none" without a result.
inline std::string colorsIn(const std::optional<UIImageAnalyzeResult>& result) {
  if (!result) return "none";
  std::string text;
  for (const KvColor& color : result->colors) {
    char one[8];
    std::snprintf(one, sizeof one, "%02X%02X%02X", static_cast<unsigned>(color.red * 255 + 0.5),
                  static_cast<unsigned>(color.green * 255 + 0.5),
                  static_cast<unsigned>(color.blue * 255 + 0.5));
    text += (text.empty() ? "" : " ") + std::string(one);
  }
  return text;
}

}  // namespace FrameworkUtility::testing
