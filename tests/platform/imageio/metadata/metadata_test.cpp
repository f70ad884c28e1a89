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

/// EXIF and XMP disagree about the make; only XMP knows the model, the place and the creator.
class MetadataTest : public ::testing::Test {
 protected:
  MetadataTest() {
    const Dictionary own{{"{TIFF}", Dictionary{{"Make", "Exif"}}},
                         {"{IPTC}", Dictionary{{"City", "Ulm"}}}};
    blocks_ = mergeMetadata(nullptr, own, pixels);
    blocks_.xmp = packetOf(
        " xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
        " tiff:Make='Xmp' tiff:Model='M' exif:GPSLatitude='10,30.0S' exif:GPSLongitude='20,0.0E'",
        "<dc:creator><rdf:Seq><rdf:li>Ada</rdf:li></rdf:Seq></dc:creator>");
    properties_ = read(blocks_);
  }
  MetadataBlocks saved() const { return mergeMetadata(&blocks_, properties_, pixels); }

  MetadataBlocks blocks_;
  Dictionary properties_;
};

TEST_F(MetadataTest, AnUnchangedSaveKeepsEveryBlock) {
  EXPECT_EQ(saved().exif, blocks_.exif);
  EXPECT_EQ(saved().imageResources, blocks_.imageResources);
  EXPECT_EQ(saved().xmp, blocks_.xmp);
}

TEST_F(MetadataTest, AChangeReachesEveryBlockThatSaysIt) {
  properties_.subdictionary("{TIFF}").set("Make", "New");
  properties_.subdictionary("{IPTC}").set("Byline", Value(Array{"Bo"}));
  ASSERT_TRUE(properties_.remove("{GPS}"));
  EXPECT_EQ(read(saved()), properties_);
  EXPECT_EQ(asText(saved().xmp).find("GPS"), std::string_view::npos);
  MetadataBlocks withoutExif = saved();
  withoutExif.exif = Data();
  EXPECT_EQ(*read(withoutExif).get<Dictionary>("{TIFF}")->find("Make"), Value("New"));
  // XMP of which nothing is read follows too.
  blocks_.xmp = packetOf("", "<dc:creator>Ada</dc:creator>");
  EXPECT_NE(asText(saved().xmp).find("<dc:creator>Bo</dc:creator>"), std::string_view::npos);
}

TEST_F(MetadataTest, WhatDoesNotFitIsLeftOutAndTheRestIsRead) {
  const std::string large(5000, 'x');
  const Dictionary given{{"{TIFF}", Dictionary{{"Make", large}, {"Software", "S"}}},
                         {"{IPTC}", Dictionary{{"City", large}, {"Headline", "H"}}}};
  blocks_ = mergeMetadata(nullptr, given, pixels);
  blocks_.xmp = packetOf(" xmlns:tiff='http://ns.adobe.com/tiff/1.0/' tiff:Artist='" + large +
                         "' tiff:Model='M'");
  MetadataBudget budget;
  ASSERT_TRUE(budget.spend(0, (8 << 20) - 4000));
  Dictionary properties;
  readExif(blocks_.exif, properties, budget);
  readImageResources(blocks_.imageResources, properties, budget);
  addXmp(readXmp(blocks_.xmp, properties, budget), properties);
  budget.tell(properties);
  EXPECT_EQ(properties, (Dictionary{{"{TIFF}", Dictionary{{"Software", "S"}, {"Model", "M"}}},
                                    {"{IPTC}", Dictionary{{"Headline", "H"}}},
                                    {"MetadataLeftOut", Value(Array{"{TIFF}", "{IPTC}"})}}));
}

}  // namespace
}  // namespace FrameworkUtility::detail
