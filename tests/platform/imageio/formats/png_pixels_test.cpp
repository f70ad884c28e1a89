#include <framework_utility/platform/graphics/image_transform.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/formats/png/png_chunks.h>
#include <framework_utility/platform/imageio/formats/png/png_format.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <tests/platform/graphics/pictures.h>
#include <tests/platform/imageio/formats/format_coding.h>
#include <tests/platform/imageio/formats/png_file.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace FrameworkUtility::testing {
namespace {

using detail::AlphaForm;
using detail::ByteSource;
using detail::EncodeRequest;
using detail::ImageHeader;
using detail::pngFormat;
using detail::RGBARows;
using enum CGImageAlphaInfo;
using namespace std::string_literals;

using Pixels = std::vector<std::uint16_t>;

/// With 16 bits; what has 8 is read with 8.
Pixels pixelsOf(const CGImage& image, AlphaForm form = AlphaForm::straight) {
  const std::size_t rowLength = image.width() * 4;
  Pixels pixels(rowLength * image.height());
  const auto rows = RGBARows::of(image, form);
  for (std::size_t y = 0; y < image.height(); ++y) {
    if (image.layout().bitsPerComponent == 16) {
      rows->read(y, &pixels[y * rowLength]);
      continue;
    }
    Bytes row(rowLength);
    rows->read(y, row.data());
    for (std::size_t i = 0; i < rowLength; ++i) pixels[y * rowLength + i] = row[i] * 257 & 0xFFFF;
  }
  return pixels;
}

ImageHeader headerOf(const Data& file) { return testing::headerOf(pngFormat, file); }

std::optional<CGImage> decoded(const Data& file, std::size_t maxPixelSize = 0) {
  return decodedBy(pngFormat, file, maxPixelSize);
}

CGImage imageOf(const CGImageLayout& layout, const CGColorSpace& space) {
  return CGImage::create(layout, space, dataOf(noise(layout.bytesPerRow * layout.height))).value();
}

/// A file of one grey pixel.
Data encoded(const EncodeRequest& request) {
  const CGImage image = imageOf(layoutOf(1, 1, 1, none), CGColorSpace::createDeviceGray());
  return encodedBy(pngFormat, image, request);
}

std::size_t samplesPerPixel(int colorType) {
  return colorType == 2 ? 3 : colorType == 4 ? 2 : colorType == 6 ? 4 : 1;
}

std::uint32_t sampleAt(const PngPicture& picture, std::size_t y, std::size_t index) {
  const std::size_t rowBytes = picture.rows.size() / picture.height;
  return sampleOf(&picture.rows[y * rowBytes], index, static_cast<std::size_t>(picture.depth));
}

/// The pixels by the format's definition, with 16 bits.
Pixels expectedPixels(const PngPicture& picture) {
  Pixels pixels;
  const std::size_t samples = samplesPerPixel(picture.colorType);
  const std::size_t scale = 65535 / ((std::size_t{1} << picture.depth) - 1);
  for (std::size_t y = 0; y < picture.height; ++y) {
    for (std::size_t x = 0; x < picture.width; ++x) {
      const auto sample = [&](std::size_t i) { return sampleAt(picture, y, x * samples + i); };
      std::array<std::size_t, 4> pixel{};
      if (picture.colorType == 3) {
        const std::size_t s = sample(0);
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = picture.palette[s * 3 + c] * 257UL;
        pixel[3] = s < picture.transparency.size() ? picture.transparency[s] * 257UL : 65535;
      } else {
        const auto& hidden = picture.transparentSample;
        bool isTransparent = !hidden.empty();
        for (std::size_t i = 0; i < hidden.size(); ++i) isTransparent &= sample(i) == hidden[i];
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = sample(samples < 3 ? 0 : c) * scale;
        pixel[3] = samples % 2 == 0 ? sample(samples - 1) * scale : isTransparent ? 0 : 65535;
      }
      pixels.insert(pixels.end(), pixel.begin(), pixel.end());
    }
  }
  return pixels;
}

PngPicture pictureOf(int depth, int colorType, bool isInterlaced, bool hasTransparency) {
  PngPicture picture{19, 13, depth, colorType, isInterlaced, {}, {}, {}, {}};
  const std::size_t bits =
      picture.width * samplesPerPixel(colorType) * static_cast<std::size_t>(depth);
  picture.rows = noise((bits + 7) / 8 * picture.height);
  if (colorType == 3) picture.palette = noise(3U << depth, 7);
  if (hasTransparency && colorType == 3) picture.transparency = noise(2, 9);
  if (hasTransparency && colorType != 3) {
    for (std::size_t i = 0; i < samplesPerPixel(colorType); ++i) {
      picture.transparentSample.push_back(sampleAt(picture, 3, i));
    }
  }
  return picture;
}

TEST(PngPixelsTest, ReadsEveryKind) {
  for (const int colorType : {0, 2, 3, 4, 6}) {
    for (const int depth : {1, 2, 4, 8, 16}) {
      if (depth < 8 && colorType != 0 && colorType != 3) continue;
      if (depth == 16 && colorType == 3) continue;
      for (const bool isInterlaced : {false, true}) {
        for (const bool hasTransparency : {false, true}) {
          if (hasTransparency && colorType >= 4) continue;
          SCOPED_TRACE(::testing::Message() << "type " << colorType << " depth " << depth
                                            << (isInterlaced ? " interlaced" : "")
                                            << (hasTransparency ? " transparent" : ""));
          const PngPicture picture = pictureOf(depth, colorType, isInterlaced, hasTransparency);
          const Data file = writtenByLibpng(picture);
          const auto image = decoded(file);
          ASSERT_TRUE(image);
          EXPECT_EQ(image->layout().bitsPerComponent, depth == 16 ? 16U : 8U);
          EXPECT_EQ(image->colorSpace()->numberOfComponents(),
                    colorType == 0 || colorType == 4 ? 1U : 3U);
          const bool hasAlpha = hasTransparency || colorType >= 4;
          EXPECT_EQ(image->alphaInfo(), hasAlpha ? last : colorType == 0 ? none : noneSkipLast);
          ASSERT_EQ(pixelsOf(*image), expectedPixels(picture));

          // 16 bits are rounded before they are averaged here, and after it there.
          const auto reduced = decoded(file, 8);
          const auto expected = reducedImage(*image, 8);
          ASSERT_TRUE(reduced && expected);
          ASSERT_EQ(reduced->width(), 8U);
          ASSERT_EQ(reduced->height(), 5U);
          const Pixels a = pixelsOf(*reduced, AlphaForm::premultiplied);
          const Pixels b = pixelsOf(*expected, AlphaForm::premultiplied);
          for (std::size_t i = 0; i < a.size(); ++i) ASSERT_NEAR(a[i], b[i], 257);
        }
      }
    }
  }
}

TEST(PngPixelsTest, DamagedPixelsAreNone) {
  const Data file = writtenByLibpng(pictureOf(8, 6, false, false));
  const Bytes good = bytesOf(file);
  const std::size_t pixels = textOf(file).find("IDAT");
  const std::size_t end = good.size() - 12;  // of the pixels' chunk
  ASSERT_TRUE(decoded(file));
  for (std::size_t i = pixels + 4; i < end; ++i) {
    Bytes bytes = good;
    bytes[i] ^= 0x10;
    EXPECT_FALSE(decoded(dataOf(bytes))) << i;
    EXPECT_FALSE(decoded(dataOf(bytes), 3)) << i;
  }
  for (std::size_t size = pixels + 4; size < end; ++size) {
    const Data cut = cutAt(size, file);
    EXPECT_EQ(headerOf(cut).status, CGImageSourceStatus::complete);
    EXPECT_FALSE(decoded(cut)) << size;
  }
  // What is behind the pixels harms none of them.
  EXPECT_TRUE(decoded(cutAt(end, file)));
}

TEST(PngPixelsTest, BelievesNoSizeThatTheFileCannotHold) {
  for (const std::uint32_t side : {0x7FFFFFFFU, 100'000U, 20'000U}) {
    const Data file = PngFile().header(side, side, 16, 6).pixelAndEnd().data();
    EXPECT_EQ(headerOf(file).status, CGImageSourceStatus::complete);
    EXPECT_FALSE(decoded(file));
    EXPECT_FALSE(decoded(file, 100));
  }
}

TEST(PngPixelsTest, WritesWhatItReadsBack) {
  for (const CGImage& image : imagesInEveryLayout(31, 9)) {
    const CGImageLayout& layout = image.layout();
    const std::size_t components =
        image.colorSpace() ? image.colorSpace()->numberOfComponents() : 1;
    SCOPED_TRACE(::testing::Message()
                 << components << " components, " << layout.bitsPerPixel << " bits a pixel, alpha "
                 << static_cast<std::uint32_t>(layout.alphaInfo));
    const auto back = decoded(encodedBy(pngFormat, image));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->layout().bitsPerComponent, layout.bitsPerComponent);
    EXPECT_EQ(back->colorSpace()->numberOfComponents(), components == 1 ? 1U : 3U);
    EXPECT_EQ(pixelsOf(*back), pixelsOf(image));
  }
}

TEST(PngPixelsTest, WritesMetadataThatItReadsBack) {
  const CGColorSpace p3 = CGColorSpace::createWithName(kCGColorSpaceDisplayP3).value();
  EncodeRequest request;
  request.iccProfile = p3.iccData().value();
  request.blocks.exif = dataOf("II*_exif");
  request.blocks.xmp = dataOf("<x/>");
  request.blocks.imageResources = dataOf(noise(100));
  const Dictionary png{{"Title", "caf\u00E9"},
                       {"Author", "\u65E5\u672C"},
                       {"Creation Time", "yesterday"},
                       {"ModificationTime", "2024:05:17 09:30:01"},
                       {"Gamma", 7},
                       {"Unheard of", "text"}};
  request.properties = Dictionary{{"DPIWidth", 300}, {"DPIHeight", 150.5}, {"{PNG}", png}};
  const Data file = encodedBy(pngFormat, imageOf(layoutOf(4, 4, 3, none), p3), request);
  const ImageHeader header = headerOf(file);
  EXPECT_EQ(header.status, CGImageSourceStatus::complete);
  EXPECT_EQ(header.iccProfile, request.iccProfile);
  EXPECT_EQ(header.blocks.exif, request.blocks.exif);
  EXPECT_EQ(header.blocks.xmp, request.blocks.xmp);
  EXPECT_EQ(header.blocks.imageResources, request.blocks.imageResources);
  const Dictionary expected{{"DPIWidth", 300},
                            {"DPIHeight", 5925 * 0.0254},
                            {"{PNG}", Dictionary{{"InterlaceType", 0},
                                                 {"XPixelsPerMeter", 11811},
                                                 {"YPixelsPerMeter", 5925},
                                                 {"Title", "caf\u00E9"},
                                                 {"Author", "\u65E5\u672C"},
                                                 {"Creation Time", "yesterday"},
                                                 {"ModificationTime", "2024:05:17 09:30:01"}}}};
  EXPECT_EQ(header.formatProperties, expected);
  EXPECT_EQ(decoded(file)->colorSpace(), p3);
}

/// "type:data" of each chunk of a PNG, less its header, pixels and end.
std::vector<std::string> chunksOf(const Data& file) {
  std::vector<std::string> found;
  const ByteSource source(file);
  detail::PngChunks chunks(source);
  while (const auto chunk = chunks.next()) {
    std::string text;
    for (const int shift : {24, 16, 8, 0}) text += static_cast<char>(chunk->type >> shift & 255);
    if (text == "IHDR" || text == "IDAT" || text == "IEND") continue;
    found.push_back(text + ':' + textOf(chunks.data(*chunk).value()));
  }
  return found;
}

TEST(PngPixelsTest, TextsAndWhatMayBeCopiedComeBack) {
  const std::string white = "\0\0\x7A\x26\0\0\x80\x84"s;
  const std::string primaries =
      "\0\0\xFA\0\0\0\x80\xE8\0\0\x75\x30\0\0\xEA\x60\0\0\x3A\x98\0\0\x17\x70"s;
  const std::pair<std::string, std::string> kept[] = {{"cHRM", white + primaries},
                                                      {"pHYs", "\0\0\0\2\0\0\0\1\0"s},
                                                      {"tEXt", "Unheard of\0text"s},
                                                      {"oFFs", "123456789"},
                                                      {"prVt", "ate"},
                                                      {"iTXt", "Title\0\0\0de\0Titel\0Ein"s},
                                                      {"iTXt", "Title\0\0\0en\0Title\0One"s},
                                                      {"tEXt", "Author\0Ada"s},
                                                      {"tEXt", "Author\0Bo"s}};
  PngFile file = PngFile().header(1, 1, 8, 0);
  std::vector<std::string> expected;
  for (const auto& [type, data] : kept) {
    file.chunk(type, data);
    expected.push_back(type + ':' + data);
  }
  file.chunk("tEXt", "Raw profile type icc\0"s).chunk("orNT", "\6").chunk("prVT", "unsafe");
  file.pixelAndEnd();
  const ImageHeader header = headerOf(file.data());
  EncodeRequest request;
  request.properties = header.formatProperties;
  request.properties.set("DPIWidth", 72);  // as EXIF says
  request.properties.set("DPIHeight", 72);
  request.properties.set("{TIFF}", Dictionary{{"XResolution", 72}, {"YResolution", 72}});
  request.blocks = header.blocks;
  const auto written = [&] { return chunksOf(encoded(request)); };
  EXPECT_EQ(written(), expected);

  request.properties.subdictionary("{PNG}").set("Title", "New");
  request.properties.subdictionary("{PNG}").remove("Author");
  expected.resize(5);
  expected.push_back("tEXt:Title\0New"s);
  EXPECT_EQ(written(), expected);
  request.blocks.format = "public.jpeg";
  EXPECT_EQ(written().size(), 3U) << "the title, and DPI and gamma of a file that was no PNG";
}

TEST(PngPixelsTest, KeepsAResolutionThatNobodyChanged) {
  const Dictionary stored{{"XPixelsPerMeter", 3779}, {"YPixelsPerMeter", 3779}};
  const Dictionary tiff{{"XResolution", 180}, {"YResolution", 180}};
  const std::pair<Dictionary, Number> cases[] = {
      {{{"{PNG}", stored}}, 3779},
      {{{"{PNG}", stored}, {"DPIWidth", 96}, {"DPIHeight", 96}}, 3779},
      {{{"{PNG}", stored}, {"DPIWidth", 97}, {"DPIHeight", 97}}, 3819},
      {{{"{PNG}", stored}, {"DPIWidth", 180}, {"DPIHeight", 180}, {"{TIFF}", tiff}}, 3779},
      {{{"DPIWidth", 96}, {"DPIHeight", 96}}, 3780},
      {{{"DPIWidth", 96}}, 0},
      {{{"DPIWidth", -1}, {"DPIHeight", 1e300}}, 0}};
  for (const auto& [properties, perMetre] : cases) {
    EncodeRequest request;
    request.properties = properties;
    const Dictionary read = headerOf(encoded(request)).formatProperties;
    const auto* number = read.get<Dictionary>("{PNG}")->get<Number>("XPixelsPerMeter");
    EXPECT_EQ(number ? *number : Number(0), perMetre);
  }
}

TEST(PngPixelsTest, TextsAreLatinWhereTheyCanBe) {
  const std::pair<std::string, std::string> cases[] = {
      {"\u00FF", "tEXt:Title\0\xFF"s},
      {"a\0b"s, "tEXt:Title\0ab"s},
      {"\u0100", "iTXt:Title\0\0\0\0\0\u0100"s},
      {"\u00E9\U0001F600", "iTXt:Title\0\0\0\0\0\u00E9\U0001F600"s}};
  for (const auto& [title, chunk] : cases) {
    EncodeRequest request;
    request.properties = {{"{PNG}", Dictionary{{"Title", title}}}};
    EXPECT_EQ(chunksOf(encoded(request)).back(), chunk);
  }
}

TEST(PngPixelsTest, KeepsAnIntentThatThereIs) {
  const CGImage image = imageOf(layoutOf(1, 1, 3, none), CGColorSpace::createDeviceRGB());
  for (const auto& [intent, written] : {std::pair{0, 0}, {1, 1}, {3, 3}, {4, 0}, {-1, 0}}) {
    EncodeRequest request;
    request.properties = {{"{PNG}", Dictionary{{"sRGBIntent", intent}}}};
    const std::vector<std::string> chunks = chunksOf(encodedBy(pngFormat, image, request));
    EXPECT_EQ(chunks.back(), "sRGB:"s + static_cast<char>(written));
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
