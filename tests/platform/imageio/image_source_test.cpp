#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/image_source_error.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/platform/imageio/formats/png_file.h>
#include <tests/support/files.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <thread>

namespace FrameworkUtility::testing {
namespace {

using namespace std::string_literals;
using ::testing::HasSubstr;

URL write(const TemporaryFolder& folder, const char* name, const Data& bytes) {
  std::ofstream(folder.path(name), std::ios::binary) << textOf(bytes);
  return URL::fileURLWithPath(folder.path(name));
}

TEST(ImageSource, NeedsAFileThatCanBeRead) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("fifo").c_str(), 0600), 0);
  const std::pair<URL, int> cases[] = {
      {URL::fileURLWithPath(folder.path("missing")), NSFileReadNoSuchFileError},
      {URL::fileURLWithPath(folder.path()), NSFileReadUnknownError},
      {URL::fileURLWithPath(folder.path("fifo")), NSFileReadUnknownError},
      {*URL::withString("https://example.org/a"), CGImageSourceError::notAFileURL.code}};
  for (const auto& [url, code] : cases) {
    Error error;
    EXPECT_FALSE(CGImageSource::createWithURL(url, {}, &error));
    EXPECT_EQ(error.code(), code);
  }
}

TEST(ImageSource, AnyBytesMakeASourceWhateverTheHint) {
  const std::pair<std::string, std::optional<std::string>> cases[] = {
      {"", std::nullopt},
      {"hello", std::nullopt},
      {"\xFF\xD8", std::nullopt},
      {"\xFF\xD8\xFF", "public.jpeg"},
      {"\x89PNG\r\n\x1A\n", "public.png"},
      {"BM" + std::string(12, '\0') + "\x28\0\0\0"s, "com.microsoft.bmp"}};
  for (const auto& [bytes, type] : cases) {
    for (const char* hint : {"", "public.jpeg", "public.png", "com.microsoft.bmp", "public.heic"}) {
      SCOPED_TRACE(bytes + " as " + hint);
      const auto source =
          CGImageSource::createWithData(dataOf(bytes), {.typeIdentifierHint = hint});
      ASSERT_TRUE(source);
      EXPECT_EQ(source->type(), type);
      EXPECT_EQ(source->status(),
                type ? CGImageSourceStatus::incomplete : CGImageSourceStatus::unknownType);
      EXPECT_EQ(source->count(), 0U);
      EXPECT_FALSE(source->propertiesAtIndex(0));
      EXPECT_FALSE(source->thumbnailAtIndex(0, {}));
      EXPECT_EQ(source->metadataBlocksAtIndex(0), nullptr);
    }
  }
  EXPECT_EQ(description(CGImageSourceStatus::unknownType), "statusUnknownType");
}

TEST(ImageSource, PropertiesHoldTheFileSizeOnlyForTheContainer) {
  const Data file = jpegOf(quarters(48, 32));
  const auto source = CGImageSource::createWithData(file);
  EXPECT_EQ(source->status(), CGImageSourceStatus::complete);
  EXPECT_EQ(source->count(), 1U);
  EXPECT_EQ(source->properties(), (Dictionary{{"FileSize", file.size()}}));
  Dictionary facts = *source->propertiesAtIndex(0);
  facts.remove("{JFIF}");
  EXPECT_EQ(
      facts,
      (Dictionary{{"ColorModel", "RGB"}, {"Depth", 8}, {"PixelWidth", 48}, {"PixelHeight", 32}}));
  EXPECT_FALSE(source->propertiesAtIndex(1));
  EXPECT_FALSE(source->imageAtIndex(1));
  EXPECT_FALSE(source->auxiliaryDataInfoAtIndex(0, kCGImageAuxiliaryDataTypeDepth));
}

TEST(ImageSource, NamesTheProfile) {
  const CGColorSpace displayP3 = *CGColorSpace::createWithName(kCGColorSpaceDisplayP3);
  // Nothing for what a reader assumes anyway.
  for (const CGColorSpace& space : {displayP3, CGColorSpace::createDeviceRGB()}) {
    const auto source = CGImageSource::createWithData(
        jpegOf(plainImage(8, 8, space, CGImageAlphaInfo::noneSkipLast, {1, 2, 3, 255})));
    const Dictionary properties = *source->propertiesAtIndex(0);
    const auto* name = properties.get<std::string>(kCGImagePropertyProfileName);
    EXPECT_EQ(name ? *name : "", space == displayP3 ? displayP3.profileName() : "");
    EXPECT_EQ(*source->imageAtIndex(0)->colorSpace(), space);
  }
}

TEST(ImageSource, LargeFileIsTheSameFromDiskAndMemory) {
  const TemporaryFolder folder;
  // Metadata beyond the first bytes that are read, and pixels over several windows.
  std::string bytes = textOf(
      jpegOf(makeImage(1200, 900, CGColorSpace::createDeviceGray(), CGImageAlphaInfo::none,
                       [](auto x, auto y) { return Bytes{static_cast<std::uint8_t>(x * y)}; })));
  bytes.insert(2, jpegSegment(0xE5, std::string(50'000, 'x')) +
                      jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0"s + "<x:xmpmeta/>"));
  const auto memory = CGImageSource::createWithData(dataOf(bytes));
  const auto file = CGImageSource::createWithURL(write(folder, "a.jpg", dataOf(bytes)));
  EXPECT_EQ(file->propertiesAtIndex(0), memory->propertiesAtIndex(0));
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

/// Written by libpng, one bit a pixel.
Data bitmap(std::uint32_t side, bool isInterlaced) {
  return writtenByLibpng(
      {side, side, 1, 0, isInterlaced, Bytes(std::size_t{(side + 7) / 8} * side), {}, {}, {}});
}

/// A PNG of one bit a pixel, with as many bytes as a whole one of this size has at least.
Data bitmapBomb(std::uint32_t side, int interlacing) {
  const std::size_t size = std::size_t{side} * side / 8 / 1000;
  return PngFile().header(side, side, 1, 0, interlacing).chunk("IDAT", Bytes(size)).data();
}

/// A JPEG up to its pixels, of which there are none.
Data frame(unsigned marker, std::size_t side) {
  return dataOf(jpegHeader(jpegFrame({.marker = marker, .width = side, .height = side})));
}

/// What the errors say of the whole and of a thumbnail; nothing where there is one.
void expectLimited(const char* what, const Data& file, const CGImageSourceLimits& limits,
                   const std::string& whole, const std::string& thumbnail) {
  SCOPED_TRACE(what);
  const auto bounded = CGImageSource::createWithData(file, {.limits = limits});
  EXPECT_TRUE(bounded->propertiesAtIndex(0));
  Error error;
  EXPECT_EQ(bounded->imageAtIndex(0, &error).has_value(), whole.empty());
  EXPECT_EQ(error.is(CGImageSourceError::tooLarge), !whole.empty());
  EXPECT_THAT(error.localizedDescription(), HasSubstr(whole));

  CGImageSourceThumbnailOptions small{.thumbnailMaxPixelSize = 50};
  Error errors[2];
  EXPECT_EQ(bounded->thumbnailAtIndex(0, small, &errors[0]).has_value(), thumbnail.empty());
  small.limits = limits;
  const auto open = CGImageSource::createWithData(file);
  EXPECT_EQ(open->thumbnailAtIndex(0, small, &errors[1]).has_value(), thumbnail.empty());
  EXPECT_EQ(errors[0], errors[1]);
  EXPECT_THAT(errors[0].localizedDescription(), HasSubstr(thumbnail));
}

TEST(ImageSource, LimitsBindBeforeAnythingIsDecoded) {
  constexpr std::uint64_t mebibyte = 1 << 20;
  const std::string pixels = "The image has 2116000000 pixels, more than the limit of ";
  const std::string bytes = " bytes of memory to decode, more than the limit of ";
  expectLimited("bits", bitmapBomb(46'000, 0), {}, pixels + "536870912.", pixels);
  expectLimited("bits, interlaced", bitmapBomb(46'000, 1), {}, pixels, pixels);
  expectLimited("raised in vain", bitmapBomb(46'000, 0), {.mostPixels = 1UL << 40}, pixels, pixels);
  expectLimited("pixels", bitmap(100, false), {.mostPixels = 9'999}, "of 9999.", "of 9999.");
  // The thumbnail does without a gigabyte for the pixels.
  expectLimited("progressive", frame(0xC2, 16'000), {.mostMemory = 512 * mebibyte},
                "The image takes 25", "The image takes 15");
  expectLimited("baseline", frame(0xC0, 16'000), {.mostMemory = 16 * mebibyte}, bytes,
                "The file is damaged.");
  expectLimited("bands", bitmap(4000, false), {.mostMemory = mebibyte / 8}, bytes, "");
  expectLimited("no bands", bitmap(4000, true), {.mostMemory = 15 * mebibyte}, bytes, bytes);
  expectLimited("no bands within", bitmap(4000, true), {.mostMemory = 16 * mebibyte}, "", "");
  const Data progressive =
      dataOf(contentsOf(FileManager::defaultManager(), JPEG_CORPUS "/progressive.jpg").value());
  const std::string scans = "The image has more scans than the limit of 3.";
  expectLimited("scans", progressive, {.mostScans = 3}, scans, scans);
  expectLimited("scans within", progressive, {.mostScans = 10}, "", "");
}

TEST(ImageSource, EveryFailureFillsTheErrorThatIsShared) {
  constexpr ErrorCode corrupt = CGImageSourceError::corruptFile;
  constexpr ErrorCode unsupported = CGImageSourceError::unsupported;
  const Data jpeg = jpegOf(quarters(64, 64));
  const std::tuple<Data, ErrorCode, const char*> cases[] = {
      {Data(), corrupt, "The file is empty."},
      {dataOf("hello"), corrupt, "The file is not an image."},
      {dataOf("\0\0\0\x18"s + "ftypheic\0\0\0\0"s), unsupported, "HEIC is not read here."},
      {dataOf("GIF89a"), unsupported, "GIF is not read here."},
      {cutAt(30, jpeg), corrupt, "The file is cut off."},
      {cutAt(jpeg.size() - 20, jpeg), corrupt, "The file is cut off."},
      {dataOf(jpegHeader(jpegFrame() + jpegFrame())), corrupt, "The file is damaged."},
      {dataOf(jpegHeader(jpegFrame({.precision = 12}))), unsupported,
       "Images of this kind are not read here."}};
  const TemporaryFolder folder;
  for (const auto& [data, code, description] : cases) {
    SCOPED_TRACE(description);
    const URL url = write(folder, "image", data);
    // Each way to the pixels fails alike, and says which file it was.
    Error errors[4];
    const auto source = CGImageSource::createWithURL(url);
    ASSERT_TRUE(source);
    EXPECT_FALSE(source->imageAtIndex(0, &errors[0]));
    EXPECT_THAT(errors[0], IsError(std::string(code.domain), code.code, description));
    EXPECT_EQ(*errors[0].userInfo().get<std::string>(NSFilePathErrorKey), *url.path());
    EXPECT_FALSE(source->thumbnailAtIndex(0, {}, &errors[1]));
    EXPECT_FALSE(imageWithContentsOfFile(*url.path(), &errors[2]));
    EXPECT_FALSE(imageWithData(data, &errors[3]));
    EXPECT_EQ(errors[1], errors[0]);
    EXPECT_EQ(errors[2], errors[0]);
    EXPECT_EQ(errors[3].localizedDescription(), description);
  }
  const auto whole = CGImageSource::createWithData(jpeg);
  Error error;
  EXPECT_FALSE(whole->imageAtIndex(1, &error));
  EXPECT_THAT(error, IsError(CGImageSourceError::noSuchImage));
  EXPECT_FALSE(whole->thumbnailAtIndex(0, {.thumbnailMaxPixelSize = 0}, &error));
  EXPECT_EQ(error.localizedDescription(), "A thumbnail needs a side above 0.");
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
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace FrameworkUtility::testing
