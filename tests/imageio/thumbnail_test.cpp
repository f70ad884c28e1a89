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

using namespace testing;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class ThumbnailTest : public ::testing::Test {
 protected:
  URL file(std::string_view name, const Data& data) {
    writeFile(folder_.path(name), data);
    return URL::fileURLWithPath(folder_.path(name));
  }

  const TemporaryFolder folder_;
};

TEST_F(ThumbnailTest, TheLargerSideBoundsBothAndNothingIsEnlarged) {
  const URL url = file("a.jpg", encoded(redAndBlue(200, 100), "public.jpeg"));
  const auto sizeFor = [&](Size asked) {
    const std::optional<UIImage> thumbnail = thumbnailForImageAtURL(url, asked);
    return thumbnail ? thumbnail->size() : Size();
  };
  for (const Size asked : {Size{50, 50}, {1, 50}, {-1, 50}})
    EXPECT_EQ(sizeFor(asked), (Size{50, 25}));
  for (const Size asked : {Size{1000, 1000}, {infinity, 1}})
    EXPECT_EQ(sizeFor(asked), (Size{200, 100}));
  EXPECT_EQ(sizeFor({1, 1}), (Size{1, 1}));
  for (const Size asked : {Size{0, 0}, {-1, -50}, {nan, 50}, {50, nan}})
    EXPECT_EQ(sizeFor(asked), Size());
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
