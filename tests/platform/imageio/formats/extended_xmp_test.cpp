// Packets of XMP that are longer than a segment of a JPEG.

#include <framework_utility/platform/imageio/formats/jpeg/jpeg_format.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>
#include <framework_utility/platform/imageio/formats/png/png_format.h>
#include <framework_utility/platform/imageio/metadata/metadata.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_extension.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_packet.h>
#include <tests/platform/imageio/formats/format_coding.h>
#include <tests/platform/imageio/formats/jpeg_file.h>

#include <gtest/gtest.h>

#include <map>

namespace FrameworkUtility::testing {
namespace {

using detail::ByteSource;
using detail::EncodeRequest;
using detail::XmpParts;

using namespace std::string_literals;

std::string packetOf(std::string_view descriptions, std::string_view declarations = {}) {
  return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
         "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'" +
         std::string(declarations) + ">" + std::string(descriptions) + "</rdf:RDF></x:xmpmeta>";
}

const std::string tiff = " xmlns:tiff='http://ns.adobe.com/tiff/1.0/'";

/// Of one description with these attributes, the TIFF names declared.
Data described(const std::string& attributes) {
  return dataOf(packetOf("<rdf:Description" + tiff + attributes + "/>"));
}

/// A description that asks for the extension of this name.
std::string asking(const std::string& name) {
  return " xmlns:n='http://ns.adobe.com/xmp/note/' n:HasExtendedXMP='" + name + "'";
}

/// What a packet says, in no order: each property of the tables and its text.
using Said = std::multimap<std::string, std::string>;
Said said(const Data& packet) {
  Said result;
  detail::MetadataBudget budget;
  const auto properties = detail::parseXmpPacket(textOf(packet), budget);
  EXPECT_TRUE(properties);
  for (const detail::XmpProperty& property : properties.value()) {
    result.emplace(property.mapping->name, property.texts().front());
  }
  return result;
}

MetadataBlocks savedBy(const detail::ImageFormat& format, const Data& xmp,
                       const Data& extendedXmp = {}) {
  EncodeRequest request;
  request.blocks.xmp = xmp;
  request.blocks.extendedXmp = extendedXmp;
  return headerOf(format, encodedBy(format, quarters(16, 16), request)).blocks;
}

TEST(ExtendedXmp, OnePacketSaysWhatTwoDid) {
  const Data main = described(" tiff:Make='M'" + asking("0123"));
  const struct {
    const char* what;
    std::string extension;
  } cases[] = {
      {"declared beside it", packetOf("<rdf:Description" + tiff +
                                      " tiff:Model='&lt;N'><tiff:Software>S</tiff:Software>"
                                      "</rdf:Description>")},
      {"declared above it", packetOf("<rdf:Description tiff:Model='&lt;N'/><r:Description "
                                     "xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                                     "<tiff:Software>S</tiff:Software></r:Description>",
                                     tiff)},
      {"by another name",
       packetOf("<rdf:Description rdf:about='' x:Model='&lt;N'><x:Software>S</x:Software>"
                "</rdf:Description>",
                " xmlns:x='http://ns.adobe.com/tiff/1.0/'")}};
  for (const auto& [what, extension] : cases) {
    SCOPED_TRACE(what);
    EXPECT_EQ(said(detail::joinedXmp(main, dataOf(extension))),
              (Said{{"Make", "M"}, {"Model", "<N"}, {"Software", "S"}}));
  }
  for (const std::string& other : {"no packet"s, "<a/>"s, packetOf("").substr(1)}) {
    EXPECT_EQ(detail::joinedXmp(main, dataOf(other)), main);
  }
}

TEST(ExtendedXmp, SharedDeclarationsDoNotMultiply) {
  std::string descriptions;
  for (int i = 0; i < 10'000; ++i) descriptions += "<rdf:Description/>";
  const std::string uri(100'000, 'u');
  const Data extension = dataOf(packetOf(descriptions, " xmlns:u='" + uri + "'"));
  const Data main = dataOf(packetOf("<rdf:Description/>"));
  EXPECT_EQ(detail::joinedXmp(main, extension), main);
}

TEST(ExtendedXmp, TheLongestPropertiesMove) {
  const Data packet =
      dataOf(packetOf("<rdf:Description rdf:about='' tiff:Make='M' tiff:Model='" +
                          std::string(500, 'm') + "'><tiff:Software>" + std::string(400, 's') +
                          "</tiff:Software><tiff:Artist>A</tiff:Artist></rdf:Description>",
                      tiff));
  const std::optional<XmpParts> parts = detail::splitXmp(packet, packet.size() - 600);
  ASSERT_TRUE(parts);
  EXPECT_EQ(said(parts->packet), (Said{{"Make", "M"}, {"Artist", "A"}}));
  EXPECT_EQ(said(detail::joinedXmp(parts->packet, parts->extension)), said(packet));
  EXPECT_FALSE(detail::splitXmp(packet, 100));
  EXPECT_FALSE(detail::splitXmp(dataOf("no packet"), 4));
}

TEST(ExtendedXmp, EveryLengthComesBackFromAJpeg) {
  for (const std::size_t size : {65'000U, 65'290U, 65'305U, 65'600U, 200'000U}) {
    SCOPED_TRACE(size);
    const Data packet = described(" tiff:Make='M' tiff:Model='" + std::string(size, 'm') + "'");
    const MetadataBlocks read = savedBy(detail::jpegFormat, packet);
    EXPECT_EQ(read.extendedXmp.empty(), packet.size() <= 65'504);
    EXPECT_EQ(said(detail::joinedXmp(read.xmp, read.extendedXmp)), said(packet));
    // A file that is saved from it has the same two packets, the name of the second included.
    const MetadataBlocks again = savedBy(detail::jpegFormat, read.xmp, read.extendedXmp);
    EXPECT_EQ(again.xmp, read.xmp);
    EXPECT_EQ(again.extendedXmp, read.extendedXmp);
  }
}

TEST(ExtendedXmp, TheNameIsTheDigest) {
  const MetadataBlocks blocks = savedBy(detail::jpegFormat, described(""), dataOf("abc"));
  EXPECT_EQ(detail::xmpExtensionName(blocks.xmp), "900150983CD24FB0D6963F7D28E17F72");
  EXPECT_EQ(textOf(blocks.extendedXmp), "abc");
}

TEST(ExtendedXmp, APngHoldsOnePacket) {
  const Data extension = described(" tiff:Model='" + std::string(70'000, 'm') + "'");
  const Data xmp = savedBy(detail::pngFormat, described(" tiff:Make='M'"), extension).xmp;
  EXPECT_EQ(said(xmp).size(), 2U);
}

TEST(ExtendedXmp, AChangeReachesTheExtension) {
  MetadataBlocks blocks;
  blocks.xmp = described(asking("0123"));
  blocks.extendedXmp = described(" tiff:Make='M'");
  Dictionary properties;
  detail::readMetadata(blocks, properties);
  EXPECT_EQ(properties, (Dictionary{{"{TIFF}", Dictionary{{"Make", "M"}}}}));
  EXPECT_EQ(detail::mergeMetadata(&blocks, properties, {}).xmp, blocks.xmp);
  properties.subdictionary("{TIFF}").set("Make", "New");
  const MetadataBlocks changed = detail::mergeMetadata(&blocks, properties, {});
  EXPECT_EQ(said(changed.extendedXmp).find("Make")->second, "New");
  EXPECT_EQ(detail::xmpExtensionName(changed.xmp), "") << "it was a digest of the old one";
}

TEST(ExtendedXmp, PortionsThatDoNotFitTogetherAreNone) {
  const std::string name(32, 'A');
  const Data main = described(asking(name));
  const auto portion = [&](std::size_t length, std::size_t offset, const std::string& bytes,
                           char letter = 'A') {
    return jpegSegment(0xE1, "http://ns.adobe.com/xmp/extension/\0"s + std::string(32, letter) +
                                 "\0\0"s + u16(length) + "\0\0"s + u16(offset) + bytes);
  };
  const struct {
    const char* what;
    std::string segments, packet;
  } cases[] = {
      {"one", portion(3, 0, "abc"), "abc"},
      {"in any order", portion(5, 3, "de") + portion(5, 0, "abc"), "abcde"},
      {"twice", portion(3, 0, "xxx") + portion(3, 0, "abc"), "abc"},
      {"of another name", portion(3, 0, "abc") + portion(9, 3, "d", 'B'), "abc"},
      {"cut head",
       portion(3, 0, "abc") + jpegSegment(0xE1, "http://ns.adobe.com/xmp/extension/\0AA"s), "abc"},
      {"the end is missing", portion(5, 0, "abc"), ""},
      {"a gap", portion(5, 0, "ab") + portion(5, 3, "de"), ""},
      {"an overlap", portion(5, 0, "abc") + portion(5, 2, "cde"), ""},
      {"too many", portion(3, 0, "abcd"), ""},
      {"lengths differ", portion(5, 0, "abc") + portion(6, 3, "de"), ""},
      {"no beginning", portion(3, 1, "bc"), ""},
  };
  const std::string xmp = jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0"s + textOf(main));
  for (const auto& [what, segments, packet] : cases) {
    SCOPED_TRACE(what);
    const auto read = [](const std::string& file) {
      return textOf(detail::readJpegHeader(ByteSource(dataOf(jpegHeader(file + jpegFrame()))))
                        .blocks.extendedXmp);
    };
    EXPECT_EQ(read(xmp + segments), packet);
    EXPECT_EQ(read(segments), "") << "which nobody asks for";
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
