#include <framework_utility/imageio/image_writer.h>

#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <tests/imageio/pictures.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace FrameworkUtility {
namespace {

using namespace testing;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

URL file(const TemporaryFolder& folder, const char* name, const Data& data) {
  writeFile(folder.path(name), data);
  return URL::fileURLWithPath(folder.path(name));
}

TEST(ThumbnailTest, IsUprightAndBoundedByTheLargerSide) {
  const TemporaryFolder folder;
  const Dictionary turned{{"Orientation", 6}};
  const URL url = file(folder, "a", encoded(redAndBlue(200, 100), "public.jpeg", turned));
  const auto sizeFor = [&](Size asked) {
    const std::optional<UIImage> thumbnail = thumbnailForImageAtURL(url, asked);
    return thumbnail ? thumbnail->size() : Size();
  };
  for (const Size asked : {Size{50, 50}, {1, 50}, {50, -1}}) {
    EXPECT_EQ(sizeFor(asked), (Size{25, 50}));
  }
  EXPECT_EQ(sizeFor({infinity, 1}), (Size{100, 200}));  // never enlarged
  for (const Size asked : {Size{0, 0}, {-1, -50}, {nan, 50}, {50, nan}}) {
    EXPECT_EQ(sizeFor(asked), Size());
  }
  EXPECT_EQ(thumbnailForImageAtURL(url, {9, 9})->imageOrientation(), UIImageOrientation::up);
}

TEST(ThumbnailTest, NeedsAWholeImageFileWithinTheLimits) {
  const TemporaryFolder folder;
  const Data jpeg = encoded(redAndBlue(200, 100), "public.jpeg");
  const auto codeFor = [](const URL& url, std::uint64_t mostPixels = 20'000) {
    Error error;
    EXPECT_FALSE(thumbnailForImageAtURL(url, {50, 50}, {.mostPixels = mostPixels}, &error));
    return error.code();
  };
  EXPECT_EQ(codeFor(URL::fileURLWithPath(folder.path("none"))), 260);
  EXPECT_EQ(codeFor(URL::fileURLWithPath(folder.path())), 256);
  EXPECT_EQ(codeFor(file(folder, "empty", Data())), 259);
  EXPECT_EQ(codeFor(file(folder, "cut", Data(std::span(jpeg).first(30)))), 259);
  EXPECT_EQ(codeFor(file(folder, "whole", jpeg), 19'999), 263);
}

TEST(ThumbnailTest, ByWayOfTheDiskItLeavesNoFile) {
  const UIImage turned(redAndBlue(200, 100), 2, UIImageOrientation::right);
  EXPECT_EQ(thumbnailWrittenOnDiskWithSize(turned, {50, 50}, "Thumbnail-1")->size(),
            (Size{25, 50}));
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(temporaryDirectory() + "Thumbnail-1")) {
    EXPECT_TRUE(entry.is_directory()) << entry.path();
  }
  const auto errorOf = [](const UIImage& image, Size size, std::string_view identifier) {
    Error error;
    EXPECT_FALSE(thumbnailWrittenOnDiskWithSize(image, size, identifier, &error));
    return error;
  };
  EXPECT_TRUE(errorOf(turned, {50, 50}, "").is(CGImageWriteToDiskError::noFolder));
  EXPECT_TRUE(errorOf(UIImage::withoutBitmap({5, 5}), {50, 50}, "T")
                  .is(CGImageWriteToDiskError::imageIsNil));
  EXPECT_EQ(errorOf(turned, {0, 0}, "T").localizedDescription(),
            "A thumbnail needs a side above 0.");
}

}  // namespace
}  // namespace FrameworkUtility
