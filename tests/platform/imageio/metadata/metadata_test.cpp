#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {
namespace {

constexpr PixelFacts pixels{.width = 64, .height = 48};

Data dataOf(std::string_view text) { return Data(std::as_bytes(std::span(text))); }

std::string textOf(const Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

Dictionary read(const MetadataBlocks& blocks) {
  Dictionary properties;
  readMetadata(blocks, properties);
  return properties;
}

MetadataBlocks blocksOf(const Data& exif, const Data& xmp) {
  MetadataBlocks blocks;
  blocks.exif = exif;
  blocks.xmp = xmp;
  return blocks;
}

// EXIF and XMP disagree about the make; only XMP knows the model, the place and the creator.
MetadataBlocks sampleBlocks() {
  const Dictionary own{{"{TIFF}", Dictionary{{"Make", "Exif"}}},
                       {"{IPTC}", Dictionary{{"City", "Ulm"}}}};
  MetadataBlocks blocks = mergeMetadata(nullptr, own, pixels);
  blocks.xmp = dataOf(
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description"
      " xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
      " xmlns:dc='http://purl.org/dc/elements/1.1/' tiff:Make='Xmp' tiff:Model='M'"
      " exif:GPSLatitude='10,30.0S' exif:GPSLongitude='20,0.0E'>"
      "<dc:creator><rdf:Seq><rdf:li>Ada</rdf:li></rdf:Seq></dc:creator>"
      "</rdf:Description></rdf:RDF>");
  return blocks;
}

TEST(MetadataTest, AnUnchangedSaveKeepsEveryBlock) {
  const MetadataBlocks blocks = sampleBlocks();
  const MetadataBlocks saved = mergeMetadata(&blocks, read(blocks), pixels);
  EXPECT_EQ(saved.exif, blocks.exif);
  EXPECT_EQ(saved.imageResources, blocks.imageResources);
  EXPECT_EQ(textOf(saved.xmp), textOf(blocks.xmp));
}

TEST(MetadataTest, AChangeReachesEveryBlockThatSaysIt) {
  const MetadataBlocks blocks = sampleBlocks();
  Dictionary changed = read(blocks);
  changed.subdictionary("{TIFF}").set("Make", "New");
  changed.subdictionary("{IPTC}").set("Byline", Value(Array{"Bo"}));
  const MetadataBlocks saved = mergeMetadata(&blocks, changed, pixels);

  EXPECT_EQ(read(saved), changed);
  for (MetadataBlocks part : {blocksOf(saved.exif, {}), blocksOf({}, saved.xmp)}) {
    const Dictionary properties = read(part);
    ASSERT_TRUE(properties.get<Dictionary>("{TIFF}"));
    EXPECT_EQ(*properties.get<Dictionary>("{TIFF}")->find("Make"), Value("New"));
  }
}

TEST(MetadataTest, ARemovedPlaceIsGoneFromEveryBlock) {
  const MetadataBlocks blocks = sampleBlocks();
  Dictionary changed = read(blocks);
  ASSERT_TRUE(changed.remove("{GPS}"));
  const MetadataBlocks saved = mergeMetadata(&blocks, changed, pixels);
  EXPECT_EQ(read(saved), changed);
  EXPECT_EQ(textOf(saved.xmp).find("GPS"), std::string::npos);
}

TEST(MetadataTest, AnOrientationAtTheTopTurnsXmpToo) {
  MetadataBlocks blocks;
  blocks.xmp = dataOf(
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description"
      " xmlns:tiff='http://ns.adobe.com/tiff/1.0/' tiff:Orientation='6'/></rdf:RDF>");
  Dictionary properties = read(blocks);
  EXPECT_EQ(properties, (Dictionary{{"{TIFF}", Dictionary{{"Orientation", 6}}}}));
  properties.set("Orientation", 1);
  const Dictionary again = read(mergeMetadata(&blocks, properties, pixels));
  EXPECT_EQ(*again.find("Orientation"), Value(1));
  EXPECT_EQ(*again.get<Dictionary>("{TIFF}")->find("Orientation"), Value(1));
}

}  // namespace
}  // namespace FrameworkUtility::detail
