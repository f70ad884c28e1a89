#pragma once

#include <cstddef>

namespace FrameworkUtility::detail {

/// Facts about the new pixels, which replace those about the old ones.
struct PixelFacts {
  std::size_t width = 0;
  std::size_t height = 0;
};

}  // namespace FrameworkUtility::detail
