#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

namespace FrameworkUtility::testing {
namespace {

std::string contentsOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(ImageDestination, NeedsAnEncoder) {
  const TemporaryFolder folder;
  const URL url = URL::fileURLWithPath(folder.path("a"));
  for (const char* type : {"public.heic", "org.webmproject.webp", "public.data", ""}) {
    EXPECT_EQ(CGImageDestination::createWithURL(url, type, 1), nullptr) << type;
    EXPECT_EQ(CGImageDestination::createInMemory(type, 1), nullptr) << type;
  }
  EXPECT_EQ(CGImageDestination::createWithURL(*URL::withString("https://example.org/a"),
                                              "public.jpeg", 1),
            nullptr);
}

TEST(ImageDestination, HasAsManyImagesAsAnnounced) {
  const TemporaryFolder folder;
  const CGImage image = quarters(16, 16);
  for (const std::size_t announced : {0U, 1U, 2U}) {
    for (const std::size_t added : {0U, 1U, 2U}) {
      SCOPED_TRACE(std::to_string(announced) + " announced, " + std::to_string(added) + " added");
      const bool isWhole = announced == 1 && added == 1;
      const std::string path = folder.path(std::to_string(announced) + std::to_string(added));
      const auto destination =
          CGImageDestination::createWithURL(URL::fileURLWithPath(path), "public.jpeg", announced);
      for (std::size_t i = 0; i < added; ++i) destination->addImage(image);
      EXPECT_FALSE(std::filesystem::exists(path)) << "before it is finalized";
      Error error;
      EXPECT_EQ(destination->finalize(&error), isWhole);
      EXPECT_EQ(std::filesystem::exists(path), isWhole);
      EXPECT_EQ(error.code(), isWhole ? 0 : NSFileWriteUnknownError);
      EXPECT_FALSE(destination->finalize(&error)) << "a second time";
      EXPECT_EQ(error.localizedDescription(), "the image file was finished before");
      EXPECT_FALSE(destination->data());
    }
  }
}

TEST(ImageDestination, ReplacesAFileOnlyByAWholeOne) {
  const TemporaryFolder folder;
  const std::string path = folder.path("a.jpeg");
  std::ofstream(path) << "old";
  Error error;
  const auto write = [&](std::size_t width) {
    const auto destination =
        CGImageDestination::createWithURL(URL::fileURLWithPath(path), "public.jpeg", 1);
    destination->addImage(makeImage(width, 1, CGColorSpace::createDeviceGray(),
                                    CGImageAlphaInfo::none,
                                    [](std::size_t, std::size_t) { return Pixel{9}; }));
    return destination->finalize(&error);
  };
  EXPECT_FALSE(write(70'000));
  EXPECT_EQ(error.localizedDescription(), "Maximum supported image dimension is 65500 pixels");
  EXPECT_EQ(contentsOf(path), "old");
  EXPECT_TRUE(write(7));
  EXPECT_EQ(CGImageSource::createWithURL(URL::fileURLWithPath(path))->imageAtIndex(0)->width(), 7U);
  std::filesystem::remove(path);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(ImageDestination, FailsWhereTheFileCannotBeWritten) {
  const TemporaryFolder folder;
  const std::string path = folder.path("missing/a.jpeg");
  const auto destination =
      CGImageDestination::createWithURL(URL::fileURLWithPath(path), "public.jpeg", 1);
  destination->addImage(quarters(8, 8));
  Error error;
  EXPECT_FALSE(destination->finalize(&error));
  EXPECT_EQ(error.code(), NSFileNoSuchFileError);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(ImageDestination, QualityIsUsedAndNotStored) {
  const CGImage image = quarters(64, 64);
  const auto sizeAt = [&](const Value& quality) {
    return jpegOf(image, {{kCGImageDestinationLossyCompressionQuality, quality}}).size();
  };
  EXPECT_LT(sizeAt(0.1), sizeAt(1.0));
  EXPECT_EQ(sizeAt(7), sizeAt(1.0));
  const std::size_t usual = jpegOf(image).size();
  EXPECT_EQ(sizeAt(0.85), usual);
  EXPECT_EQ(sizeAt("good"), usual);
  EXPECT_EQ(sizeAt(-1), usual);
  EXPECT_EQ(sizeAt(std::numeric_limits<double>::quiet_NaN()), usual);
}

TEST(ImageDestination, MergesPropertiesIntoWhatTheSourceHeld) {
  const Data first = jpegOf(
      quarters(32, 32),
      {{"Orientation", 6}, {"{TIFF}", Dictionary{{"Software", "Pelvar"}, {"Make", "Kestrin"}}}});
  const auto source = CGImageSource::createWithData(first);
  Dictionary properties = *source->propertiesAtIndex(0);
  properties.subdictionary("{TIFF}").set("Software", "Vumbo");
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  destination->addImage(quarters(40, 20), properties, source->metadataBlocksAtIndex(0));
  ASSERT_TRUE(destination->finalize());
  const Dictionary saved =
      *CGImageSource::createWithData(*destination->data())->propertiesAtIndex(0);
  EXPECT_EQ(*saved.get<Number>("PixelWidth"), Number(40));
  EXPECT_EQ(*saved.get<Number>("Orientation"), Number(6));
  const Dictionary& tiff = *saved.get<Dictionary>("{TIFF}");
  EXPECT_EQ(*tiff.get<std::string>("Software"), "Vumbo");
  EXPECT_EQ(*tiff.get<std::string>("Make"), "Kestrin");
}

TEST(UIImageCoding, JpegKeepsTheOrientation) {
  for (int raw = 0; raw < 8; ++raw) {
    const auto orientation = static_cast<UIImageOrientation>(raw);
    const auto jpeg = UIImageJPEGRepresentation(UIImage(quarters(32, 16), 2, orientation), 0.9);
    ASSERT_TRUE(jpeg);
    const auto image = imageWithData(*jpeg);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->imageOrientation(), orientation);
    EXPECT_EQ(cornersOf(*image->cgImage()), "rgbw");
  }
  Error error;
  EXPECT_FALSE(UIImageJPEGRepresentation(UIImage::withoutBitmap({5, 5}), 0.9, &error));
  EXPECT_EQ(error.localizedDescription(), "the picture has no bitmap");
}

}  // namespace
}  // namespace FrameworkUtility::testing
