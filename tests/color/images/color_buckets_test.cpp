#include <framework_utility/color/images/color_buckets.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using detail::ColorBuckets;
using detail::InstructionSet;

/// Blue, green, red: the order in which buckets come.
using Bucket = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;
using Counts = std::vector<std::pair<Bucket, std::int64_t>>;

Counts counted(const ColorBuckets& buckets) {
  Counts counts;
  for (const auto& [red, green, blue, count] : buckets.above(0)) {
    counts.push_back({{blue, green, red}, count});
  }
  return counts;
}

Counts countedOneByOne(const std::vector<std::uint8_t>& rgba, bool isOpaque) {
  const auto tens = [](std::uint8_t component) {
    return static_cast<std::uint32_t>(std::round(component / 10.0));
  };
  std::map<Bucket, std::int64_t> counts;
  for (std::size_t i = 0; i < rgba.size(); i += 4) {
    if (isOpaque || rgba[i + 3] != 0) {
      ++counts[{tens(rgba[i + 2]), tens(rgba[i + 1]), tens(rgba[i])}];
    }
  }
  return {counts.begin(), counts.end()};
}

TEST(ColorBucketsTest, AnyNumberOfPixelsOnAnyInstructionSet) {
  for (const InstructionSet instructions : {InstructionSet::baseline, detail::instructionSet()}) {
    for (const bool isOpaque : {false, true}) {
      for (const std::size_t pixels : {0U, 1U, 3U, 63U, 64U, 65U, 127U, 128U, 200U, 70'000U}) {
        SCOPED_TRACE(::testing::Message() << pixels << " pixels, opaque: " << isOpaque);
        auto rgba = testing::noise(pixels * 4, 7);
        for (std::size_t i = 0; i < rgba.size(); i += 12) rgba[i + 3] = 0;
        ColorBuckets buckets;
        buckets.add(rgba.data(), pixels, isOpaque, instructions);
        EXPECT_EQ(counted(buckets), countedOneByOne(rgba, isOpaque));
      }
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility
