#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/image_source_error.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/platform/imageio/formats/png_file.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <thread>
#include <utility>

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
  const struct {
    URL url;
    std::int64_t code;
  } cases[] = {
      {URL::fileURLWithPath(folder.path("missing")), NSFileReadNoSuchFileError},
      {URL::fileURLWithPath(folder.path()), NSFileReadUnknownError},
      {URL::fileURLWithPath(folder.path("fifo")), NSFileReadUnknownError},
      {*URL::withString("https://example.org/a.jpg"), CGImageSourceError::notAFileURL.code}};
  for (const auto& [url, code] : cases) {
    Error error;
    EXPECT_FALSE(CGImageSource::createWithURL(url, {}, &error));
    EXPECT_EQ(error.code(), code);
  }
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

/// Written by libpng, one bit a pixel.
Data bitmap(std::uint32_t side, bool isInterlaced) {
  PngPicture picture;
  picture.width = side;
  picture.height = side;
  picture.depth = 1;
  picture.colorType = 0;
  picture.isInterlaced = isInterlaced;
  picture.rows.resize(std::size_t{(side + 7) / 8} * side);
  return writtenByLibpng(picture);
}

/// A PNG of one bit a pixel, with as many bytes as a whole one of this size has at least.
Data bitmapBomb(std::uint32_t side, int interlacing) {
  const std::size_t size = std::size_t{side} * side / 8 / 1000;
  return PngFile().header(side, side, 1, 0, interlacing).chunk("IDAT", Bytes(size)).data();
}

TEST(ImageSource, LimitsBindBeforeAnythingIsDecoded) {
  std::ifstream in(JPEG_CORPUS "/progressive.jpg", std::ios::binary);
  const Data progressive = dataOf(std::string{std::istreambuf_iterator<char>(in), {}});
  const auto frame = [](unsigned marker, std::size_t side) {
    return dataOf(jpegHeader(jpegFrame({.marker = marker, .width = side, .height = side})));
  };
  const std::string tooManyPixels = "The image has 2116000000 pixels, more than the limit of ";
  const std::string tooManyBytes = " bytes of memory to decode, more than the limit of ";
  const std::string damaged = "The file is damaged.";
  constexpr std::uint64_t mebibyte = 1 << 20;
  const struct {
    const char* what;
    Data file;
    CGImageSourceLimits limits;
    std::string whole;  // how the error begins or goes on; empty for an image
    std::string thumbnail;
  } cases[] = {
      {"bits", bitmapBomb(46'000, 0), {}, tooManyPixels + "536870912.", tooManyPixels},
      {"bits, interlaced", bitmapBomb(46'000, 1), {}, tooManyPixels, tooManyPixels},
      {"raised in vain",
       bitmapBomb(46'000, 0),
       {.mostPixels = 1UL << 40},
       tooManyPixels,
       tooManyPixels},
      {"progressive",
       frame(0xC2, 16'000),
       {.mostMemory = 512 * mebibyte},
       "The image takes 25",
       "The image takes 15"},  // and a gigabyte for the pixels
      {"baseline", frame(0xC0, 16'000), {.mostMemory = 16 * mebibyte}, tooManyBytes, damaged},
      {"scans",
       progressive,
       {.mostScans = 3},
       "The image has more scans than the limit of 3.",
       "The image has more scans than the limit of 3."},
      {"scans within", progressive, {.mostScans = 10}, "", ""},
      {"bands", bitmap(4000, false), {.mostMemory = mebibyte / 8}, tooManyBytes, ""},
      {"no bands", bitmap(4000, true), {.mostMemory = 15 * mebibyte}, tooManyBytes, tooManyBytes},
      {"no bands within", bitmap(4000, true), {.mostMemory = 16 * mebibyte}, "", ""},
      {"pixels", bitmap(100, false), {.mostPixels = 9'999}, "of 9999.", "of 9999."}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const auto bounded = CGImageSource::createWithData(c.file, {.limits = c.limits});
    const auto open = CGImageSource::createWithData(c.file);
    EXPECT_TRUE(bounded->propertiesAtIndex(0));
    const CGImageSourceThumbnailOptions small{.thumbnailMaxPixelSize = 50};
    CGImageSourceThumbnailOptions smallWithin = small;
    smallWithin.limits = c.limits;
    Error whole;
    Error thumbnails[2];
    EXPECT_EQ(bounded->imageAtIndex(0, &whole).has_value(), c.whole.empty());
    EXPECT_EQ(bounded->thumbnailAtIndex(0, small, &thumbnails[0]).has_value(), c.thumbnail.empty());
    EXPECT_EQ(open->thumbnailAtIndex(0, smallWithin, &thumbnails[1]).has_value(),
              c.thumbnail.empty());
    EXPECT_EQ(thumbnails[0], thumbnails[1]);
    if (!c.whole.empty()) {
      EXPECT_THAT(whole.localizedDescription(), HasSubstr(c.whole));
      EXPECT_TRUE(whole.is(CGImageSourceError::tooLarge));
    }
    if (!c.thumbnail.empty()) {
      EXPECT_THAT(thumbnails[0].localizedDescription(), HasSubstr(c.thumbnail));
      EXPECT_EQ(thumbnails[0].is(CGImageSourceError::tooLarge), c.thumbnail != damaged);
    }
  }
}

TEST(ImageSource, EveryFailureFillsTheErrorThatIsShared) {
  const TemporaryFolder folder;
  const Data jpeg = jpegOf(quarters(64, 64));
  const std::string twelveBits = jpegHeader(jpegFrame({.precision = 12}));
  const struct {
    const char* name;
    Data file;
    ErrorCode code;
    const char* description;
  } cases[] = {
      {"empty", Data(), CGImageSourceError::corruptFile, "The file is empty."},
      {"text", dataOf("hello"), CGImageSourceError::corruptFile, "The file is not an image."},
      {"a.heic",
       dataOf("\0\0\0\x18"
              "ftypheic\0\0\0\0"s),
       CGImageSourceError::unsupported, "HEIC is not read here."},
      {"a.gif", dataOf("GIF89a"), CGImageSourceError::unsupported, "GIF is not read here."},
      {"cut.jpg", Data(std::span(jpeg.data(), 30)), CGImageSourceError::corruptFile,
       "The file is cut off."},
      {"half.jpg", Data(std::span(jpeg.data(), jpeg.size() - 20)), CGImageSourceError::corruptFile,
       "The file is cut off."},
      {"frames.jpg", dataOf(jpegHeader(jpegFrame() + jpegFrame())), CGImageSourceError::corruptFile,
       "The file is damaged."},
      {"12.jpg", dataOf(twelveBits), CGImageSourceError::unsupported,
       "Images of this kind are not read here."}};
  Error error(NSPOSIXErrorDomain, 1);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const URL url = write(folder, c.name, c.file);
    const auto source = CGImageSource::createWithURL(url, {}, &error);
    ASSERT_TRUE(source);
    EXPECT_FALSE(source->imageAtIndex(0, &error));
    EXPECT_THAT(error, IsError(std::string(c.code.domain), c.code.code, c.description));
    EXPECT_EQ(*error.userInfo().get<std::string>(NSFilePathErrorKey), *url.path());
    const Error first = std::exchange(error, Error());
    EXPECT_FALSE(source->thumbnailAtIndex(0, {}, &error));
    EXPECT_EQ(std::exchange(error, Error()), first);
    EXPECT_FALSE(imageWithContentsOfFile(*url.path(), &error));
    EXPECT_EQ(std::exchange(error, Error()), first);
    EXPECT_FALSE(imageWithData(c.file, &error));
    EXPECT_EQ(error.localizedDescription(), c.description);
  }
  const auto whole = CGImageSource::createWithData(jpeg);
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
