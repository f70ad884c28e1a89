#include <framework_utility/imageio/image_writer.h>

#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <utility>

namespace FrameworkUtility {
namespace {

using testing::encoded;
using testing::redAndBlue;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class ThumbnailTest : public ::testing::Test {
 protected:
  URL file(std::string_view name, const Data& data) {
    testing::writeFile(folder_.path(name), data);
    return URL::fileURLWithPath(folder_.path(name));
  }

  const testing::TemporaryFolder folder_;
};

TEST_F(ThumbnailTest, TheLargerSideBoundsBothAndNothingIsEnlarged) {
  const URL url = file("a.jpg", encoded(redAndBlue(200, 100), "public.jpeg"));
  struct Case {
    Size asked;
    std::optional<Size> given;
  };
  for (const Case& c : {Case{{50, 50}, Size{50, 25}}, Case{{1, 50}, Size{50, 25}},
                        Case{{-1, 50}, Size{50, 25}}, Case{{1, 1}, Size{1, 1}},
                        Case{{1000, 1000}, Size{200, 100}}, Case{{infinity, 1}, Size{200, 100}},
                        Case{{0, 0}, std::nullopt}, Case{{-1, -50}, std::nullopt},
                        Case{{nan, 50}, std::nullopt}, Case{{50, nan}, std::nullopt}}) {
    SCOPED_TRACE(::testing::Message() << c.asked.width << 'x' << c.asked.height);
    const std::optional<UIImage> thumbnail = thumbnailForImageAtURL(url, c.asked);
    ASSERT_EQ(thumbnail.has_value(), c.given.has_value());
    if (thumbnail) {
      EXPECT_EQ(thumbnail->size(), *c.given);
    }
  }
}

TEST_F(ThumbnailTest, IsUpright) {
  const URL url =
      file("a.jpg", encoded(redAndBlue(200, 100), "public.jpeg", Dictionary{{"Orientation", 6}}));
  const std::optional<UIImage> thumbnail = thumbnailForImageAtURL(url, {50, 50});
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->size(), (Size{25, 50}));
  EXPECT_EQ(thumbnail->imageOrientation(), UIImageOrientation::up);
  // Left became top: a red pixel in the middle of the first row.
  const Data& pixels = thumbnail->cgImage()->pixels();
  EXPECT_GT(std::to_integer<int>(pixels.data()[4 * 12]), 200);
  EXPECT_LT(std::to_integer<int>(pixels.data()[4 * 12 + 2]), 60);
}

TEST_F(ThumbnailTest, NeedsAWholeImageFile) {
  const Data jpeg = encoded(redAndBlue(200, 100), "public.jpeg");
  const struct {
    URL url;
    Size size;
    std::uint64_t mostPixels;
    std::int64_t code;
  } cases[] = {{URL::fileURLWithPath(folder_.path("none")), {50, 50}, 20'000, 260},
               {URL::fileURLWithPath(folder_.path()), {50, 50}, 20'000, 256},
               {file("empty", Data()), {50, 50}, 20'000, 259},
               {file("cut", Data(std::span(jpeg.data(), 30))), {50, 50}, 20'000, 259},
               {file("whole", jpeg), {nan, 50}, 20'000, 256},
               {file("whole", jpeg), {50, 50}, 19'999, 263}};
  Error error;
  for (const auto& [url, size, mostPixels, code] : cases) {
    EXPECT_FALSE(thumbnailForImageAtURL(url, size, {.mostPixels = mostPixels}, &error));
    EXPECT_EQ(std::exchange(error, Error()).code(), code);
  }
}

TEST_F(ThumbnailTest, ByWayOfTheDiskItLeavesNoFile) {
  const UIImage turned(redAndBlue(200, 100), 2, UIImageOrientation::right);
  const std::optional<UIImage> thumbnail =
      thumbnailWrittenOnDiskWithSize(turned, {50, 50}, "Thumbnail-1");
  ASSERT_TRUE(thumbnail);
  EXPECT_EQ(thumbnail->size(), (Size{25, 50}));
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(temporaryDirectory() + "Thumbnail-1")) {
    EXPECT_TRUE(entry.is_directory()) << entry.path();
  }

  Error error;
  EXPECT_FALSE(thumbnailWrittenOnDiskWithSize(turned, {50, 50}, "", &error));
  EXPECT_TRUE(error.is(CGImageWriteToDiskError::noFolder));
  EXPECT_FALSE(
      thumbnailWrittenOnDiskWithSize(UIImage::withoutBitmap({5, 5}), {50, 50}, "T", &error));
  EXPECT_TRUE(error.is(CGImageWriteToDiskError::imageIsNil));
  EXPECT_FALSE(thumbnailWrittenOnDiskWithSize(turned, {0, 0}, "T", &error));
  EXPECT_EQ(error.localizedDescription(), "A thumbnail needs a side above 0.");
}

}  // namespace
}  // namespace FrameworkUtility
