#pragma once

#include <framework_utility/platform/graphics/simd_dispatch.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace FrameworkUtility::detail {

/// Colours that are alike, and how many pixels have one of them.
struct ColorBucket {
  /// Each component in tens, rounded: 0 to 26.
  std::uint32_t red = 0;
  std::uint32_t green = 0;
  std::uint32_t blue = 0;
  std::int64_t count = 0;
};

/// Counts pixels by colour, components in steps of 10. Transparent pixels do not count. The order
/// in which pixels come makes no difference.
class ColorBuckets {
 public:
  ColorBuckets();

  /// Pixels of red, green, blue, premultiplied alpha with 8 bits each. Where they are known to be
  /// opaque, the fourth bytes may be anything. No more than 2^32 - 1 in all.
  void add(const std::uint8_t* rgba, std::size_t pixels, bool isOpaque,
           InstructionSet instructions = instructionSet());

  /// The buckets with more pixels than `threshold`, by blue, then green, then red.
  std::vector<ColorBucket> above(std::int64_t threshold) const;

 private:
  std::vector<std::uint32_t> counters_;
};

}  // namespace FrameworkUtility::detail
