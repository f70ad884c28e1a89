#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/platform/imageio/metadata/exif_block.h>

#include <gtest/gtest.h>

#include <limits>

namespace FrameworkUtility::testing {
namespace {

std::optional<CGImage> thumbnail(const Data& file, const CGImageSourceThumbnailOptions& options) {
  return CGImageSource::createWithData(file)->thumbnailAtIndex(0, options);
}

CGImage orange(std::size_t width, std::size_t height) {
  return plainImage(width, height, CGColorSpace::createDeviceRGB(), CGImageAlphaInfo::noneSkipLast,
                    {255, 128, 0, 255});
}

/// `picture` with `small` as the thumbnail that its EXIF keeps, and `behind` behind that.
Data withEmbedded(const CGImage& picture, const CGImage& small, const std::string& behind = {}) {
  TestBlock block;
  block.image = {{0x131, "Pelvar"}};
  block.thumbnail = textOf(jpegOf(small));
  const std::string exif = std::string(detail::asText(block.bytes())) + behind;
  std::string file = textOf(jpegOf(picture));
  return dataOf(file.insert(2, jpegSegment(0xE1, "Exif\0\0"s + exif)));
}

TEST(Thumbnail, BoundsTheLargerSideAndNeverEnlarges) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  // What is asked, and the sides that come of 100 and 60; none for 0.
  constexpr double limits[] = {infinity, 100, 99, 50, 10.9, 1, 0.5, 0, -3, nan, -infinity};
  constexpr std::size_t large[] = {100, 100, 99, 50, 10, 1, 1, 0, 0, 0, 0};
  constexpr std::size_t small[] = {60, 60, 59, 30, 6, 1, 1, 0, 0, 0, 0};
  for (const bool lies : {false, true}) {
    const Data file = jpegOf(lies ? quarters(60, 100) : quarters(100, 60));
    EXPECT_EQ(thumbnail(file, {})->width(), lies ? 60U : 100U);
    for (std::size_t i = 0; i < std::size(limits); ++i) {
      SCOPED_TRACE(limits[i]);
      const auto image = thumbnail(file, {.thumbnailMaxPixelSize = limits[i]});
      EXPECT_EQ(image ? image->width() : 0, lies ? small[i] : large[i]);
      EXPECT_EQ(image ? image->height() : 0, lies ? large[i] : small[i]);
      EXPECT_EQ(large[i] >= 10 ? cornersOf(*image) : "rgbw", "rgbw");
    }
  }
  const auto thin = thumbnail(jpegOf(quarters(2000, 3)), {.thumbnailMaxPixelSize = 20});
  EXPECT_EQ(thin->width(), 20U);
  EXPECT_EQ(thin->height(), 1U);
}

TEST(Thumbnail, IsUprightForAllEightOrientations) {
  // What a viewer shows, for the stored corners red, green / blue, white.
  constexpr const char* shown[] = {"rgbw", "grwb", "wbgr", "bwrg", "rbgw", "brwg", "wgbr", "gwrb"};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const Data file = jpegOf(quarters(96, 64), {{"Orientation", orientation}});
    const auto upright =
        thumbnail(file, {.createThumbnailWithTransform = true, .thumbnailMaxPixelSize = 48});
    ASSERT_TRUE(upright);
    EXPECT_EQ(cornersOf(*upright), shown[orientation - 1]);
    EXPECT_EQ(upright->width(), orientation >= 5 ? 32U : 48U);
    EXPECT_EQ(upright->height(), orientation >= 5 ? 48U : 32U);
    EXPECT_EQ(cornersOf(*thumbnail(file, {.thumbnailMaxPixelSize = 48})), "rgbw");
  }
}

TEST(Thumbnail, EmbeddedOneServesWhenItIsLargeEnough) {
  const Data file = withEmbedded(orange(600, 400), quarters(96, 64));
  for (const int size : {96, 30}) {
    const auto image = thumbnail(file, {.thumbnailMaxPixelSize = size});
    EXPECT_EQ(cornersOf(*image), "rgbw");
    EXPECT_EQ(image->width(), static_cast<std::size_t>(size));
  }
  const auto expectDecoded = [](const Data& data, const CGImageSourceThumbnailOptions& options) {
    EXPECT_EQ(cornersOf(*thumbnail(data, options)), "????");
  };
  expectDecoded(file, {.thumbnailMaxPixelSize = 97});
  expectDecoded(file, {.createThumbnailFromImageAlways = true, .thumbnailMaxPixelSize = 30});
  // One of another shape, or no image.
  expectDecoded(withEmbedded(orange(600, 400), quarters(96, 72)), {.thumbnailMaxPixelSize = 48});
  std::string broken = textOf(file);
  broken.replace(broken.find("\xFF\xD8", 2), 2, "no");
  expectDecoded(dataOf(broken), {.thumbnailMaxPixelSize = 48});
}

TEST(Thumbnail, EmbeddedOneIsNoPartOfWhatASaveKeeps) {
  const auto keptOf = [](const std::string& behind) {
    const Data file = withEmbedded(quarters(160, 120), orange(80, 60), behind);
    return CGImageSource::createWithData(file)->metadataBlocksAtIndex(0)->exif.size();
  };
  const std::size_t least = keptOf("");
  EXPECT_LT(least, 100U);
  EXPECT_EQ(keptOf("\0"s), least);  // padding
  EXPECT_GT(keptOf("more"), least + 4);
}

TEST(Thumbnail, IsTheAverageOfItsArea) {
  // Stripes of one pixel, which skipping pixels would turn black or white.
  const CGImage stripes =
      makeImage(640, 480, CGColorSpace::createDeviceGray(), CGImageAlphaInfo::none,
                [](auto x, auto) { return Bytes{x % 2 ? std::uint8_t{255} : std::uint8_t{0}}; });
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
