#include <framework_utility/platform/imageio/formats/png/png_format.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <tests/platform/graphics/pictures.h>
#include <tests/platform/imageio/formats/format_coding.h>
#include <tests/platform/imageio/formats/png_file.h>

#include <gtest/gtest.h>

#include <string>

namespace FrameworkUtility::testing {
namespace {

using namespace std::string_literals;
using detail::ImageHeader;

ImageHeader headerOf(const Data& data) { return testing::headerOf(detail::pngFormat, data); }

ImageHeader headerOf(const PngFile& file) { return headerOf(file.data()); }

std::string packed(std::string_view text) {
  const Bytes stream = deflated(text);
  return {stream.begin(), stream.end()};
}

const Value* pngProperty(const ImageHeader& header, std::string_view key) {
  const auto* png = header.formatProperties.get<Dictionary>(kCGImagePropertyPNGDictionary);
  return png ? png->find(key) : nullptr;
}

/// A header of one grey pixel.
PngFile dot() { return PngFile().header(1, 1, 8, 0); }

/// Every kind of chunk that is read, before the pixels but for the last two.
PngFile fullFile() {
  return dot()
      .chunk("gAMA", Bytes{0, 0, 0xB1, 0x8F})
      .chunk("sRGB", Bytes{1})
      .chunk("pHYs", Bytes{0, 0, 0x0B, 0x13, 0, 0, 0x0B, 0x12, 1})
      .chunk("tIME", Bytes{0x07, 0xE8, 5, 17, 9, 30, 1})
      .chunk("tEXt", "Author\0J\xF6rg"s)
      .chunk("zTXt", "Comment\0\0"s + packed("caf\xE9"))
      .chunk("iTXt", "Title\0\0\0de\0Titel\0\u65E5\u672C"s)
      .chunk("iTXt", "Description\0\1\0\0\0"s + packed("\u20AC"))
      .chunk("tEXt", "Author\0second"s)
      .chunk("tEXt", "Unheard of\0text"s)
      .chunk("IDAT", deflated("\0\0"s))
      .chunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0<x/>"s)
      .chunk("eXIf", "II*\0later"s)
      .chunk("IEND", "");
}

TEST(PngHeaderTest, ReadsWhatTheChunksSay) {
  const ImageHeader header = headerOf(fullFile());
  EXPECT_EQ(header.status, CGImageSourceStatus::complete);
  EXPECT_EQ(textOf(header.blocks.exif), "II*\0later"s);
  EXPECT_EQ(textOf(header.blocks.xmp), "<x/>");
  const Dictionary expected{{"DPIWidth", 72},
                            {"DPIHeight", 72},
                            {"{PNG}", Dictionary{{"InterlaceType", 0},
                                                 {"Gamma", 0.45455},
                                                 {"sRGBIntent", 1},
                                                 {"XPixelsPerMeter", 2835},
                                                 {"YPixelsPerMeter", 2834},
                                                 {"ModificationTime", "2024:05:17 09:30:01"},
                                                 {"Author", "J\u00F6rg"},
                                                 {"Comment", "caf\u00E9"},
                                                 {"Title", "\u65E5\u672C"},
                                                 {"Description", "\u20AC"}}}};
  EXPECT_EQ(header.formatProperties, expected);
}

TEST(PngHeaderTest, ResolutionsKeepTheirFractions) {
  // 3779, cut; 3780, rounded; 1000.
  for (const auto& [perMetre, dpi] :
       {std::pair{"\x0E\xC3", 96.0}, {"\x0E\xC4", 96.0}, {"\x03\xE8", 25.4}}) {
    const auto file = dot().chunk("pHYs", "\0\0"s + perMetre + "\0\0\x27\x10\1"s).pixelAndEnd();
    EXPECT_EQ(*headerOf(file).formatProperties.get<Number>("DPIWidth"), Number(dpi));
  }
}

TEST(PngHeaderTest, TellsColourTypes) {
  using enum CGColorSpaceModel;
  const std::tuple<int, int, bool, CGColorSpaceModel> cases[] = {
      {1, 0, false, monochrome}, {16, 0, true, monochrome}, {8, 2, false, rgb},
      {16, 2, true, rgb},        {2, 3, false, rgb},        {8, 3, true, rgb},
      {8, 4, false, monochrome}, {16, 6, false, rgb}};
  for (const auto& [depth, colorType, hasTransparency, model] : cases) {
    SCOPED_TRACE(::testing::Message() << colorType << ' ' << depth);
    PngFile file = PngFile().header(7, 5, depth, colorType, 1).chunk("PLTE", Bytes{0, 0, 0});
    if (hasTransparency) file.chunk("tRNS", Bytes{0, 0});
    const ImageHeader header = headerOf(file.chunk("IDAT", "never looked at"));
    EXPECT_EQ(header.status, CGImageSourceStatus::complete);
    EXPECT_EQ(header.size, (detail::PixelSize{7, 5}));
    EXPECT_EQ(header.model, model);
    EXPECT_EQ(header.bitsPerComponent, colorType == 3 ? 8U : static_cast<std::size_t>(depth));
    EXPECT_EQ(header.hasAlpha, hasTransparency || colorType >= 4);
    EXPECT_EQ(header.isIndexed, colorType == 3);
    EXPECT_EQ(*pngProperty(header, "InterlaceType"), Value(1));
  }
}

TEST(PngHeaderTest, RefusesHeadersThatContradictThemselves) {
  PngFile files[] = {PngFile(),
                     PngFile().chunk("IHDR", "short"),
                     PngFile().header(0, 1, 8, 0),
                     PngFile().header(1, 0, 8, 0),
                     PngFile().header(0x80000000, 1, 8, 0),
                     PngFile().header(1, 1, 3, 0),
                     PngFile().header(1, 1, 0, 0),
                     PngFile().header(1, 1, 4, 2),
                     PngFile().header(1, 1, 16, 3),
                     PngFile().header(1, 1, 8, 9),
                     PngFile().header(1, 1, 8, 0, 2),
                     PngFile().header(1, 1, 8, 3),  // no palette
                     dot().header(1, 1, 8, 0),
                     dot().chunk("IEND", ""),
                     dot().chunk("1DAT", ""),
                     dot().chunk("IDA[", "")};
  for (std::size_t i = 0; i < std::size(files); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(headerOf(files[i].pixelAndEnd()).status, CGImageSourceStatus::invalidData);
  }
}

std::size_t placeOf(std::string_view type, const Data& file) { return textOf(file).find(type); }

TEST(PngHeaderTest, AFileThatIsCutIsIncompleteUpToItsPixels) {
  const Data file = fullFile().data();
  using enum CGImageSourceStatus;
  for (std::size_t size = 0; size <= file.size(); ++size) {
    SCOPED_TRACE(size);
    const bool hasPixels = size >= placeOf("IDAT", file) + 4;
    const auto expected = size < 8 ? unknownType : hasPixels ? complete : incomplete;
    EXPECT_EQ(headerOf(cutAt(size, file)).status, expected);
    EXPECT_EQ(detail::pngFormat.sniff(cutAt(size, file)), size >= 8);
  }
}

TEST(PngHeaderTest, ADamagedChunkOfMetadataIsNone) {
  const Data file = fullFile().data();
  for (const std::string_view type : {"gAMA", "pHYs", "tIME", "iTXt", "eXIf", "IHDR"}) {
    SCOPED_TRACE(type);
    Bytes bytes = bytesOf(file);
    bytes[placeOf(type, file) + 4] ^= 1;
    const ImageHeader header = headerOf(dataOf(bytes));
    using enum CGImageSourceStatus;
    EXPECT_EQ(header.status, type == "IHDR" ? invalidData : complete);
    if (type == "IHDR") continue;
    EXPECT_EQ(header.blocks.exif.empty(), type == "eXIf");
    EXPECT_EQ(pngProperty(header, "Gamma") == nullptr, type == "gAMA");
    EXPECT_EQ(header.formatProperties.find("DPIWidth") == nullptr, type == "pHYs");
    EXPECT_EQ(pngProperty(header, "ModificationTime") == nullptr, type == "tIME");
    EXPECT_EQ(pngProperty(header, "Title") == nullptr, type == "iTXt");
  }
}

TEST(PngHeaderTest, ReadsBlocksInHexadecimalTexts) {
  const PngFile file =
      dot()
          .chunk("tEXt",
                 "Raw profile type exif\0\nexif\n      14\n4578696600004949\n2a0008000000\n"s)
          .chunk("zTXt", "Raw profile type iptc\0\0"s + packed("\niptc\n       3\n1c0255\n"))
          .chunk("tEXt", "Raw profile type xmp\0\nxmp\n       4\n3c782F3E"s)
          .pixelAndEnd();
  const ImageHeader header = headerOf(file);
  EXPECT_EQ(textOf(header.blocks.exif), "II*\0\x08\0\0\0"s);
  EXPECT_EQ(textOf(header.blocks.imageResources), "8BIM\x04\x04\0\0\0\0\0\x03\x1C\x02\x55\0"s);
  EXPECT_EQ(textOf(header.blocks.xmp), "<x/>");

  const std::string exif = "Raw profile type exif\0"s;
  for (const char* damaged :
       {"", "\n", "\nexif", "\nexif\n", "\nexif\n  2\n41", "\nexif\n  1\n4", "\nexif\n 1\nzz",
        "\nexif\n99999999999999999999\n41", "\nexif\n -1\n41"}) {
    const ImageHeader none = headerOf(dot().chunk("tEXt", exif + damaged).pixelAndEnd());
    EXPECT_TRUE(none.blocks.exif.empty()) << damaged;
  }
  const ImageHeader both = headerOf(
      dot().chunk("tEXt", exif + "\nexif\n       2\n4949").chunk("eXIf", "MM\0*"s).pixelAndEnd());
  EXPECT_EQ(textOf(both.blocks.exif), "MM\0*"s) << "a chunk of its own wins";
}

TEST(PngHeaderTest, UnpacksNoMoreThanItsBudget) {
  // 15 megabytes in 15 kilobytes, more than a text may have; what is unpacked next does not fit in
  // any more.
  const auto spaces = [](std::size_t count) { return packed(std::string(count, ' ')); };
  const ImageHeader header = headerOf(dot()
                                          .chunk("zTXt", "Author\0\0"s + spaces(1 << 19))
                                          .chunk("zTXt", "Comment\0\0"s + spaces(15 << 20))
                                          .chunk("iCCP", "profile\0\0"s + spaces(1 << 20))
                                          .pixelAndEnd());
  EXPECT_NE(pngProperty(header, "Author"), nullptr);
  EXPECT_EQ(pngProperty(header, "Comment"), nullptr);
  EXPECT_TRUE(header.iccProfile.empty());
  EXPECT_EQ(*header.formatProperties.find(kKvImagePropertyMetadataLeftOut), Value(Array{"{PNG}"}));
  EXPECT_EQ(header.status, CGImageSourceStatus::complete);
}

}  // namespace
}  // namespace FrameworkUtility::testing
