#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/support/files.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace FrameworkUtility::testing {
namespace {

TEST(ImageDestination, NeedsAnEncoder) {
  const TemporaryFolder folder;
  const URL url = URL::fileURLWithPath(folder.path("a"));
  for (const char* type :
       {"public.heic", "org.webmproject.webp", "com.microsoft.bmp", "public.data", ""}) {
    EXPECT_EQ(CGImageDestination::createWithURL(url, type, 1), nullptr) << type;
    EXPECT_EQ(CGImageDestination::createInMemory(type, 1), nullptr) << type;
  }
  EXPECT_EQ(CGImageDestination::createWithURL(*URL::withString("https://example.org/a"),
                                              "public.jpeg", 1),
            nullptr);
}

TEST(ImageDestination, HasAsManyImagesAsAnnounced) {
  const TemporaryFolder folder;
  const std::string path = folder.path("a");
  for (const std::string type : {"public.jpeg", "public.png"}) {
    for (const auto& [announced, added] :
         {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}, {1, 2}, {2, 0}, {2, 1}, {2, 2}}) {
      SCOPED_TRACE(type + ", " + std::to_string(announced) + ", " + std::to_string(added));
      const bool isWhole = announced == 1 && added == 1;
      const auto destination = CGImageDestination::createWithURL(
          URL::fileURLWithPath(path), type, static_cast<std::size_t>(announced));
      for (int i = 0; i < added; ++i) destination->addImage(quarters(16, 16));
      EXPECT_FALSE(std::filesystem::exists(path)) << "before it is finalized";
      Error error;
      EXPECT_EQ(destination->finalize(&error), isWhole);
      EXPECT_EQ(std::filesystem::remove(path), isWhole);
      EXPECT_EQ(error.code(), isWhole ? 0 : NSFileWriteUnknownError);
      destination->addImage(quarters(16, 16));
      EXPECT_FALSE(destination->finalize(&error)) << "a second time";
      EXPECT_EQ(error.localizedDescription(), "the image file was finished before");
      EXPECT_FALSE(destination->data());
    }
  }
}

TEST(ImageDestination, PropertiesOfTheWholeFileAreNoneOfTheImage) {
  for (const char* type : {"public.jpeg", "public.png"}) {
    std::optional<Data> files[2];
    for (const bool hasProperties : {false, true}) {
      const auto destination = CGImageDestination::createInMemory(type, 1);
      if (hasProperties) destination->setProperties({{"Orientation", 6}});
      destination->addImage(quarters(16, 16));
      destination->addAuxiliaryDataInfo(kCGImageAuxiliaryDataTypeDepth, {});
      if (hasProperties) destination->setProperties({{"DPIWidth", 300}, {"DPIHeight", 300}});
      EXPECT_FALSE(destination->data()) << "before it is finalized";
      EXPECT_TRUE(destination->finalize());
      files[hasProperties] = destination->data();
    }
    EXPECT_TRUE(files[0]);
    EXPECT_EQ(files[0], files[1]);
  }
}

TEST(ImageDestination, ReplacesAFileOnlyByAWholeOne) {
  const TemporaryFolder folder;
  const auto write = [&](const char* name, std::size_t width) {
    const auto destination = CGImageDestination::createWithURL(
        URL::fileURLWithPath(folder.path(name)), "public.jpeg", 1);
    destination->addImage(quarters(width, 1));
    Error error;
    return destination->finalize(&error) ? std::nullopt : std::optional(error);
  };
  std::ofstream(folder.path("a.jpeg")) << "old";
  EXPECT_EQ(write("a.jpeg", 70'000)->localizedDescription(),
            "Maximum supported image dimension is 65500 pixels");
  EXPECT_EQ(contentsOf(FileManager::defaultManager(), folder.path("a.jpeg")), "old");
  EXPECT_FALSE(write("a.jpeg", 7));
  const auto source = CGImageSource::createWithURL(URL::fileURLWithPath(folder.path("a.jpeg")));
  EXPECT_EQ(source->imageAtIndex(0)->width(), 7U);
  EXPECT_EQ(write("missing/a.jpeg", 8)->code(), NSFileNoSuchFileError);
  std::filesystem::remove(folder.path("a.jpeg"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(ImageDestination, QualityIsUsedAndNotStored) {
  const CGImage image = quarters(64, 64);
  const auto sizeAt = [&](const Value& quality) {
    return jpegOf(image, {{kCGImageDestinationLossyCompressionQuality, quality}}).size();
  };
  EXPECT_LT(sizeAt(0.1), sizeAt(1.0));
  EXPECT_EQ(sizeAt(7), sizeAt(1.0));
  for (const Value& usual : {Value(0.85), Value("good"), Value(-1), Value(std::nan(""))}) {
    EXPECT_EQ(sizeAt(usual), jpegOf(image).size());
  }
}

TEST(UIImageCoding, JpegKeepsTheOrientation) {
  for (int raw = 0; raw < 8; ++raw) {
    const auto orientation = static_cast<UIImageOrientation>(raw);
    const UIImage original(quarters(32, 16), 1, orientation);
    const auto image = imageWithData(UIImageJPEGRepresentation(original, 0.9).value());
    ASSERT_TRUE(image);
    EXPECT_EQ(image->imageOrientation(), orientation);
    EXPECT_EQ(image->size(), original.size());
    EXPECT_EQ(cornersOf(*image->cgImage()), "rgbw");
  }
  Error error;
  EXPECT_FALSE(UIImageJPEGRepresentation(UIImage::withoutBitmap({5, 5}), 0.9, &error));
  EXPECT_EQ(error.localizedDescription(), "the picture has no bitmap");
}

}  // namespace
}  // namespace FrameworkUtility::testing
