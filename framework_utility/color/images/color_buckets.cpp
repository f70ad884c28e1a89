#include <framework_utility/color/images/color_buckets.h>

#include <framework_utility/platform/graphics/pixel_word.h>

#include <array>

namespace FrameworkUtility::detail {

namespace {

constexpr std::uint32_t steps = 27;  // 0 to 255 in tens, rounded
constexpr std::uint32_t buckets = steps * steps * steps;
constexpr std::uint32_t transparent = buckets;  // one more, which nobody reads

/// Counters a bucket, taken in turns: pixels side by side are often alike, and a counter that was
/// just written is slow to read again.
constexpr std::uint32_t turns = 4;

/// Pixels whose buckets are found before they are counted: few enough that the machine finds those
/// of the next ones meanwhile.
constexpr std::size_t blockPixels = 64;

struct CountPixels {
  [[gnu::always_inline]] static void run(const std::uint8_t* rgba, std::size_t pixels,
                                         bool isOpaque, std::uint32_t* counters) {
    const std::uint32_t cover = isOpaque ? std::uint32_t{255} << shiftOf(3) : 0;
    for (; pixels >= blockPixels; pixels -= blockPixels, rgba += 4 * blockPixels) {
      countBlock(rgba, cover, counters);
    }
    for (std::size_t i = 0; i < pixels; ++i) ++counters[firstCounter(wordAt(rgba + 4 * i) | cover)];
  }

 private:
  [[gnu::always_inline]] static void countBlock(const std::uint8_t* __restrict rgba,
                                                std::uint32_t cover,
                                                std::uint32_t* __restrict counters) {
    std::array<std::uint32_t, blockPixels> found;
    for (std::size_t i = 0; i < blockPixels; ++i) {
      found[i] = firstCounter(wordAt(rgba + 4 * i) | cover);
    }
    for (std::size_t i = 0; i < blockPixels; i += turns) {
      for (std::size_t turn = 0; turn < turns; ++turn) ++counters[found[i + turn] + turn];
    }
  }

  /// That of the pixel's bucket, red + 27 green + 27² blue.
  [[gnu::always_inline]] static std::uint32_t firstCounter(std::uint32_t word) {
    // In tens, rounded, halves upwards: 205 / 2048 is a little more than a tenth. Red and blue are
    // 16 bits apart and divided at once.
    const std::uint32_t redBlue = (word >> shiftOf(0) & 255) | (word >> shiftOf(2) & 255) << 16;
    const std::uint32_t tens = (redBlue + 0x00050005) * 205 >> 11 & 0x001F001F;
    const std::uint32_t greenTens = ((word >> shiftOf(1) & 255) + 5) * 205 >> 11;
    // The upper half of the product is red + 27² blue.
    const std::uint32_t bucket = (tens * (0x10000 + steps * steps) >> 16) + steps * greenTens;
    return turns * ((word >> shiftOf(3) & 255) != 0 ? bucket : transparent);
  }
};

}  // namespace

ColorBuckets::ColorBuckets() : counters_(std::size_t{buckets + 1} * turns) {}

void ColorBuckets::add(const std::uint8_t* rgba, std::size_t pixels, bool isOpaque,
                       InstructionSet instructions) {
  runWith<CountPixels>(instructions, rgba, pixels, isOpaque, counters_.data());
}

std::vector<ColorBucket> ColorBuckets::above(std::int64_t threshold) const {
  std::vector<ColorBucket> result;
  for (std::uint32_t bucket = 0; bucket < buckets; ++bucket) {
    std::int64_t count = 0;
    for (std::uint32_t turn = 0; turn < turns; ++turn) count += counters_[bucket * turns + turn];
    if (count > threshold) {
      result.push_back({bucket % steps, bucket / steps % steps, bucket / (steps * steps), count});
    }
  }
  return result;
}

}  // namespace FrameworkUtility::detail
