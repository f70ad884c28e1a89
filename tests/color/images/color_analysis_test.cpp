#include <framework_utility/color/color_utility.h>
#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/color/images/color_buckets.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <tests/platform/graphics/pictures.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace testing;
using enum CGImageAlphaInfo;
using enum UIImageAnalyzeColorQuality;

constexpr Pixel red{255, 0, 0, 255};
constexpr Pixel green{0, 255, 0, 255};
constexpr Pixel blue{0, 0, 255, 255};
constexpr Pixel white{255, 255, 255, 255};
constexpr Pixel black{0, 0, 0, 255};

using PixelAt = std::function<Pixel(std::size_t x, std::size_t y)>;

PixelAt all(const Pixel& pixel) {
  return [pixel](std::size_t, std::size_t) { return pixel; };
}

CGImage bitmapOf(std::size_t width, std::size_t height, const PixelAt& pixel,
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
std::string colorsIn(const std::optional<UIImageAnalyzeResult>& result) {
  if (!result) return "none";
  std::string text;
  for (const KvColor& color : result->colors) {
    text += (text.empty() ? "" : " ") + hexString(color.uiColor()).substr(1);
  }
  return text;
}

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
  }
  for (const std::int64_t other : {-1, 1, 49, 251}) {
    EXPECT_FALSE(fromRawValue<UIImageAnalyzeColorQuality>(other)) << other;
  }
}

TEST(ColorAnalysisTest, AColourIsTheMiddleOfItsBucket) {
  const auto result = analyzeImageWithQuality(imageOf(10, 10, all({204, 95, 54, 255})), full, 5);
  EXPECT_EQ(result.value().colors.at(0).cgColor(),
            (CGColor{{200 / 255.0, 100 / 255.0, 50 / 255.0, 1}}));
  const std::pair<Pixel, const char*> cases[] = {
      {white, "FFFFFF"},  // 26 tens, at most 255
      {{254, 245, 4, 255}, "FAFA00"},
      // Premultiplied: what is half white counts as grey, and only alpha 0 not at all.
      {{128, 128, 128, 128}, "828282"},
      {{0, 0, 0, 1}, "000000"},
      {{0, 0, 0, 0}, ""}};
  for (const auto& [pixel, color] : cases) EXPECT_EQ(colorsOf(imageOf(10, 10, all(pixel))), color);
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
  using Limits = std::numeric_limits<std::int64_t>;
  for (const std::int64_t count : {0L, -1L, 3L, Limits::min(), Limits::max()}) {
    EXPECT_EQ(colorsOf(image, full, count), "0000FF 00FF00 FF0000") << count;
  }
}

TEST(ColorAnalysisTest, OfEqualCountsTheSmallerKeyComesFirst) {
  const Pixel four[] = {white, red, blue, green};
  const UIImage across = imageOf(4, 4, [&](std::size_t x, std::size_t) { return four[x]; });
  const UIImage up = imageOf(4, 4, [&](std::size_t, std::size_t y) { return four[3 - y]; });
  for (const UIImage& image : {across, up}) {
    EXPECT_EQ(colorsOf(image), "FF0000 00FF00 0000FF FFFFFF");
  }
}

TEST(ColorAnalysisTest, NoiseIsAHundredthOfTheHeight) {
  const std::pair<std::size_t, std::size_t> mostNoise[] = {{49, 0},  {50, 1},  {100, 1},
                                                           {149, 1}, {150, 2}, {250, 3}};
  for (const auto& [height, most] : mostNoise) {
    for (const std::size_t pixels : {most, most + 1}) {
      const UIImage image = imageOf(7, height, [&](std::size_t x, std::size_t y) {
        return x == 3 && y < pixels ? white : black;
      });
      EXPECT_EQ(colorsOf(image), pixels > most ? "000000 FFFFFF" : "000000")
          << pixels << " of height " << height;
    }
  }
}

TEST(ColorAnalysisTest, WhatIsLargerThanTheQualityIsAnalysedAtItsOwnSize) {
  // Red is seen in any part of the picture, green in a corner that an enlarged one does not show.
  const auto corner = [](std::size_t x, std::size_t y) { return x >= 40 && y < 8 ? green : red; };
  EXPECT_EQ(colorsOf(imageOf(51, 20, corner), low), "FF0000 00FF00");
  EXPECT_EQ(colorsOf(imageOf(50, 20, corner), low), "FF0000 00FF00") << "just as large";
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
    EXPECT_EQ(colorsOf(image), "none");
  }
  // Less than a point, and more points than any bitmap has.
  for (const double scale : {2.0, 1e300, std::numeric_limits<double>::infinity(), 1e-5}) {
    EXPECT_EQ(colorsOf(imageOf(1, 1, all(red), scale), low), "none") << scale;
  }
  EXPECT_EQ(colorsOf(imageOf(9, 1, all(red), 2), low), "none") << "half a point high";
}

TEST(ColorAnalysisDeathTest, SizesThatAreNoIntegersStopTheProcess) {
  for (const double scale : {1e-300, 1e-18, 1e-9, 5e-324}) {
    EXPECT_DEATH((void)colorsOf(imageOf(100, 100, all(red), scale)), "not finite, or too large")
        << scale;
  }
}

Data encoded(const CGImage& image, const char* type, const Dictionary& properties = {}) {
  const auto destination = CGImageDestination::createInMemory(type, 1);
  destination->addImage(image, properties);
  EXPECT_TRUE(destination->finalize());
  return *destination->data();
}

class ColorAnalysisOfFilesTest : public ::testing::Test {
 protected:
  URL urlOf(const std::string& name) const { return URL::fileURLWithPath(folder_.path(name)); }

  URL write(const std::string& name, const Data& data) const {
    EXPECT_TRUE(FileManager::defaultManager().writeAtomically(data, folder_.path(name), nullptr));
    return urlOf(name);
  }

  static std::string colorsOf(const URL& url, UIImageAnalyzeColorQuality quality) {
    const auto result = analyzeImageWithQuality(url, quality, 0);
    EXPECT_EQ(colorsIn(analyzeImageAtUrl(url, quality, 0)), colorsIn(result));
    return colorsIn(result);
  }

 private:
  TemporaryFolder folder_;
};

TEST_F(ColorAnalysisOfFilesTest, LargeFilesAreReducedFirst) {
  // Single white lines vanish in the average, and with them their colour.
  const auto lined = [](std::size_t x, std::size_t y) {
    return y % 10 == 9 ? white : x < 300 ? red : blue;
  };
  const URL png = write("lined.png", encoded(bitmapOf(500, 400, lined), "public.png"));
  EXPECT_EQ(colorsOf(png, full), "FF0000 0000FF FFFFFF");
  EXPECT_EQ(colorsOf(png, low), "FF1E1E 1E1EFF");
  EXPECT_EQ(analyzeImageWithQuality(png, low, 0)->containsAlpha, true);

  const URL jpeg = write("plain.jpg", encoded(bitmapOf(500, 400, all({200, 100, 50, 255})),
                                              "public.jpeg", {{kCGImagePropertyOrientation, 6}}));
  for (const auto quality : {full, low, medium, high}) {
    EXPECT_EQ(colorsOf(jpeg, quality), "C86432");
    EXPECT_EQ(analyzeImageWithQuality(jpeg, quality, 0)->containsAlpha, false);
  }
}

TEST_F(ColorAnalysisOfFilesTest, FilesAreReducedByTheirLongerSideAndTurned) {
  const auto lined = [](std::size_t, std::size_t y) { return y % 10 == 9 ? white : red; };
  for (const auto& [width, height] : {std::pair{400U, 40U}, {40U, 400U}}) {
    const URL url = write("narrow.png", encoded(bitmapOf(width, height, lined), "public.png"));
    EXPECT_EQ(colorsOf(url, low), "FF1E1E") << width << 'x' << height;
  }
  // The last rows come to the left: all that is seen of what is stretched to a square.
  const auto above = [](std::size_t, std::size_t y) { return y < 20 ? red : blue; };
  const URL turned = write("turned.jpg", encoded(bitmapOf(400, 40, above), "public.jpeg",
                                                 {{kCGImagePropertyOrientation, 6}}));
  EXPECT_EQ(colorsOf(turned, low), "0000FA");
}

TEST_F(ColorAnalysisOfFilesTest, WithoutAReadableColourPictureThereIsNoResult) {
  const CGImage gray = *CGImage::create(layoutOf(200, 200, 1, CGImageAlphaInfo::none),
                                        CGColorSpace::createDeviceGray(), dataOf(noise(40'000)));
  const Data jpeg = encoded(bitmapOf(300, 300, all(red)), "public.jpeg");
  const struct {
    URL url;
    std::int64_t code;
  } cases[] = {{write("gray.png", encoded(gray, "public.png")), 3328},
               {urlOf("missing.png"), 260},
               {urlOf(""), 256},
               {*URL::withString("https://example.com/a.png"), 262},
               {*URL::withString("mailto:a@b.c"), 262},
               {write("text.png", dataOf({'n', 'o'})), 259},
               {write("empty.png", Data()), 259},
               {write("cut.jpg", Data(std::span(jpeg).first(100))), 259},
               {write("large.jpg", jpeg), 263}};
  for (const auto quality : {full, low}) {
    for (const auto& [url, code] : cases) {
      Error error;
      EXPECT_FALSE(analyzeImageAtUrl(url, quality, 0, {.mostPixels = 89'999}, &error))
          << url.absoluteString();
      EXPECT_EQ(error.code(), code) << url.absoluteString();
    }
  }
}

using detail::ColorBuckets;
using detail::InstructionSet;

/// Blue, green, red: the order in which buckets come.
using Bucket = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>;
using Counts = std::vector<std::pair<Bucket, std::int64_t>>;

Counts counted(const ColorBuckets& buckets) {
  Counts counts;
  for (const auto& found : buckets.above(0)) {
    counts.push_back({{found.blue, found.green, found.red}, found.count});
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
        auto rgba = noise(pixels * 4, 7);
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
