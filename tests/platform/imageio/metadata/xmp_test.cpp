#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/iptc/image_resources.h>
#include <framework_utility/platform/imageio/metadata/metadata.h>
#include <framework_utility/platform/imageio/metadata/values/text_encoding.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp.h>
#include <tests/support/files.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace FrameworkUtility::detail {
namespace {

using namespace std::string_literals;

using testing::bytesOf;

std::string packetOf(std::string_view attributes, std::string_view elements = {}) {
  std::string packet =
      "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
      "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Lumen 3.1\">\n"
      " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
      "  <rdf:Description rdf:about=\"\" xmlns:own=\"http://example.org/own/1.0/\"\n"
      " xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" xmlns:exif=\"http://ns.adobe.com/exif/1.0/\""
      " xmlns:aux=\"http://ns.adobe.com/exif/1.0/aux/\" xmlns:exifEX='http://cipa.jp/exif/1.0/'"
      " xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\"\n"
      " xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"";
  packet.append(attributes).append(">").append(elements);
  return packet + "\n  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n \n<?xpacket end=\"w\"?>";
}

/// A packet with one property, as an attribute or an element; without it where there is no text.
std::string packetWith(const std::string& name, const std::optional<std::string>& text,
                       bool isElement) {
  if (!text) return packetOf("");
  return isElement ? packetOf("", "<" + name + ">" + *text + "</" + name + ">")
                   : packetOf(" " + name + "='" + *text + "'");
}

Dictionary read(std::span<const std::byte> packet, Dictionary properties = {}) {
  MetadataBudget budget;
  addXmp(readXmp(packet, properties, budget), properties);
  return properties;
}

Dictionary read(std::string_view packet, const Dictionary& properties = {}) {
  return read(bytesOf(packet), properties);
}

std::string merged(std::string_view packet, const Dictionary& before, const Dictionary& after) {
  const PixelFacts pixels{.width = 4032, .height = 3024};
  return std::string(asText(mergeXmp(bytesOf(packet), before, after, pixels)));
}

std::string mergedAfterRead(std::string_view packet, const Dictionary& after) {
  return merged(packet, read(packet), after);
}

std::string alternatives(std::string_view items) {
  return "<rdf:Alt>" + std::string(items) + "</rdf:Alt>";
}

/// A property in the tests of its form.
struct Property {
  std::string name;
  std::string_view dictionary;

  Dictionary properties(const Dictionary& entries) const {
    return entries.empty() ? entries : Dictionary{{dictionary, entries}};
  }
  /// Each text stands for these entries, as an attribute and as an element.
  const Property& reads(const std::vector<std::string>& texts, const Dictionary& entries) const {
    for (const std::string& text : texts) {
      SCOPED_TRACE(name + "=" + text);
      EXPECT_EQ(read(packetWith(name, text, true)), properties(entries));
      if (text.find('<') != text.npos) continue;
      EXPECT_EQ(read(packetWith(name, text, false)), properties(entries));
    }
    return *this;
  }
  /// A caller who wants these entries instead of others gives the text; without one the property
  /// goes.
  const Property& writes(const Dictionary& entries, const std::optional<std::string>& text) const {
    SCOPED_TRACE(name + " " + Value(entries).description());
    for (const bool isElement : {false, true}) {
      const std::string packet = packetWith(name, "1", isElement);
      EXPECT_EQ(mergedAfterRead(packet, properties(entries)), packetWith(name, text, isElement));
    }
    return *this;
  }
  const Property& loses(const std::vector<Dictionary>& wanted) const {
    for (const Dictionary& entries : wanted) writes(entries, std::nullopt);
    return *this;
  }
  const Property& says(const std::string& text, const Dictionary& entries) const {
    return reads({text}, entries).writes(entries, text);
  }
};

TEST(XmpTest, EveryFormIsReadAndWritten) {
  const auto list = [](auto... elements) { return Value(Array{elements...}); };
  Property{"tiff:Make", "{TIFF}"}
      .says("L &amp; M", {{"Make", "L & M"}})
      .reads({"L &#38; M", "L <![CDATA[&]]> M"}, {{"Make", "L & M"}})
      .reads({""}, {})
      .says("&lt;&amp;&gt;&quot;&apos;]]&gt;", {{"Make", "<&>\"']]>"}})
      .says(" a&#9;&#10;&#13; \xE6\xB9\x96", {{"Make", " a\t\n\r \xE6\xB9\x96"}})
      .writes({{"Make", "x\x01\xFFy\xEF\xBF\xBF"}}, "x\xEF\xBF\xBDy")  // no text at all
      .loses({{}, {{"Make", 7}}});
  Property{"tiff:Orientation", "{TIFF}"}
      .says("6", {{"Orientation", 6}})
      .reads({" 6\n", "12/2"}, {{"Orientation", 6}})
      .reads({"6.5", "six"}, {})
      .loses({{{"Orientation", 1.5}}, {{"Orientation", "6"}}});
  Property{"exif:FNumber", "{Exif}"}
      .says("9/5", {{"FNumber", 1.8}})
      .reads({"1.8"}, {{"FNumber", 1.8}})
      .reads({"9/0", "1e300/1e-300", "1/2/3"}, {})
      .says("6172839/500000", {{"FNumber", 12.345678}})
      .says("245850922/78256779", {{"FNumber", M_PI}})
      .says("2147483647/1", {{"FNumber", 2147483647}})
      .writes({{"FNumber", 1073741823.9}}, "1073741824/1")
      .writes({{"FNumber", 1e-12}}, "0/1")
      .loses({{{"FNumber", 1e300}}, {{"FNumber", "2"}}});
  Property{"exif:ExposureBiasValue", "{Exif}"}.says("-1/2", {{"ExposureBiasValue", -0.5}});
  Property{"exif:ISOSpeedRatings", "{Exif}"}
      .says("64", {{"ISOSpeedRatings", list(64)}})
      .reads({"\n<rdf:Seq> <rdf:li>64</rdf:li>\n<rdf:li>9</rdf:li> </rdf:Seq>"},
             {{"ISOSpeedRatings", list(64, 9)}})
      .reads({"x", "<rdf:Seq><rdf:li>64</rdf:li><rdf:li/></rdf:Seq>"}, {})
      .loses({{{"ISOSpeedRatings", list(100, 200)}}, {{"ISOSpeedRatings", list("64")}}});
  Property{"exifEX:LensSpecification", "{Exif}"}.reads(
      {"<rdf:Seq><rdf:li>24/1</rdf:li><rdf:li>4.5</rdf:li></rdf:Seq>"},
      {{"LensSpecification", list(24, 4.5)}});
  Property{"aux:LensInfo", "{ExifAux}"}
      .says("24/1 105/1 4/1 9/2", {{"LensInfo", list(24, 105, 4, 4.5)}})
      .reads({"24  4.5"}, {{"LensInfo", list(24, 4.5)}})
      .reads({"24/1 x"}, {})
      .loses({{{"LensInfo", list(35, "x")}}});
  const std::string german = "<rdf:li xml:lang='de'>See</rdf:li>";
  Property{"tiff:ImageDescription", "{TIFF}"}
      .says("A lake", {{"ImageDescription", "A lake"}})
      .reads({alternatives(german + "<rdf:li xml:lang='x-default'>A lake</rdf:li>" + german)},
             {{"ImageDescription", "A lake"}})
      .reads({alternatives(german + "<rdf:li>A lake</rdf:li>")}, {{"ImageDescription", "See"}});
  Property{"exif:GPSLatitude", "{GPS}"}
      .says("48,51.504000N", {{"Latitude", 48.8584}, {"LatitudeRef", "N"}})
      .reads({"70,29,60S", "70,30.0S"}, {{"Latitude", 70.5}, {"LatitudeRef", "S"}})
      .reads({"48.5", "180,0.1N", "4,5", "4,5N ?", "4;5N", "4,N", ",5N", "4,5,N"}, {})
      .writes({{"Latitude", 0.9999999999}, {"LatitudeRef", "S"}}, "1,0.000000S")
      .writes({{"Latitude", 180}, {"LatitudeRef", "N"}}, "180,0.000000N")
      .loses({{{"Latitude", 181}, {"LatitudeRef", "N"}},
              {{"Latitude", -1}, {"LatitudeRef", "N"}},
              {{"Latitude", 1}, {"LatitudeRef", "NE"}},
              {{"Latitude", "1"}, {"LatitudeRef", "N"}}});
  // Below sea level without a reference: EXIF alone can say it.
  Property{"exif:GPSAltitude", "{GPS}"}
      .says("1/2", {{"Altitude", 0.5}})
      .says("0/1", {{"Altitude", 0}})
      .loses({{{"Altitude", -0.5}}});
  Property{"exif:GPSAltitudeRef", "{GPS}"}
      .says("0", {{"AltitudeRef", 0}})
      .writes({{"AltitudeRef", 0}, {"Altitude", 0}}, "0")
      .loses({{{"AltitudeRef", 0}, {"Altitude", -5}}});
  // What reads as nothing is written all the same.
  Property{"photoshop:City", "{IPTC}"}.reads({"Ulm"}, {}).writes({{"City", "Bonn"}}, "Bonn");
  Property{"xmp:Rating", "{IPTC}"}.reads({"4"}, {}).writes({{"StarRating", 5}}, "5");
}

TEST(XmpTest, DatesAreReadAndWritten) {
  const Dictionary noon{{"DateTime", "2024:05:01 12:30:15"}};
  Property{"tiff:DateTime", "{TIFF}"}
      .says("2024-05-01T12:30:15", noon)
      .reads({"2024-05-01T12:30:15Z", "2024:05:01 12:30:15", "2024-05-01T12:30:15.31+02:00",
              "2024-05-01T12:30:15-0200"},
             noon)
      .reads({"2024-05-01T23:59"}, {{"DateTime", "2024:05:01 23:59:00"}})
      .reads({"2024-05-01", "2024-02-30T10:00", "2024-05:01T10:00", "24-05-01T10:00",
              "2024-05-01T24:00", "2024-05-01T12:60", "2024-05-01T12:30:60", "2024-05-01T12",
              "2024-05-01T12:3", "2024-05-01T12:30:", "2024-05-01T12:30+24:00",
              "2024-05-01T12:30+02:60", "2024-05-01T12:30+02", "2024-05-01T12:30:15x"},
             {})
      .loses({{{"DateTime", "soon"}}});
  const Dictionary night{{"TimeStamp", "23:30:15"}, {"DateStamp", "2024:04:30"}};
  Property{"exif:GPSTimeStamp", "{GPS}"}
      .says("2024-04-30T23:30:15Z", night)
      .reads({"2024-05-01T01:30:15+02:00", "2024-04-30T22:00:15-01:30", "2024-04-30T23:30:15"},
             night)
      .reads({"2024-04-30"}, {})
      .writes({{"TimeStamp", "2025:01:02 03:04:05"}}, "2025-01-02T03:04:05Z")
      .loses({{{"TimeStamp", "03:04:05"}}});
  const auto created = [](const char* day, const char* time) {
    return Dictionary{{"DateCreated", day}, {"TimeCreated", time}};
  };
  Property{"photoshop:DateCreated", "{IPTC}"}
      .writes(created("20250102", "030405+0200"), "2025-01-02T03:04:05+02:00")
      .writes(created("20250102", "030405-0930"), "2025-01-02T03:04:05-09:30")
      .writes(created("20250102", "030405+0000"), "2025-01-02T03:04:05Z")
      .writes(created("20250102", "0304"), "2025-01-02")
      .loses({created("202501021", ""), created("20250132", "")});
}

TEST(XmpTest, LeavesOutWhatIsNoPropertyOfThePicture) {
  // In a structure, under a qualifier, of another namespace, empty, or no description at all.
  EXPECT_EQ(read(packetOf(" own:Make='o' own:City='o'",
                          "<own:Parent><rdf:Description tiff:Make='inner'><tiff:Model>inner"
                          "</tiff:Model></rdf:Description></own:Parent><tiff:Model"
                          " rdf:parseType='Resource'><rdf:value>q</rdf:value></tiff:Model>"
                          "<tiff:Software/><exif:ISOSpeedRatings><rdf:Bag/></exif:ISOSpeedRatings>"
                          "</rdf:Description><own:Odd tiff:Make='odd'>"
                          "<tiff:Make>odd</tiff:Make></own:Odd><rdf:Description>")),
            Dictionary());
}

TEST(XmpTest, ReadsBothByteOrdersOfUtf16AndTrailingZeros) {
  const std::string packet = packetOf(" tiff:Make='\xC3\x84\xF0\x9F\x8C\x85'");
  const Dictionary expected{{"{TIFF}", Dictionary{{"Make", "\xC3\x84\xF0\x9F\x8C\x85"}}}};
  EXPECT_EQ(read(packet + std::string(3, '\0')), expected);
  for (const std::endian order : {std::endian::big, std::endian::little}) {
    for (const std::string& text : {packet, "\xEF\xBB\xBF" + packet}) {
      const std::vector<std::byte> encoded = utf16FromUtf8(text, order);
      EXPECT_EQ(read(encoded), expected);
      EXPECT_EQ(mergeXmp(encoded, expected, expected, {}), encoded);
      const Dictionary after{{"{TIFF}", Dictionary{{"Make", "\xF0\x9F\x8C\x84"}}}};
      EXPECT_EQ(read(mergeXmp(encoded, expected, after, {})), after);
    }
  }
}

/// What elements become beside `<own:y/>`.
void expectElements(const std::string& elements, const Dictionary& after,
                    const std::string& expected) {
  SCOPED_TRACE(elements);
  EXPECT_EQ(mergedAfterRead(packetOf("", elements + "<own:y/>"), after),
            packetOf("", expected + "<own:y/>"));
}

TEST(XmpTest, ChangesListsAndAlternativesInPlace) {
  const auto keywords = [](const std::string& items) {
    return "\n<dc:subject><rdf:Bag>" + items + "</rdf:Bag></dc:subject>";
  };
  const auto expectKeywords = [&](const std::string& items, const Array& words,
                                  const std::string& expected) {
    expectElements(keywords(items), {{"{IPTC}", Dictionary{{"Keywords", Value(words)}}}},
                   expected.empty() ? expected : keywords(expected));
  };
  expectKeywords("\n <rdf:li>a</rdf:li>\n <rdf:li>b</rdf:li>\n", {"c", "a", "d"},
                 "\n <rdf:li>c</rdf:li>\n <rdf:li>a</rdf:li>\n <rdf:li>d</rdf:li>\n");
  // What an item says of itself is not said of the others, however long it is.
  expectKeywords("<rdf:li xml:lang='de' >a</rdf:li ><!-- b --><rdf:li>b</rdf:li>", {"c", "a"},
                 "<rdf:li>c</rdf:li><rdf:li>a</rdf:li>");
  const std::string uri = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
  expectKeywords("<r:li xmlns:r='" + uri + "'>a</r:li>", {"b"},
                 "<rdf:li xmlns:rdf=\"" + uri + "\">b</rdf:li>");
  expectKeywords("<rdf:li>a</rdf:li>", {}, "");
  expectKeywords("<rdf:li>a</rdf:li>", {"b", 5}, "");
  expectKeywords("<rdf:li>a</rdf:li><rdf:li/>", {"c"}, "");
  expectKeywords("<rdf:li>a<own:x/></rdf:li>", {"c"}, "");
  // The default, and what repeats it under its language; translations stay.
  const auto title = [](const std::string& text) {
    return "<dc:title><rdf:Alt><rdf:li xml:lang='en'>" + text +
           "</rdf:li><rdf:li xml:lang='x-default'>" + text +
           "</rdf:li><rdf:li xml:lang='de'>U</rdf:li></rdf:Alt></dc:title>";
  };
  expectElements(title("T"), {{"{IPTC}", Dictionary{{"ObjectName", "V"}}}}, title("V"));
  const auto area = [](const std::string& items) {
    return "<exif:SubjectArea><rdf:Seq>" + items + "</rdf:Seq></exif:SubjectArea>";
  };
  expectElements(area("<rdf:li>1</rdf:li>"),
                 {{"{Exif}", Dictionary{{"SubjectArea", Value(Array{3, 4})}}}},
                 area("<rdf:li>3</rdf:li><rdf:li>4</rdf:li>"));
}

TEST(XmpTest, FollowsThePixelsAndTheTopLevelsOrientation) {
  expectElements("<tiff:Orientation>6</tiff:Orientation>",
                 {{"Orientation", 1}, {"{TIFF}", Dictionary{{"Orientation", 6}}}},
                 "<tiff:Orientation>1</tiff:Orientation>");
  const auto side = [](const std::string& x, const std::string& y) {
    return "<exif:PixelXDimension>" + x + "</exif:PixelXDimension><tiff:ImageLength>" + y +
           "</tiff:ImageLength>";
  };
  const std::string old = "<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType='Resource'/></rdf:Alt>";
  expectElements(side("100", "80") + old + "</xmp:Thumbnails>", {}, side("4032", "3024"));
  // Several at once, with the white space before them.
  const std::string packet =
      packetOf(" tiff:Make='A'\n  tiff:Model=\"B\" own:x='&#65;'",
               "<!-- c -->\n <tiff:Software>S</tiff:Software>\n <own:y>1</own:y>");
  EXPECT_EQ(mergedAfterRead(packet, {{"{TIFF}", Dictionary{{"Model", "C"}}}}),
            packetOf("\n  tiff:Model=\"C\" own:x='&#65;'", "<!-- c -->\n <own:y>1</own:y>"));
}

TEST(XmpTest, TouchesNothingThatTheCallerDidNotChange) {
  // EXIF disagrees with the packet: what counts is the change, not the difference.
  const std::string packet = packetOf(" tiff:Make='Xmp' tiff:Orientation='3'");
  const Dictionary before{{"Orientation", 6},
                          {"{TIFF}", Dictionary{{"Make", "Exif"}, {"Orientation", 6}}}};
  EXPECT_EQ(merged(packet, before, before), packet);
  // A removal counts even where the packet's own text cannot be read.
  const std::string position = packetOf(" exif:GPSLatitude='?' own:x='1'");
  EXPECT_EQ(merged(position, Dictionary{{"{GPS}", Dictionary{{"Latitude", 1.5}}}}, {}),
            packetOf(" own:x='1'"));
}

TEST(XmpTest, KeepsHostilePacketsUnreadAndUnchanged) {
  const std::string good = packetOf(" tiff:Make='A'"), property = "<tiff:Make>A</tiff:Make>";
  const auto nested = [&](int depth) {
    std::string begin, end;
    for (int i = 0; i < depth; ++i) {
      begin += "<own:a>";
      end += "</own:a>";
    }
    return packetOf("", begin + end + property);
  };
  const std::vector<std::string> packets = {
      good.substr(0, good.size() / 2),
      good.substr(0, good.size() - 30),
      packetOf(" tiff:Make='\xC3'"),
      packetOf(" tiff:Make='\xED\xA0\x80'"),
      nested(62),
      nested(100000),
      "<!DOCTYPE x [<!ENTITY a \"1\"><!ENTITY b \"&a;&a;&a;&a;\">]>" + good,
      "<!DOCTYPE x SYSTEM \"file:///etc/hostname\">" + good,
      packetOf(" tiff:Make='&b;'"),
      packetOf(" tiff:Make='A' tiff:Make='B'"),
      "http://ns.adobe.com/tiff/1.0/",
      "\xFE\xFF\0<\xD8\0"s,
      "\xFF\xFE<",
      "",
  };
  const Dictionary before{{"{TIFF}", Dictionary{{"Make", "A"}}}};
  EXPECT_EQ(read(nested(61)), before);
  for (const std::string& packet : packets) {
    SCOPED_TRACE(packet.substr(0, 60));
    EXPECT_EQ(read(packet), Dictionary());
    EXPECT_EQ(merged(packet, before, {}), packet);
  }
}

// EXIF, IPTC and XMP together.

constexpr PixelFacts pixels{.width = 64, .height = 48};

Data xmp(const std::string& attributes, std::string_view elements = {}) {
  return Data(bytesOf(packetOf(attributes, elements)));
}

Dictionary read(const MetadataBlocks& blocks) {
  Dictionary properties;
  readMetadata(blocks, properties);
  return properties;
}

TEST(MetadataTest, XmpFillsWhatIsMissingGroupsAsAWholeAndAChangeReachesEveryBlock) {
  const Dictionary own{{"{TIFF}", Dictionary{{"Make", "Exif"}}},
                       {"{GPS}", Dictionary{{"Latitude", 1.5}}},
                       {"{IPTC}", Dictionary{{"City", "Ulm"}}}};
  MetadataBlocks blocks = mergeMetadata(nullptr, own, pixels);
  blocks.xmp = xmp(
      " tiff:Make='Xmp' tiff:Model='M1' exif:GPSLatitude='10,30.0S' exif:GPSLongitude='20,0.0E'",
      "<tiff:Model>M2</tiff:Model><dc:creator><rdf:Seq><rdf:li>Ada</rdf:li></rdf:Seq></"
      "dc:creator>");
  Dictionary properties = read(blocks);
  EXPECT_EQ(properties, (Dictionary{{"{TIFF}", Dictionary{{"Make", "Exif"}, {"Model", "M1"}}},
                                    {"{GPS}", Dictionary{{"GPSVersion", Value(Array{2, 3, 0, 0})},
                                                         {"Latitude", 1.5},
                                                         {"Longitude", 20},
                                                         {"LongitudeRef", "E"}}},
                                    {"{IPTC}", Dictionary{{"City", "Ulm"}}}}));
  properties.subdictionary("{TIFF}").set("Make", "New");
  properties.subdictionary("{IPTC}").set("Byline", Value(Array{"Bo"}));
  ASSERT_TRUE(properties.remove("{GPS}"));
  MetadataBlocks saved = mergeMetadata(&blocks, properties, pixels);
  EXPECT_EQ(read(saved), properties);
  EXPECT_EQ(asText(saved.xmp).find("GPS"), std::string_view::npos);
  saved.exif = Data();
  EXPECT_EQ(*read(saved).get<Dictionary>("{TIFF}")->find("Make"), Value("New"));
  // XMP of which nothing is read follows too.
  blocks.xmp = xmp("", "<dc:creator>Ada</dc:creator>");
  saved = mergeMetadata(&blocks, properties, pixels);
  EXPECT_NE(asText(saved.xmp).find("<dc:creator>Bo</dc:creator>"), std::string_view::npos);
}

TEST(MetadataTest, WhatDoesNotFitIsLeftOutAndTheRestIsRead) {
  const std::string large(5000, 'x');
  const Dictionary given{{"{TIFF}", Dictionary{{"Make", large}, {"Software", "S"}}},
                         {"{IPTC}", Dictionary{{"City", large}, {"Headline", "H"}}}};
  MetadataBlocks blocks = mergeMetadata(nullptr, given, pixels);
  blocks.xmp = xmp(" tiff:Artist='" + large + "' tiff:Model='M'");
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
