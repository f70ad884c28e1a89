#include <framework_utility/platform/foundation/files.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata_blocks.h>
#include <framework_utility/platform/imageio/property_keys.h>
#include <tests/platform/imageio/jpeg_file.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

namespace FrameworkUtility::testing {
namespace {

using namespace std::string_literals;

URL write(const TemporaryFolder& folder, const char* name, const Data& bytes) {
  std::ofstream(folder.path(name), std::ios::binary) << textOf(bytes);
  return URL::fileURLWithPath(folder.path(name));
}

TEST(ImageSource, NeedsAFileThatCanBeRead) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("fifo").c_str(), 0600), 0);
  EXPECT_FALSE(CGImageSource::createWithURL(URL::fileURLWithPath(folder.path("missing"))));
  EXPECT_FALSE(CGImageSource::createWithURL(URL::fileURLWithPath(folder.path())));
  EXPECT_FALSE(CGImageSource::createWithURL(URL::fileURLWithPath(folder.path("fifo"))));
  EXPECT_FALSE(CGImageSource::createWithURL(*URL::withString("https://example.org/a.jpg")));
}

TEST(ImageSource, AnyBytesMakeASource) {
  for (const std::string& bytes : {""s, "hello"s, "\xFF\xD8"s, "\xFF\xD8\xFF"s}) {
    const auto source = CGImageSource::createWithData(dataOf(bytes));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->status(), bytes.size() == 3 ? CGImageSourceStatus::incomplete
                                                  : CGImageSourceStatus::unknownType);
    EXPECT_EQ(source->type().has_value(), bytes.size() == 3);
    EXPECT_EQ(source->count(), 0U);
    EXPECT_FALSE(source->propertiesAtIndex(0));
    EXPECT_FALSE(source->imageAtIndex(0));
    EXPECT_FALSE(source->thumbnailAtIndex(0, {}));
    EXPECT_EQ(source->metadataBlocksAtIndex(0), nullptr);
  }
  EXPECT_EQ(description(CGImageSourceStatus::unknownType), "statusUnknownType");
}

TEST(ImageSource, PropertiesHoldTheFileSizeOnlyForTheContainer) {
  const Data file = jpegOf(quarters(48, 32));
  const auto source = CGImageSource::createWithData(file, {.typeIdentifierHint = "public.png"});
  EXPECT_EQ(source->status(), CGImageSourceStatus::complete);
  EXPECT_EQ(source->type(), "public.jpeg");
  EXPECT_EQ(source->count(), 1U);
  EXPECT_EQ(source->properties(), (Dictionary{{"FileSize", file.size()}}));
  const Dictionary jfif{
      {"JFIFVersion", Value(Array{1, 0, 1})}, {"DensityUnit", 0}, {"XDensity", 1}, {"YDensity", 1}};
  EXPECT_EQ(source->propertiesAtIndex(0), (Dictionary{{"ColorModel", "RGB"},
                                                      {"Depth", 8},
                                                      {"PixelWidth", 48},
                                                      {"PixelHeight", 32},
                                                      {"{JFIF}", jfif}}));
  EXPECT_FALSE(source->propertiesAtIndex(1));
  EXPECT_FALSE(source->imageAtIndex(1));
  EXPECT_FALSE(source->auxiliaryDataInfoAtIndex(0, kCGImageAuxiliaryDataTypeDepth));
}

TEST(ImageSource, NamesTheProfile) {
  const auto nameOf = [](const CGColorSpace& space) {
    const auto source = CGImageSource::createWithData(
        jpegOf(makeImage(8, 8, space, CGImageAlphaInfo::noneSkipLast, [](std::size_t, std::size_t) {
          return Pixel{1, 2, 3, 255};
        })));
    const Dictionary properties = *source->propertiesAtIndex(0);
    const auto* name = properties.get<std::string>(kCGImagePropertyProfileName);
    EXPECT_EQ(*source->imageAtIndex(0)->colorSpace(), space);
    return name ? *name : "";
  };
  const CGColorSpace displayP3 = *CGColorSpace::createWithName(kCGColorSpaceDisplayP3);
  EXPECT_EQ(nameOf(displayP3), displayP3.profileName());
  EXPECT_EQ(nameOf(CGColorSpace::createDeviceRGB()), "") << "what a reader assumes anyway";
}

TEST(ImageSource, LargeFileIsTheSameFromDiskAndMemory) {
  const TemporaryFolder folder;
  // Metadata beyond the first bytes that are read, and pixels over several windows.
  std::string bytes = textOf(jpegOf(makeImage(
      1200, 900, CGColorSpace::createDeviceRGB(), CGImageAlphaInfo::noneSkipLast,
      [](std::size_t x, std::size_t y) {
        return Pixel{static_cast<std::uint8_t>(x * y), static_cast<std::uint8_t>(x ^ y), 7, 255};
      })));
  bytes.insert(2, jpegSegment(0xE5, std::string(50'000, 'x')) +
                      jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0"s + "<x:xmpmeta/>"));
  const auto memory = CGImageSource::createWithData(dataOf(bytes));
  const auto file = CGImageSource::createWithURL(write(folder, "a.jpg", dataOf(bytes)));
  EXPECT_EQ(file->propertiesAtIndex(0), memory->propertiesAtIndex(0));
  ASSERT_NE(file->metadataBlocksAtIndex(0), nullptr);
  EXPECT_EQ(textOf(file->metadataBlocksAtIndex(0)->xmp), "<x:xmpmeta/>");
  const auto image = file->imageAtIndex(0);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->pixels(), memory->imageAtIndex(0)->pixels());
}

TEST(ImageSource, FileThatShrinksIsDamagedNotFatal) {
  const TemporaryFolder folder;
  const URL url = write(folder, "a.jpg", jpegOf(quarters(1500, 1500), {{"Orientation", 6}}));
  const auto source = CGImageSource::createWithURL(url);
  ASSERT_EQ(source->status(), CGImageSourceStatus::complete);
  ASSERT_EQ(truncate(folder.path("a.jpg").c_str(), 3000), 0);
  EXPECT_FALSE(source->imageAtIndex(0));
  EXPECT_TRUE(source->propertiesAtIndex(0));
}

TEST(ImageSource, ManyThreadsMayAskAtOnce) {
  const auto source = CGImageSource::createWithData(jpegOf(quarters(64, 64), {{"Orientation", 3}}));
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([copy = *source] {
      EXPECT_EQ(copy.count(), 1U);
      EXPECT_EQ(*copy.propertiesAtIndex(0)->get<Number>("Orientation"), Number(3));
      EXPECT_TRUE(copy.imageAtIndex(0));
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
