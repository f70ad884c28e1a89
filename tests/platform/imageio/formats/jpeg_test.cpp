#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_format.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <tests/platform/imageio/formats/format_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/support/files.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::testing {
namespace {

using detail::ByteSource;
using detail::EncodeRequest;
using detail::ImageHeader;
using Status = CGImageSourceStatus;

using namespace std::string_literals;

ImageHeader read(std::string_view bytes) {
  return detail::readJpegHeader(ByteSource(dataOf(bytes)));
}

std::optional<CGImage> decode(std::string_view bytes, std::size_t maxPixelSize = 0) {
  return decodedBy(detail::jpegFormat, dataOf(bytes), maxPixelSize);
}

std::string encode(const CGImage& image, const EncodeRequest& request = {}) {
  return textOf(encodedBy(detail::jpegFormat, image, request));
}

std::string encode(const EncodeRequest& request) { return encode(quarters(16, 16), request); }

EncodeRequest atQuality(double quality) {
  EncodeRequest request;
  request.quality = quality;
  return request;
}

CGImage square(const CGColorSpace& space, CGImageAlphaInfo alphaInfo, const Bytes& pixel) {
  return plainImage(16, 16, space, alphaInfo, pixel);
}

std::string chunk(int number, int count, std::string_view part) {
  return jpegSegment(0xE2, "ICC_PROFILE\0"s + static_cast<char>(number) + static_cast<char>(count) +
                               std::string(part));
}

const std::string jfif = jpegSegment(0xE0, "JFIF\0\1\2\1\0\x48\0\x60\0\0"s);

TEST(JpegHeader, StatusSaysWhatTheBytesAre) {
  const std::string frame = jpegFrame();
  const struct {
    const char* what;
    std::string bytes;
    Status status;
  } cases[] = {
      {"signature alone", "\xFF\xD8", Status::incomplete},
      {"no frame", "\xFF\xD8" + jfif + "\xFF\xD9", Status::incomplete},
      {"ends before the scan", "\xFF\xD8" + frame + "\xFF\xD9", Status::incomplete},
      {"scan without frame", jpegHeader(""), Status::invalidData},
      {"whole", jpegHeader(frame), Status::complete},
      {"two frames", jpegHeader(frame + frame), Status::invalidData},
      {"two signatures", "\xFF\xD8" + jpegHeader(frame), Status::invalidData},
      {"no width", jpegHeader(jpegFrame({.width = 0})), Status::invalidData},
      {"no height", jpegHeader(jpegFrame({.height = 0})), Status::invalidData},
      {"no components", jpegHeader(jpegFrame({.components = 0})), Status::invalidData},
      {"no precision", jpegHeader(jpegFrame({.precision = 0})), Status::invalidData},
      {"cut frame", jpegHeader(jpegSegment(0xC0, "\x08\0\4\0\6\3\1\x11\0"s)), Status::invalidData},
      {"length 0", jpegHeader("\xFF\xE5\0\0"s + frame), Status::invalidData},
      {"length 1", jpegHeader("\xFF\xE5\0\1"s + frame), Status::invalidData},
      {"length past the end", "\xFF\xD8" + frame + "\xFF\xE5\xFF\xFF", Status::incomplete},
      {"empty segment", jpegHeader(jpegSegment(0xE1, "") + frame), Status::complete},
      {"fill bytes", jpegHeader("\xFF\xFF\xFF" + frame), Status::complete},
      {"restart marker", jpegHeader("\xFF\xD0" + frame), Status::complete},
      {"a few stray bytes", jpegHeader("\0\0\xFF\0stray"s + frame), Status::complete},
      {"many stray bytes", jpegHeader(std::string(100'000, '\0') + frame), Status::invalidData},
  };
  for (const auto& [what, bytes, status] : cases) {
    SCOPED_TRACE(what);
    EXPECT_EQ(read(bytes).status, status);
    EXPECT_EQ(read(bytes).size.width > 0, status == Status::complete);
  }
}

TEST(JpegHeader, CutAnywhereIsIncomplete) {
  const std::string whole =
      jpegHeader(jfif + jpegSegment(0xE1, "Exif\0\0MM\0*"s) + chunk(1, 1, "profile") + jpegFrame());
  for (std::size_t size = 2; size < whole.size(); ++size) {
    ASSERT_EQ(read(whole.substr(0, size)).status, Status::incomplete) << size;
  }
  EXPECT_EQ(read(whole).status, Status::complete);
}

TEST(JpegHeader, EveryKindOfFrameIsRead) {
  for (unsigned marker = 0xC0; marker <= 0xCF; ++marker) {
    const bool isFrame = marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    const ImageHeader header = read(
        jpegHeader(jpegFrame({.marker = marker, .width = 65500, .height = 3, .precision = 12})));
    ASSERT_EQ(header.status, isFrame ? Status::complete : Status::invalidData) << marker;
    if (isFrame) {
      EXPECT_EQ(header.size, (detail::PixelSize{65500, 3}));
      EXPECT_EQ(header.bitsPerComponent, 12U);
      EXPECT_EQ(header.formatProperties.empty(), marker % 4 != 2) << "IsProgressive";
    }
  }
  using enum CGColorSpaceModel;
  constexpr CGColorSpaceModel models[] = {monochrome, unknown, rgb, cmyk};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(read(jpegHeader(jpegFrame({.components = i + 1}))).model, models[i]);
  }
}

TEST(JpegHeader, JfifGivesResolution) {
  const auto properties = [](const std::string& segments) {
    return read(jpegHeader(segments + jpegFrame())).formatProperties;
  };
  const Dictionary first{{"JFIFVersion", Value(Array{1, 0, 2})},
                         {"DensityUnit", 1},
                         {"XDensity", 72},
                         {"YDensity", 96}};
  EXPECT_EQ(properties(jfif + jpegSegment(0xE0, "JFIF\0\2\2\0\0\1\0\1\0\0"s)),
            (Dictionary{{"{JFIF}", first}, {"DPIWidth", 72}, {"DPIHeight", 96}}));
  const Dictionary metric = properties(jpegSegment(0xE0, "JFIF\0\1\1\2\0\x64\0\x64\0\0"s));
  EXPECT_EQ(*metric.get<Number>("DPIWidth"), Number(254.0));
  const Dictionary aspect = properties(jpegSegment(0xE0, "JFIF\0\1\1\0\0\1\0\1\0\0"s));
  EXPECT_EQ(aspect.find("DPIWidth"), nullptr);
}

TEST(JpegHeader, BlocksAreFoundAmongOthers) {
  const ImageHeader header = read(jpegHeader(
      jpegSegment(0xE1, "Exif\0\0first"s) + jpegSegment(0xE1, "Exif\0\0second"s) +
      jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0<x/>"s) + jpegSegment(0xE1, "Exi") +
      jpegSegment(0xFE, "comment") + jpegSegment(0xED, "Photoshop 3.0\0008BI"s) + jpegFrame() +
      jpegSegment(0xED, "Photoshop 3.0\0M..."s)));
  EXPECT_EQ(textOf(header.blocks.exif), "first");
  EXPECT_EQ(textOf(header.blocks.xmp), "<x/>");
  EXPECT_EQ(textOf(header.blocks.imageResources), "8BIM...");
}

/// The kinds and contents of what is kept of a file with these segments.
std::string partsOf(const std::string& segments) {
  std::string parts;
  for (const FormatPart& part : read(segments).blocks.formatParts) {
    parts += static_cast<char>(part.kind);
    parts += textOf(part.contents) + '\n';
  }
  return parts;
}

TEST(JpegHeader, OtherSegmentsAreKeptButForThoseOfThePixels) {
  const struct {
    unsigned marker;
    std::string contents;
    bool isKept = false;
  } all[] = {{0xE0, "JFIF\0\1\1\0\0\1\0\1\0\0"s},
             {0xE0, "II\x1A\0\0\0HEAPJPGM"s, true},
             {0xE0, "JFXX\0\x10 small"s},
             {0xE1, "FLIR\0raw"s, true},
             {0xE1, "Exif\0\0MM"s},
             {0xE1, "Exif\0\0II"s},
             {0xE1, "http://ns.adobe.com/xap/1.0/\0<x/>"s},
             {0xE2, "FPXR\0"s, true},
             {0xE2, "MPF\0MM"s},
             {0xE2, "BGTH\xFF\xD8\xFF small"},
             {0xE2, "ICC_PROFILE\0\1\1profile"s},
             {0xE3, "Meta", true},
             {0xE8, "SPIFF\0"s},
             {0xED, "Photoshop 3.0\0008BIM"s},
             {0xED, "Adobe_CM", true},
             {0xEE, "Adobe\0\x64"s},
             {0xEE, "of nobody", true},
             {0xC4, "a table"},
             {0xEF, "Q 90", true},
             {0xE4, "\xFF\xD8\xFF\xDB large"},
             {0xE4, "the rest of it"},
             {0xE5, "QVGA\0\xFF\xD8\xFF small"s},
             {0xE6, "\xFF\xD8\xFF no picture", true},
             {0xFE, "a comment", true},
             {0xFE, "another", true}};
  std::string segments, expected;
  for (const auto& [marker, contents, isKept] : all) {
    segments += jpegSegment(marker, contents);
    if (isKept) expected += static_cast<char>(marker) + contents + '\n';
  }
  EXPECT_EQ(partsOf(jpegHeader(segments + jpegFrame())), expected);
}

TEST(JpegHeader, ProfileIsJoinedInOrderOrNone) {
  const std::pair<std::string, const char*> cases[] = {
      {chunk(1, 1, "one"), "one"},
      {chunk(3, 3, "c") + chunk(1, 3, "a") + chunk(2, 3, "b"), "abc"},
      {chunk(1, 3, "a") + chunk(3, 3, "c"), ""},
      {chunk(1, 2, "a") + chunk(1, 2, "a"), ""},
      {chunk(0, 1, "a"), ""},
      {chunk(1, 0, "a"), ""}};
  for (const auto& [segments, profile] : cases) {
    EXPECT_EQ(textOf(read(jpegHeader(segments + jpegFrame())).iccProfile), profile) << segments;
  }
}

TEST(JpegPixels, CmykIsFullInkAt255WhateverTheFileMeans) {
  // Chosen so that the file holds luminance 100, no colour and black 50 when it is read as YCCK.
  const Bytes ink{155, 127, 127, 205};
  std::string file =
      encode(square(CGColorSpace::createDeviceCMYK(), CGImageAlphaInfo::none, ink), atQuality(1));
  const std::size_t adobe = file.find("Adobe");
  ASSERT_NE(adobe, std::string::npos);
  const auto expectInk = [&](const Bytes& expected) {
    const auto image = decode(file);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->colorSpace()->model(), CGColorSpaceModel::cmyk);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(pixelOf(*image, 8, 8)[i], expected[i], 1);
  };
  expectInk(ink);
  file[adobe + 11] = 2;  // the transform: YCCK
  expectInk({100, 100, 100, 205});
  file[adobe] = 'a';  // no Adobe segment any more: nothing is inverted
  expectInk({100, 128, 128, 50});
}

TEST(JpegPixels, CutOrDamagedGiveNoImage) {
  const std::string baseline = encode(
      makeImage(64, 64, CGColorSpace::createDeviceGray(), CGImageAlphaInfo::none,
                [](auto x, auto y) { return Bytes{static_cast<std::uint8_t>(37 * x + x * y)}; }));
  // Of several scans; cut between two it would decode, only less sharp.
  const std::string progressive =
      contentsOf(FileManager::defaultManager(), JPEG_CORPUS "/progressive.jpg").value();
  // The end marker and the padding before it may be missing.
  for (const auto& [whole, spare] : {std::pair{baseline, 4U}, {progressive, 0U}}) {
    EXPECT_TRUE(decode(whole + "and a film behind it"));
    for (std::size_t size = 0; size < whole.size() - spare; ++size) {
      ASSERT_FALSE(decode(whole.substr(0, size))) << size;
    }
  }
  EXPECT_TRUE(decode(baseline.substr(0, baseline.size() - 2))) << "only the end marker is missing";
  EXPECT_EQ(cornersOf(*decode(progressive)), "rgbw");
  std::string damaged = baseline;
  damaged.replace(damaged.size() - 400, 2, "\xFF\xD3");  // a restart where none is due
  EXPECT_FALSE(decode(damaged));
}

TEST(JpegEncode, LaysTransparentPixelsOnWhite) {
  const CGColorSpace rgb = CGColorSpace::createDeviceRGB();
  const CGColorSpace gray = CGColorSpace::createDeviceGray();
  using enum CGImageAlphaInfo;
  const struct {
    CGColorSpace space;
    CGImageAlphaInfo alphaInfo;
    Bytes pixel, expected;
  } cases[] = {{rgb, premultipliedLast, {100, 0, 0, 128}, {227, 127}},
               {rgb, last, {200, 0, 0, 128}, {227, 127}},
               {rgb, premultipliedFirst, {128, 100, 0, 0}, {227, 127}},
               {gray, premultipliedLast, {50, 100}, {205}},
               {gray, premultipliedLast, {0, 255}, {0}}};
  for (const auto& [space, alphaInfo, pixel, expected] : cases) {
    const auto image = decode(encode(square(space, alphaInfo, pixel), atQuality(1)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->layout().bitsPerPixel, space == gray ? 8U : 32U);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(pixelOf(*image, 8, 8)[i], expected[i], 2);
    }
  }
}

TEST(JpegEncode, QualityChoosesTheTables) {
  // The table of ITU-T T.81 begins with 16; quality 85 takes 30 % of it.
  for (const auto& [quality, quantum] : {std::pair{1.0, 1}, {0.85, 5}, {0.5, 16}, {0.0, 255}}) {
    const std::string file = encode(atQuality(quality));
    EXPECT_EQ(file[file.find("\xFF\xDB") + 5], static_cast<char>(quantum)) << quality;
  }
}

/// Blocks of noise, of these sizes.
EncodeRequest requestWith(std::size_t exif, std::size_t xmp, std::size_t others = 0) {
  EncodeRequest request;
  request.blocks.exif = dataOf(noise(exif));
  request.blocks.xmp = dataOf(noise(xmp));
  request.blocks.imageResources = dataOf(noise(others));
  request.iccProfile = dataOf(noise(others, 2));
  return request;
}

TEST(JpegEncode, MetadataComesBackWhereItFits) {
  for (const EncodeRequest& request :
       {requestWith(60'000, 4, 200'000), requestWith(65'527, 65'504)}) {
    const ImageHeader header = read(encode(request));
    EXPECT_EQ(header.blocks.exif, request.blocks.exif);
    EXPECT_EQ(header.blocks.xmp, request.blocks.xmp);
    EXPECT_EQ(header.blocks.imageResources, request.blocks.imageResources);
    EXPECT_EQ(header.iccProfile, request.iccProfile);
    EXPECT_EQ(header.formatProperties.find("{JFIF}"), nullptr);
  }
  EncodeRequest tooLong = requestWith(65'528, 65'505);
  tooLong.properties = {{"DPIWidth", 300}, {"DPIHeight", 299.6}};
  const std::string file = encode(tooLong);
  const ImageHeader header = read(file);
  EXPECT_TRUE(header.blocks.exif.empty());
  EXPECT_TRUE(header.blocks.xmp.empty());
  EXPECT_EQ(*header.formatProperties.get<Number>("DPIHeight"), Number(300));
  EXPECT_TRUE(decode(file));
}

TEST(JpegEncode, PartsComeBackInOrderFromJpegOnly) {
  EncodeRequest request;
  request.blocks.formatParts = {{0xFE, dataOf("a comment")}, {0xE0, dataOf("CIFF")}, {0xFE, {}}};
  EXPECT_EQ(partsOf(encode(request)), "");
  request.blocks.format = UTTypeJPEG.identifier();
  EXPECT_EQ(partsOf(encode(request)),
            "\xFE"
            "a comment\n\xE0"
            "CIFF\n");
}

TEST(JpegEncode, JfifIsAsItWasUnlessTheResolutionChanges) {
  const auto stored = [](int unit, int x, int y) {
    return Dictionary{{"JFIFVersion", Value(Array{1, 0, 2})},
                      {"DensityUnit", unit},
                      {"XDensity", x},
                      {"YDensity", y}};
  };
  const auto with = [](const Dictionary& values, double dpiWidth, double dpiHeight) {
    return Dictionary{{"{JFIF}", values}, {"DPIWidth", dpiWidth}, {"DPIHeight", dpiHeight}};
  };
  // EXIF says another resolution than JFIF, and did so before.
  Dictionary asExif = with(stored(1, 72, 72), 300, 300);
  asExif.set("{TIFF}", Dictionary{{"XResolution", 300}, {"YResolution", 300}});
  const std::pair<Dictionary, std::string> cases[] = {
      {{}, "none"},
      {{{"{JFIF}", Dictionary{{"IsProgressive", true}}}}, "none"},
      {{{"{JFIF}", stored(0, 4, 3)}}, "\1\2\0\0\4\0\3"s},
      {with(stored(2, 100, 100), 254, 254), "\1\2\2\0\x64\0\x64"s},
      {asExif, "\1\2\1\0\x48\0\x48"s},
      {with(stored(1, 72, 72), 96, 97.4), "\1\2\1\0\x60\0\x61"s}};
  for (const auto& [properties, expected] : cases) {
    EncodeRequest request;
    request.properties = properties;
    request.blocks.exif = dataOf("MM\0*"s);
    const std::string file = encode(request);
    EXPECT_EQ(file.substr(6, 4) == "JFIF" ? file.substr(11, 7) : "none", expected);
  }
  EXPECT_EQ(encode(EncodeRequest()).substr(6, 12), "JFIF\0\1\1\0\0\1\0\1"s) << "without EXIF";
}

}  // namespace
}  // namespace FrameworkUtility::testing
