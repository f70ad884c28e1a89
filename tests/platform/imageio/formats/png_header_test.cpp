#include <framework_utility/platform/imageio/formats/png/png_format.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <tests/platform/imageio/formats/format_coding.h>
#include <tests/platform/imageio/formats/png_file.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace FrameworkUtility {
namespace {

using namespace std::string_literals;
using detail::ByteSource;
using detail::ImageHeader;
using testing::Bytes;
using testing::deflated;
using testing::PngFile;

ImageHeader headerOf(const Data& data) { return testing::headerOf(detail::pngFormat, data); }

ImageHeader headerOf(const PngFile& file) { return headerOf(file.data()); }

std::string textOf(const Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

const Value* pngProperty(const ImageHeader& header, std::string_view key) {
  const auto* png = header.formatProperties.get<Dictionary>(kCGImagePropertyPNGDictionary);
  return png ? png->find(key) : nullptr;
}

/// Every kind of chunk that is read, before the pixels but for the last two.
PngFile fullFile() {
  return PngFile()
      .header(1, 1, 8, 0)
      .chunk("gAMA", Bytes{0, 0, 0xB1, 0x8F})
      .chunk("sRGB", Bytes{1})
      .chunk("pHYs", Bytes{0, 0, 0x0B, 0x13, 0, 0, 0x0B, 0x12, 1})
      .chunk("tIME", Bytes{0x07, 0xE8, 5, 17, 9, 30, 1})
      .chunk("tEXt", "Author\0J\xF6rg"s)
      .chunk("zTXt", "Comment\0\0"s + textOf(deflated("caf\xE9")))
      .chunk("iTXt", "Title\0\0\0de\0Titel\0\u65E5\u672C"s)
      .chunk("iTXt", "Description\0\1\0\0\0"s + textOf(deflated("\u20AC")))
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
  const auto dpi = [](Bytes perMetre) {
    perMetre.insert(perMetre.end(), {0, 0, 0x27, 0x10, 1});
    const ImageHeader header =
        headerOf(PngFile().header(1, 1, 8, 0).chunk("pHYs", perMetre).pixelAndEnd());
    return header.formatProperties.get<Number>("DPIWidth")->doubleValue();
  };
  EXPECT_EQ(dpi({0, 0, 0x0E, 0xC3}), 96);  // 3779, cut
  EXPECT_EQ(dpi({0, 0, 0x0E, 0xC4}), 96);  // 3780, rounded
  EXPECT_EQ(dpi({0, 0, 0x03, 0xE8}), 25.4);
}

TEST(PngHeaderTest, TellsColourTypes) {
  struct Case {
    int depth, colorType;
    bool hasTransparency;
    CGColorSpaceModel model;
    std::size_t bitsPerComponent;
    bool hasAlpha;
  };
  using enum CGColorSpaceModel;
  for (const Case& c : {Case{1, 0, false, monochrome, 1, false},
                        {16, 0, true, monochrome, 16, true},
                        {8, 2, false, rgb, 8, false},
                        {16, 2, true, rgb, 16, true},
                        {2, 3, false, rgb, 8, false},
                        {8, 3, true, rgb, 8, true},
                        {8, 4, false, monochrome, 8, true},
                        {16, 6, false, rgb, 16, true}}) {
    SCOPED_TRACE(::testing::Message() << c.colorType << ' ' << c.depth);
    PngFile file = PngFile().header(7, 5, c.depth, c.colorType, 1);
    file.chunk("PLTE", Bytes{0, 0, 0});
    if (c.hasTransparency) file.chunk("tRNS", Bytes{0, 0});
    const ImageHeader header = headerOf(file.chunk("IDAT", "never looked at"));
    EXPECT_EQ(header.status, CGImageSourceStatus::complete);
    EXPECT_EQ(header.size, (detail::PixelSize{7, 5}));
    EXPECT_EQ(header.model, c.model);
    EXPECT_EQ(header.bitsPerComponent, c.bitsPerComponent);
    EXPECT_EQ(header.hasAlpha, c.hasAlpha);
    EXPECT_EQ(header.isIndexed, c.colorType == 3);
    EXPECT_EQ(*pngProperty(header, "InterlaceType"), Value(1));
  }
}

TEST(PngHeaderTest, RefusesHeadersThatContradictThemselves) {
  const auto status = [](const PngFile& file) { return headerOf(file).status; };
  using enum CGImageSourceStatus;
  EXPECT_EQ(status(PngFile().header(0, 1, 8, 0).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 0, 8, 0).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(0x80000000, 0x80000000, 8, 0).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 3, 0).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 0, 0).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 4, 2).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 16, 3).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 8, 9).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 8, 0, 2).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 8, 3).pixelAndEnd()), invalidData);  // no palette
  EXPECT_EQ(status(PngFile().chunk("IHDR", "short").pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 8, 0).header(1, 1, 8, 0).pixelAndEnd()), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 8, 0).chunk("IEND", "")), invalidData);
  EXPECT_EQ(status(PngFile().header(1, 1, 8, 0).chunk("1DAT", "")), invalidData);
}

TEST(PngHeaderTest, AFileThatIsCutIsIncompleteUpToItsPixels) {
  const PngFile file = fullFile();
  const Bytes pixels{'I', 'D', 'A', 'T'};
  const auto end =
      std::search(file.bytes().begin(), file.bytes().end(), pixels.begin(), pixels.end()) + 4;
  const auto complete = static_cast<std::size_t>(end - file.bytes().begin());
  for (std::size_t size = 0; size <= file.bytes().size(); ++size) {
    SCOPED_TRACE(size);
    const Data cut(std::as_bytes(std::span(file.bytes()).first(size)));
    const ImageHeader header = headerOf(cut);
    EXPECT_EQ(header.status, size < 8          ? CGImageSourceStatus::unknownType
                             : size < complete ? CGImageSourceStatus::incomplete
                                               : CGImageSourceStatus::complete);
    EXPECT_EQ(detail::pngFormat.sniff(cut), size >= 8);
  }
}

TEST(PngHeaderTest, ADamagedChunkOfMetadataIsNone) {
  const PngFile file = fullFile();
  for (const std::string_view type : {"gAMA", "pHYs", "tIME", "tEXt", "iTXt", "eXIf"}) {
    SCOPED_TRACE(type);
    Bytes bytes = file.bytes();
    *(std::search(bytes.begin(), bytes.end(), type.begin(), type.end()) + 4) ^= 1;
    const ImageHeader header = headerOf(Data(std::as_bytes(std::span(bytes))));
    EXPECT_EQ(header.status, CGImageSourceStatus::complete);
    EXPECT_EQ(header.blocks.exif.empty(), type == "eXIf");
    EXPECT_EQ(pngProperty(header, "Gamma") == nullptr, type == "gAMA");
    EXPECT_EQ(header.formatProperties.find("DPIWidth") == nullptr, type == "pHYs");
    EXPECT_EQ(pngProperty(header, "ModificationTime") == nullptr, type == "tIME");
    EXPECT_EQ(pngProperty(header, "Title") == nullptr, type == "iTXt");
  }
  Bytes bytes = file.bytes();
  bytes[16] ^= 1;  // in the header
  EXPECT_EQ(headerOf(Data(std::as_bytes(std::span(bytes)))).status,
            CGImageSourceStatus::invalidData);
}

TEST(PngHeaderTest, ReadsBlocksInHexadecimalTexts) {
  const PngFile file =
      PngFile()
          .header(1, 1, 8, 0)
          .chunk("tEXt",
                 "Raw profile type exif\0\nexif\n      14\n4578696600004949\n2a0008000000\n"s)
          .chunk("zTXt",
                 "Raw profile type iptc\0\0"s + textOf(deflated("\niptc\n       3\n1c0255\n")))
          .chunk("tEXt", "Raw profile type xmp\0\nxmp\n       4\n3c782F3E"s)
          .pixelAndEnd();
  const ImageHeader header = headerOf(file);
  EXPECT_EQ(textOf(header.blocks.exif), "II*\0\x08\0\0\0"s);
  EXPECT_EQ(textOf(header.blocks.imageResources), "8BIM\x04\x04\0\0\0\0\0\x03\x1C\x02\x55\0"s);
  EXPECT_EQ(textOf(header.blocks.xmp), "<x/>");

  for (const std::string& damaged :
       {""s, "\n"s, "\nexif"s, "\nexif\n"s, "\nexif\n  2\n41"s, "\nexif\n  1\n4"s,
        "\nexif\n 1\nzz"s, "\nexif\n99999999999999999999\n41"s, "\nexif\n -1\n41"s}) {
    SCOPED_TRACE(damaged);
    EXPECT_TRUE(headerOf(PngFile()
                             .header(1, 1, 8, 0)
                             .chunk("tEXt", "Raw profile type exif\0"s + damaged)
                             .pixelAndEnd())
                    .blocks.exif.empty());
  }
}

TEST(PngHeaderTest, AChunkOfItsOwnWinsOverAText) {
  const ImageHeader header =
      headerOf(PngFile()
                   .header(1, 1, 8, 0)
                   .chunk("tEXt", "Raw profile type exif\0\nexif\n       2\n4949"s)
                   .chunk("eXIf", "MM\0*"s)
                   .pixelAndEnd());
  EXPECT_EQ(textOf(header.blocks.exif), "MM\0*"s);
}

TEST(PngHeaderTest, UnpacksNoMoreThanItsBudget) {
  // 15 megabytes in 15 kilobytes, more than a text may have; what is unpacked next does not fit in
  // any more.
  const auto spaces = [](std::size_t count) { return textOf(deflated(std::string(count, ' '))); };
  const ImageHeader header = headerOf(PngFile()
                                          .header(1, 1, 8, 0)
                                          .chunk("zTXt", "Author\0\0"s + spaces(1 << 19))
                                          .chunk("zTXt", "Comment\0\0"s + spaces(15 << 20))
                                          .chunk("iCCP", "profile\0\0"s + spaces(1 << 20))
                                          .pixelAndEnd());
  EXPECT_NE(pngProperty(header, "Author"), nullptr);
  EXPECT_EQ(pngProperty(header, "Comment"), nullptr);
  EXPECT_TRUE(header.iccProfile.empty());
  const Value* leftOut = header.formatProperties.find(kKvImagePropertyMetadataLeftOut);
  ASSERT_TRUE(leftOut);
  EXPECT_EQ(*leftOut, Value(Array{"{PNG}"}));
  EXPECT_EQ(header.status, CGImageSourceStatus::complete);
}

TEST(PngHeaderTest, SurvivesDamagedTexts) {
  for (const std::string& text :
       {""s, "Title"s, "Title\0"s, "\0text"s, std::string(200, 'k'), "Title\0\1"s, "Title\0\0\0"s,
        "Title\0\0\0en\0"s, "Title\0\1\0\0\0not zlib"s, "Title\0\1\1\0\0x"s}) {
    for (const char* type : {"tEXt", "zTXt", "iTXt", "iCCP"}) {
      const ImageHeader header =
          headerOf(PngFile().header(1, 1, 8, 0).chunk(type, text).pixelAndEnd());
      EXPECT_EQ(header.status, CGImageSourceStatus::complete);
      EXPECT_TRUE(header.iccProfile.empty());
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility
