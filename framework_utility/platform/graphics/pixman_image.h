#pragma once

#include <bit>
#include <cstddef>
#include <memory>

#include <pixman.h>

namespace FrameworkUtility::detail {

struct FreePixmanImage {
  void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using PixmanImage = std::unique_ptr<pixman_image_t, FreePixmanImage>;

// Its formats name the bits of a word from the highest on; these lie in memory as red, green, blue
// and alpha.
inline constexpr bool isLittleEndian = std::endian::native == std::endian::little;
inline constexpr pixman_format_code_t pixmanRGBA =
    isLittleEndian ? PIXMAN_a8b8g8r8 : PIXMAN_r8g8b8a8;
inline constexpr pixman_format_code_t pixmanRGBSkip =
    isLittleEndian ? PIXMAN_x8b8g8r8 : PIXMAN_r8g8b8x8;

/// Places have 16 bits with 16 more of fraction, and those one beyond a side must fit too.
inline constexpr std::size_t pixmanLongestSide = 32766;

}  // namespace FrameworkUtility::detail
