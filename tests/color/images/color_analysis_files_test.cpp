#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>

#include <tests/color/images/analysis_pictures.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <span>
#include <string>

namespace FrameworkUtility {
namespace {

using namespace testing;
using enum UIImageAnalyzeColorQuality;

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

TEST_F(ColorAnalysisOfFilesTest, SmallFilesAreReadWhole) {
  const auto left = [](std::size_t x, std::size_t) { return x < 10 ? red : blue; };
  const URL url = write("small.png", encoded(bitmapOf(20, 20, left), "public.png"));
  EXPECT_EQ(colorsOf(url, full), "FF0000 0000FF");
  EXPECT_EQ(colorsOf(url, low), "FF0000") << "enlarged, as an image of that size is";
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

}  // namespace
}  // namespace FrameworkUtility
