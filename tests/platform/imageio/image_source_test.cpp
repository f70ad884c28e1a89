#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/image_source_error.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/platform/imageio/formats/png_file.h>
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
  const auto codeOf = [](const URL& url) {
    Error error;
    EXPECT_FALSE(CGImageSource::createWithURL(url, {}, &error));
    return error.code();
  };
  EXPECT_EQ(codeOf(URL::fileURLWithPath(folder.path("missing"))), NSFileReadNoSuchFileError);
  EXPECT_EQ(codeOf(URL::fileURLWithPath(folder.path())), NSFileReadUnknownError);
  EXPECT_EQ(codeOf(URL::fileURLWithPath(folder.path("fifo"))), NSFileReadUnknownError);
  EXPECT_EQ(codeOf(*URL::withString("https://example.org/a")),
            CGImageSourceError::notAFileURL.code);
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
  const Dictionary expected{{"ColorModel", "RGB"},
                            {"Depth", 8},
                            {"PixelWidth", 48},
                            {"PixelHeight", 32},
                            {"{JFIF}", jfif}};
  EXPECT_EQ(source->propertiesAtIndex(0), expected);
  EXPECT_FALSE(source->propertiesAtIndex(1));
  EXPECT_FALSE(source->imageAtIndex(1));
  EXPECT_FALSE(source->auxiliaryDataInfoAtIndex(0, kCGImageAuxiliaryDataTypeDepth));
}

TEST(ImageSource, NamesTheProfile) {
  const auto nameOf = [](const CGColorSpace& space) {
    const auto source = CGImageSource::createWithData(
        jpegOf(makeImage(8, 8, space, CGImageAlphaInfo::noneSkipLast, [](std::size_t, std::size_t) {
          return Bytes{1, 2, 3, 255};
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
        return Bytes{static_cast<std::uint8_t>(x * y), static_cast<std::uint8_t>(x ^ y), 7, 255};
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
  picture.width = picture.height = side;
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
  std::ifstream in(JPEG_CORPUS "/progressive.jpg", std::ios::binary);
  const Data progressive = dataOf(std::string{std::istreambuf_iterator<char>(in), {}});
  const std::string scans = "The image has more scans than the limit of 3.";
  expectLimited("scans", progressive, {.mostScans = 3}, scans, scans);
  expectLimited("scans within", progressive, {.mostScans = 10}, "", "");
}

/// Each way to the pixels fails alike, and says which file it was.
void expectFailure(const Data& data, const ErrorCode& code, const char* description) {
  SCOPED_TRACE(description);
  const TemporaryFolder folder;
  const URL url = write(folder, "image", data);
  Error errors[4];
  const auto source = CGImageSource::createWithURL(url);
  ASSERT_TRUE(source);
  EXPECT_FALSE(source->imageAtIndex(0, &errors[0]));
  EXPECT_THAT(errors[0], IsError(std::string(code.domain), code.code, description));
  EXPECT_EQ(*errors[0].userInfo().get<std::string>(NSFilePathErrorKey), *url.path());
  EXPECT_FALSE(source->thumbnailAtIndex(0, {}, &errors[1]));
  EXPECT_EQ(errors[1], errors[0]);
  EXPECT_FALSE(imageWithContentsOfFile(*url.path(), &errors[2]));
  EXPECT_EQ(errors[2], errors[0]);
  EXPECT_FALSE(imageWithData(data, &errors[3]));
  EXPECT_EQ(errors[3].localizedDescription(), description);
}

TEST(ImageSource, EveryFailureFillsTheErrorThatIsShared) {
  constexpr ErrorCode corrupt = CGImageSourceError::corruptFile;
  constexpr ErrorCode unsupported = CGImageSourceError::unsupported;
  const Data jpeg = jpegOf(quarters(64, 64));
  expectFailure(Data(), corrupt, "The file is empty.");
  expectFailure(dataOf("hello"), corrupt, "The file is not an image.");
  expectFailure(dataOf("\0\0\0\x18"
                       "ftypheic\0\0\0\0"s),
                unsupported, "HEIC is not read here.");
  expectFailure(dataOf("GIF89a"), unsupported, "GIF is not read here.");
  for (const std::size_t size : {std::size_t{30}, jpeg.size() - 20}) {
    expectFailure(Data(std::span(jpeg).first(size)), corrupt, "The file is cut off.");
  }
  expectFailure(dataOf(jpegHeader(jpegFrame() + jpegFrame())), corrupt, "The file is damaged.");
  expectFailure(dataOf(jpegHeader(jpegFrame({.precision = 12}))), unsupported,
                "Images of this kind are not read here.");
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
