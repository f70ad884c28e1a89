#include <framework_utility/color/images/color_analysis.h>

#include <tests/color/images/analysis_pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace testing;
using enum CGImageAlphaInfo;
using enum UIImageAnalyzeColorQuality;

UIImage imageOf(std::size_t width, std::size_t height, const PixelAt& pixel, double scale = 1) {
  return UIImage(bitmapOf(width, height, pixel), scale);
}

std::string colorsOf(const UIImage& image, UIImageAnalyzeColorQuality quality = full,
                     std::int64_t count = 0) {
  return colorsIn(analyzeImageWithQuality(image, quality, count));
}

TEST(ColorAnalysisTest, RawValuesAreLengths) {
  for (const auto& [quality, rawValue] :
       {std::pair{full, 0}, {low, 50}, {medium, 100}, {high, 250}}) {
    EXPECT_EQ(fromRawValue<UIImageAnalyzeColorQuality>(rawValue), quality);
    EXPECT_EQ(static_cast<std::int64_t>(quality), rawValue);
  }
  for (const std::int64_t other : {-1, 1, 49, 251}) {
    EXPECT_FALSE(fromRawValue<UIImageAnalyzeColorQuality>(other)) << other;
  }
}

TEST(ColorAnalysisTest, AColourIsTheMiddleOfItsBucket) {
  struct Case {
    Pixel pixel;
    double red, green, blue;
  };
  for (const Case& c : {
           Case{{200, 100, 50, 255}, 200, 100, 50},
           Case{{204, 95, 54, 255}, 200, 100, 50},
           Case{white, 255, 255, 255},  // 26 tens, at most 255
           Case{{254, 245, 4, 255}, 250, 250, 0},
           // Premultiplied: what is half white counts as grey, and only alpha 0 not at all.
           Case{{128, 128, 128, 128}, 130, 130, 130},
           Case{{0, 0, 0, 1}, 0, 0, 0},
       }) {
    const auto result = analyzeImageWithQuality(imageOf(10, 10, all(c.pixel)), full, 5);
    ASSERT_TRUE(result);
    ASSERT_EQ(result->colors.size(), 1);
    EXPECT_EQ(result->colors[0].red, c.red / 255);
    EXPECT_EQ(result->colors[0].green, c.green / 255);
    EXPECT_EQ(result->colors[0].blue, c.blue / 255);
    EXPECT_EQ(result->colors[0].alpha, 1);
  }
  EXPECT_EQ(colorsOf(imageOf(10, 10, all({0, 0, 0, 0}))), "");
}

TEST(ColorAnalysisTest, OnlyWhatDiffersByMoreThanAQuarterIsTakenToo) {
  const auto halves = [](const Pixel& a, const Pixel& b) {
    return colorsOf(imageOf(10, 10, [&](std::size_t x, std::size_t) { return x < 6 ? a : b; }));
  };
  EXPECT_EQ(halves({250, 0, 0, 255}, {200, 0, 0, 255}), "FA0000");
  EXPECT_EQ(halves({250, 0, 0, 255}, {190, 0, 0, 255}), "FA0000") << "60 is near";
  EXPECT_EQ(halves({255, 0, 0, 255}, {190, 0, 0, 255}), "FF0000 BE0000") << "65 is not";
  EXPECT_EQ(halves({0, 60, 60, 255}, {60, 0, 0, 255}), "003C3C") << "near in all three";
  EXPECT_EQ(halves({0, 0, 70, 255}, {0, 0, 0, 255}), "000046 000000") << "one is enough";

  // Columns of 50, 30 and 20: the second is refused, so it cannot refuse the third.
  const UIImage chain = imageOf(10, 10, [](std::size_t x, std::size_t) -> Pixel {
    return {static_cast<std::uint8_t>(x < 5 ? 0 : x < 8 ? 60 : 100), 0, 0, 255};
  });
  EXPECT_EQ(colorsOf(chain), "000000 640000");
  EXPECT_EQ(colorsOf(chain, full, 2), "000000 640000") << "nor does it use up the count";
}

TEST(ColorAnalysisTest, TheCountEndsTheSelection) {
  const UIImage image = imageOf(10, 10, [](std::size_t x, std::size_t) {
    return x < 2 ? red : x < 5 ? green : blue;
  });
  EXPECT_EQ(colorsOf(image, full, 1), "0000FF");
  EXPECT_EQ(colorsOf(image, full, 2), "0000FF 00FF00");
  for (const std::int64_t count :
       {std::int64_t{0}, std::int64_t{-1}, std::int64_t{3},
        std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_EQ(colorsOf(image, full, count), "0000FF 00FF00 FF0000") << count;
  }
}

TEST(ColorAnalysisTest, OfEqualCountsTheSmallerKeyComesFirst) {
  const Pixel four[] = {white, red, blue, green};
  EXPECT_EQ(colorsOf(imageOf(4, 4, [&](std::size_t x, std::size_t) { return four[x]; })),
            "FF0000 00FF00 0000FF FFFFFF");
  EXPECT_EQ(colorsOf(imageOf(4, 4, [&](std::size_t, std::size_t y) { return four[3 - y]; })),
            "FF0000 00FF00 0000FF FFFFFF");
}

TEST(ColorAnalysisTest, NoiseIsAHundredthOfTheHeight) {
  struct Case {
    std::size_t height;
    std::size_t noisePixels;
    bool isSeen;
  };
  for (const Case& c : {Case{49, 1, true}, Case{50, 1, false}, Case{50, 2, true},
                        Case{100, 1, false}, Case{100, 2, true}, Case{149, 2, true},
                        Case{150, 2, false}, Case{250, 3, false}, Case{250, 4, true}}) {
    const UIImage image = imageOf(7, c.height, [&](std::size_t x, std::size_t y) {
      return x == 3 && y < c.noisePixels ? white : black;
    });
    EXPECT_EQ(colorsOf(image), c.isSeen ? "000000 FFFFFF" : "000000")
        << c.noisePixels << " of height " << c.height;
  }
}

TEST(ColorAnalysisTest, WhatIsLargerThanTheQualityIsAnalysedAtItsOwnSize) {
  // Red is seen in any part of the picture, green in a corner that an enlarged one does not show.
  const auto corner = [](std::size_t x, std::size_t y) { return x >= 40 && y < 8 ? green : red; };
  EXPECT_EQ(colorsOf(imageOf(51, 20, corner), low), "FF0000 00FF00");
  EXPECT_EQ(colorsOf(imageOf(50, 20, corner), low), "FF0000 00FF00") << "just as large";
  EXPECT_EQ(colorsOf(imageOf(51, 20, corner), medium), "FF0000") << "enlarged";
  EXPECT_EQ(colorsOf(imageOf(51, 20, corner), full), "FF0000 00FF00");
}

TEST(ColorAnalysisTest, WhatIsSmallerIsEnlargedAndSeenAtItsLowerLeft) {
  const auto left = [](std::size_t x, std::size_t) { return x < 10 ? red : blue; };
  EXPECT_EQ(colorsOf(imageOf(20, 20, left)), "FF0000 0000FF");
  EXPECT_EQ(colorsOf(imageOf(20, 20, left), low), "FF0000");
  const auto above = [](std::size_t, std::size_t y) { return y < 10 ? red : blue; };
  EXPECT_EQ(colorsOf(imageOf(20, 20, above), low), "0000FF");

  // Higher than wide: stretched to a square, 30 columns to 100, so that 9 of them are seen.
  EXPECT_EQ(colorsOf(imageOf(30, 80, left), medium), "FF0000");
  // Wider than high: both sides alike, 80 columns to 100, so that 64 are seen.
  const auto left16 = [](std::size_t x, std::size_t) {
    return x < 16 ? red : x < 64 ? blue : green;
  };
  EXPECT_EQ(colorsOf(imageOf(80, 30, left16), medium), "0000FF FF0000");
}

TEST(ColorAnalysisTest, TheThresholdComesFromTheEnlargedHeight) {
  EXPECT_EQ(colorsOf(imageOf(1, 1, all(red))), "FF0000");
  EXPECT_EQ(colorsOf(imageOf(1, 1, all(red)), low), "") << "one pixel of a height of 50";
  EXPECT_EQ(colorsOf(imageOf(2, 1, all(red)), low), "FF0000") << "two pixels of a height of 25";
  EXPECT_EQ(colorsOf(imageOf(1, 3, all(red)), high), "")
      << "three pixels of a height of 250, whose places to the right are no pixels";
}

TEST(ColorAnalysisTest, PointsCountAndNotPixels) {
  // Two pixels a point: those of the checked part average two of black and two of white.
  const auto checked = [](std::size_t x, std::size_t y) {
    return x < 40 ? red : (x + y) % 2 == 0 ? white : black;
  };
  EXPECT_EQ(colorsOf(imageOf(64, 40, checked, 2)), "FF0000 828282");
  EXPECT_EQ(colorsOf(imageOf(64, 40, checked)), "FF0000 000000 FFFFFF");
  // 2.5 points high, of which the lower two are seen.
  const auto top = [](std::size_t, std::size_t y) { return y < 1 ? red : blue; };
  EXPECT_EQ(colorsOf(imageOf(4, 5, top, 2)), "0000FF");
  // The bitmap is drawn as it lies, into the turned size.
  const auto left = [](std::size_t x, std::size_t) { return x < 20 ? red : blue; };
  const UIImage turned(bitmapOf(40, 20, left), 1, UIImageOrientation::right);
  EXPECT_EQ(turned.size(), (Size{20, 40}));
  EXPECT_EQ(colorsOf(turned), "FF0000 0000FF");
}

TEST(ColorAnalysisTest, EqualsTheStepsOneByOne) {
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    const std::size_t width = 20 + seed * 7 % 90;
    const std::size_t height = 20 + seed * 31 % 140;
    auto bytes = noise(width * height * 4, seed);
    // Few colours, so that many counts are equal; some pixels are transparent.
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(byte % 5 * 63);
    const UIImage image(*CGImage::create(layoutOf(width, height, 4, premultipliedLast),
                                         CGColorSpace::createDeviceRGB(), dataOf(bytes)));

    std::map<double, std::int64_t> counted;
    for (std::size_t x = 0; x < width; ++x) {
      for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* pixel = &bytes[(y * width + x) * 4];
        if (pixel[3] == 0) continue;
        ++counted[std::round(pixel[0] / 10.0) + std::round(pixel[1] / 10.0) * 1000 +
                  std::round(pixel[2] / 10.0) * 1'000'000];
      }
    }
    std::vector<std::pair<double, std::int64_t>> sorted;
    for (const auto& [key, count] : counted) {
      if (static_cast<double>(count) > std::round(static_cast<double>(height) * 0.01)) {
        sorted.emplace_back(key, count);
      }
    }
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    UIImageAnalyzeResult expected;
    for (const auto& [key, count] : sorted) {
      const KvColor candidate(std::min(std::fmod(key, 1000) * 10, 255.0) / 255,
                              std::min(std::fmod(std::floor(key / 1000), 1000) * 10, 255.0) / 255,
                              std::min(std::floor(key / 1'000'000) * 10, 255.0) / 255);
      if (std::none_of(expected.colors.begin(), expected.colors.end(), [&](const KvColor& other) {
            return std::abs(candidate.red - other.red) <= 0.25 &&
                   std::abs(candidate.green - other.green) <= 0.25 &&
                   std::abs(candidate.blue - other.blue) <= 0.25;
          })) {
        expected.colors.push_back(candidate);
      }
      if (expected.colors.size() == 6) break;
    }
    EXPECT_EQ(colorsOf(image, full, 6), colorsIn(expected)) << seed;
  }
}

TEST(ColorAnalysisTest, AlphaIsAskedOfTheLayout) {
  for (const auto& [info, expected] : {std::pair{premultipliedLast, true},
                                       {premultipliedFirst, true},
                                       {last, true},
                                       {first, true},
                                       {noneSkipLast, false},
                                       {noneSkipFirst, false}}) {
    const UIImage image(bitmapOf(10, 10, all(white), info));
    EXPECT_EQ(hasAlpha(image), expected) << static_cast<int>(info);
    const auto result = analyzeImageWithQuality(image, full, 0);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->containsAlpha, expected);
    EXPECT_EQ(colorsIn(result), "FFFFFF");
  }
  EXPECT_FALSE(hasAlpha(UIImage::withoutBitmap({10, 10})));
  // A skipped component of 0 hides nothing.
  EXPECT_EQ(colorsOf(UIImage(bitmapOf(10, 10, all({255, 0, 0, 0}), noneSkipLast))), "FF0000");
  EXPECT_EQ(colorsOf(UIImage(bitmapOf(10, 10, all({255, 0, 0, 0}), last))), "");
}

TEST(ColorAnalysisTest, WithoutAnRGBBitmapThereIsNoResult) {
  EXPECT_EQ(colorsOf(UIImage::withoutBitmap({10, 10})), "none");
  const auto alone = [](const CGColorSpace& space, std::size_t components, CGImageAlphaInfo info) {
    return UIImage(*CGImage::create(layoutOf(8, 8, components, info), space, dataOf(noise(256))));
  };
  const UIImage mask = alone(CGColorSpace::createDeviceRGB(), 1, alphaOnly);
  EXPECT_FALSE(hasAlpha(mask));
  for (const UIImage& image : {mask, alone(CGColorSpace::createDeviceGray(), 1, none),
                               alone(CGColorSpace::createDeviceCMYK(), 4, none)}) {
    for (const auto quality : {full, low}) EXPECT_EQ(colorsOf(image, quality), "none");
  }
  // Less than a point, and more points than any bitmap has.
  for (const double scale : {2.0, 1e300, std::numeric_limits<double>::infinity(), 1e-5}) {
    for (const auto quality : {full, low}) {
      EXPECT_EQ(colorsOf(imageOf(1, 1, all(red), scale), quality), "none") << scale;
    }
  }
  EXPECT_EQ(colorsOf(imageOf(9, 1, all(red), 2), low), "none") << "half a point high";
}

TEST(ColorAnalysisDeathTest, SizesThatAreNoIntegersStopTheProcess) {
  for (const double scale : {1e-300, 1e-18, 1e-9, 5e-324}) {
    EXPECT_DEATH((void)colorsOf(imageOf(100, 100, all(red), scale)), "not finite, or too large")
        << scale;
  }
}

}  // namespace
}  // namespace FrameworkUtility
