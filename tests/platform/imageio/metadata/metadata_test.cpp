#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/iptc/image_resources.h>
#include <framework_utility/platform/imageio/metadata/metadata.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp.h>
#include <tests/support/files.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::detail {
namespace {

using testing::bytesOf;

constexpr PixelFacts pixels{.width = 64, .height = 48};

Data packetOf(const std::string& attributes, std::string_view elements = {}) {
  return Data(
      bytesOf("<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
              "<rdf:Description xmlns:dc='http://purl.org/dc/elements/1.1/'" +
              attributes + ">" + std::string(elements) + "</rdf:Description></rdf:RDF>"));
}

Dictionary read(const MetadataBlocks& blocks) {
  Dictionary properties;
  readMetadata(blocks, properties);
  return properties;
}

TEST(MetadataTest, AChangeReachesEveryBlockThatSaysIt) {
  // EXIF and XMP disagree about the make; only XMP knows the model, the place and the creator.
  const Dictionary own{{"{TIFF}", Dictionary{{"Make", "Exif"}}},
                       {"{IPTC}", Dictionary{{"City", "Ulm"}}}};
  MetadataBlocks blocks = mergeMetadata(nullptr, own, pixels);
  blocks.xmp = packetOf(
      " xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
      " tiff:Make='Xmp' tiff:Model='M' exif:GPSLatitude='10,30.0S' exif:GPSLongitude='20,0.0E'",
      "<dc:creator><rdf:Seq><rdf:li>Ada</rdf:li></rdf:Seq></dc:creator>");
  Dictionary properties = read(blocks);
  properties.subdictionary("{TIFF}").set("Make", "New");
  properties.subdictionary("{IPTC}").set("Byline", Value(Array{"Bo"}));
  ASSERT_TRUE(properties.remove("{GPS}"));
  MetadataBlocks saved = mergeMetadata(&blocks, properties, pixels);
  EXPECT_EQ(read(saved), properties);
  EXPECT_EQ(asText(saved.xmp).find("GPS"), std::string_view::npos);
  saved.exif = Data();
  EXPECT_EQ(*read(saved).get<Dictionary>("{TIFF}")->find("Make"), Value("New"));
  // XMP of which nothing is read follows too.
  blocks.xmp = packetOf("", "<dc:creator>Ada</dc:creator>");
  saved = mergeMetadata(&blocks, properties, pixels);
  EXPECT_NE(asText(saved.xmp).find("<dc:creator>Bo</dc:creator>"), std::string_view::npos);
}

TEST(MetadataTest, WhatDoesNotFitIsLeftOutAndTheRestIsRead) {
  const std::string large(5000, 'x');
  const Dictionary given{{"{TIFF}", Dictionary{{"Make", large}, {"Software", "S"}}},
                         {"{IPTC}", Dictionary{{"City", large}, {"Headline", "H"}}}};
  MetadataBlocks blocks = mergeMetadata(nullptr, given, pixels);
  blocks.xmp = packetOf(" xmlns:tiff='http://ns.adobe.com/tiff/1.0/' tiff:Artist='" + large +
                        "' tiff:Model='M'");
  MetadataBudget budget;
  ASSERT_TRUE(budget.spend(0, (8 << 20) - 4000));
  Dictionary properties;
  readExif(blocks.exif, properties, budget);
  readImageResources(blocks.imageResources, properties, budget);
  addXmp(readXmp(blocks.xmp, properties, budget), properties);
  budget.tell(properties);
  EXPECT_EQ(properties, (Dictionary{{"{TIFF}", Dictionary{{"Software", "S"}, {"Model", "M"}}},
                                    {"{IPTC}", Dictionary{{"Headline", "H"}}},
                                    {"MetadataLeftOut", Value(Array{"{TIFF}", "{IPTC}"})}}));
}

}  // namespace
}  // namespace FrameworkUtility::detail
