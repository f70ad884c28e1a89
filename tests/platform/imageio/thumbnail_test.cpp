#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace FrameworkUtility::testing {
namespace {

using namespace std::string_literals;

std::optional<CGImage> thumbnail(const Data& file, const CGImageSourceThumbnailOptions& options) {
  return CGImageSource::createWithData(file)->thumbnailAtIndex(0, options);
}

CGImage orange(std::size_t width, std::size_t height) {
  return makeImage(width, height, CGColorSpace::createDeviceRGB(), CGImageAlphaInfo::noneSkipLast,
                   [](std::size_t, std::size_t) {
                     return Pixel{255, 128, 0, 255};
                   });
}

constexpr std::size_t embeddedOffset = 44;

/// `picture` with `small` as the thumbnail that its EXIF keeps, and `behind` behind that.
Data withEmbedded(const CGImage& picture, const CGImage& small, const std::string& behind = {}) {
  const std::string jpeg = textOf(jpegOf(small));
  const auto u32 = [](std::size_t number) { return u16(number >> 16) + u16(number & 0xFFFF); };
  const auto record = [&](std::size_t tag, std::size_t value) {
    return u16(tag) + u16(4) + u32(1) + u32(value);
  };
  const std::string exif = "MM\0*\0\0\0\x08"s + u16(0) + u32(14) +  // an empty directory
                           u16(2) + record(0x0201, embeddedOffset) + record(0x0202, jpeg.size()) +
                           u32(0) + jpeg + behind;
  std::string file = textOf(jpegOf(picture));
  return dataOf(file.insert(2, jpegSegment(0xE1, "Exif\0\0"s + exif)));
}

TEST(Thumbnail, BoundsTheLargerSideAndNeverEnlarges) {
  const double nan = std::nan("");
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    std::optional<double> limit;
    std::size_t width;  // 0 for none
    std::size_t height;
  } cases[] = {{std::nullopt, 100, 60},
               {1000, 100, 60},
               {infinity, 100, 60},
               {100, 100, 60},
               {99, 99, 59},
               {50, 50, 30},
               {10.9, 10, 6},
               {1, 1, 1},
               {0.5, 1, 1},
               {0, 0, 0},
               {-3, 0, 0},
               {nan, 0, 0},
               {-infinity, 0, 0}};
  for (const bool lies : {false, true}) {
    const Data file = jpegOf(lies ? quarters(60, 100) : quarters(100, 60));
    for (const auto& [limit, width, height] : cases) {
      SCOPED_TRACE(limit.value_or(-1));
      const auto image = thumbnail(file, {.thumbnailMaxPixelSize = limit});
      ASSERT_EQ(image.has_value(), width > 0);
      if (image) {
        EXPECT_EQ(image->width(), lies ? height : width);
        EXPECT_EQ(image->height(), lies ? width : height);
        if (width >= 10) {
          EXPECT_EQ(cornersOf(*image), "rgbw");
        }
      }
    }
  }
}

TEST(Thumbnail, ThinImagesKeepOnePixel) {
  const auto image = thumbnail(jpegOf(quarters(2000, 3)), {.thumbnailMaxPixelSize = 20});
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 20U);
  EXPECT_EQ(image->height(), 1U);
}

TEST(Thumbnail, IsUprightForAllEightOrientations) {
  // What a viewer shows, for the stored corners red, green / blue, white.
  constexpr const char* shown[] = {"rgbw", "grwb", "wbgr", "bwrg", "rbgw", "brwg", "wgbr", "gwrb"};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const Data file = jpegOf(quarters(96, 64), {{"Orientation", orientation}});
    const bool lies = orientation >= 5;
    const auto upright =
        thumbnail(file, {.createThumbnailWithTransform = true, .thumbnailMaxPixelSize = 48});
    ASSERT_TRUE(upright);
    EXPECT_EQ(cornersOf(*upright), shown[orientation - 1]);
    EXPECT_EQ(upright->width(), lies ? 32U : 48U);
    EXPECT_EQ(upright->height(), lies ? 48U : 32U);

    const auto stored = thumbnail(file, {.thumbnailMaxPixelSize = 48});
    ASSERT_TRUE(stored);
    EXPECT_EQ(cornersOf(*stored), "rgbw");

    // The picture type turns when it is drawn: same sizes, and the bitmap as stored.
    const auto image = imageWithData(file);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (lies ? Size{64, 96} : Size{96, 64}));
    EXPECT_EQ(cornersOf(*image->cgImage()), "rgbw");
  }
}

TEST(Thumbnail, EmbeddedOneServesWhenItIsLargeEnough) {
  const Data file = withEmbedded(orange(600, 400), quarters(96, 64));
  EXPECT_EQ(cornersOf(*thumbnail(file, {.thumbnailMaxPixelSize = 96})), "rgbw");
  EXPECT_EQ(cornersOf(*thumbnail(file, {.thumbnailMaxPixelSize = 30})), "rgbw");
  EXPECT_EQ(thumbnail(file, {.thumbnailMaxPixelSize = 30})->width(), 30U);
  EXPECT_EQ(cornersOf(*thumbnail(file, {.thumbnailMaxPixelSize = 97})), "????");
  EXPECT_EQ(cornersOf(*thumbnail(
                file, {.createThumbnailFromImageAlways = true, .thumbnailMaxPixelSize = 30})),
            "????");
}

TEST(Thumbnail, EmbeddedOneIsNoPartOfWhatASaveKeeps) {
  const auto keptOf = [](const std::string& behind) {
    const Data file = withEmbedded(quarters(160, 120), orange(80, 60), behind);
    return CGImageSource::createWithData(file)->metadataBlocksAtIndex(0)->exif.size();
  };
  EXPECT_EQ(keptOf(""), embeddedOffset);
  EXPECT_EQ(keptOf("\0"s), embeddedOffset);  // padding
  EXPECT_GT(keptOf("more"), embeddedOffset + 4);
}

TEST(Thumbnail, EmbeddedOneOfAnotherShapeOrNoImageIsPassedOver) {
  const Data padded = withEmbedded(orange(600, 400), quarters(96, 72));
  EXPECT_EQ(cornersOf(*thumbnail(padded, {.thumbnailMaxPixelSize = 48})), "????");
  std::string broken = textOf(withEmbedded(orange(600, 400), quarters(96, 64)));
  broken.replace(broken.find("\xFF\xD8", 2), 2, "no");
  EXPECT_EQ(cornersOf(*thumbnail(dataOf(broken), {.thumbnailMaxPixelSize = 48})), "????");
}

TEST(Thumbnail, IsTheAverageOfItsArea) {
  // Stripes of one pixel, which skipping pixels would turn black or white.
  const CGImage stripes = makeImage(640, 480, CGColorSpace::createDeviceGray(),
                                    CGImageAlphaInfo::none, [](std::size_t x, std::size_t) {
                                      return Pixel{x % 2 ? std::uint8_t{255} : std::uint8_t{0}};
                                    });
  for (const int size : {500, 320, 170, 80, 40}) {
    const auto image = thumbnail(jpegOf(stripes), {.thumbnailMaxPixelSize = size});
    ASSERT_TRUE(image);
    EXPECT_EQ(image->layout().bitsPerPixel, 8U);
    double sum = 0;
    for (std::size_t x = 0; x < image->width(); ++x) sum += pixelOf(*image, x, 5)[0];
    EXPECT_NEAR(sum / static_cast<double>(image->width()), 127.5, 3) << size;
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
