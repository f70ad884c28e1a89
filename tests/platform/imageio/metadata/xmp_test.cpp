#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>
#include <framework_utility/platform/imageio/metadata/text_encoding.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_values.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

std::string packetOf(std::string_view attributes, std::string_view elements = {}) {
  std::string packet =
      "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
      "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Lumen 3.1\">\n"
      " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
      "  <rdf:Description rdf:about=\"\"\n"
      "    xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"\n"
      "    xmlns:exif=\"http://ns.adobe.com/exif/1.0/\"\n"
      "    xmlns:exifEX='http://cipa.jp/exif/1.0/'\n"
      "    xmlns:aux=\"http://ns.adobe.com/exif/1.0/aux/\"\n"
      "    xmlns:dc=\"http://purl.org/dc/elements/1.1/\"\n"
      "    xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\"\n"
      "    xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"\n"
      "    xmlns:own=\"http://example.org/own/1.0/\"";
  packet.append(attributes).append(">").append(elements);
  packet.append(
      "\n  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n      \n"
      "<?xpacket end=\"w\"?>");
  return packet;
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
  const std::vector<std::byte> bytes =
      mergeXmp(bytesOf(packet), before, after, {.width = 4032, .height = 3024});
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string mergedAfterRead(std::string_view packet, const Dictionary& after) {
  return merged(packet, read(packet), after);
}

TEST(XmpTest, ReadsAttributesAndElements) {
  const Dictionary expected{
      {"{TIFF}", Dictionary{{"Make", "L & M"},
                            {"Orientation", 6},
                            {"DateTime", "2024:05:01 12:30:15"},
                            {"ImageDescription", "A lake"}}},
      {"{Exif}", Dictionary{{"FNumber", 1.8},
                            {"ISOSpeedRatings", Value(Array{64})},
                            {"ExposureBiasValue", -0.5},
                            {"LensSpecification", Value(Array{24, 105, 4, 4})}}},
      {"{ExifAux}", Dictionary{{"LensInfo", Value(Array{24, 105, 4, 4})}}},
      {"{GPS}", Dictionary{{"Latitude", 48.8584},
                           {"LatitudeRef", "N"},
                           {"Longitude", 70.5},
                           {"LongitudeRef", "W"},
                           {"Altitude", 35.25},
                           {"AltitudeRef", 1},
                           {"TimeStamp", "23:30:15"},
                           {"DateStamp", "2024:04:30"}}}};
  const std::string attributes = packetOf(
      " tiff:Make='L &amp; M' tiff:Orientation=\"6\"\n tiff:DateTime = '2024-05-01T12:30:15+02:00'"
      " tiff:ImageDescription='A lake' exif:FNumber='9/5' exif:ISOSpeedRatings='64'"
      " exif:ExposureBiasValue='-1/2' aux:LensInfo='24/1 105/1 4/1 4/1'"
      " exif:GPSLatitude='48,51.504N' exif:GPSLongitude='70,29,60W' exif:GPSAltitude='141/4'"
      " exif:GPSAltitudeRef='1' exif:GPSTimeStamp='2024-05-01T01:30:15+02:00' photoshop:City='Ulm'"
      " photoshop:DateCreated='2024-05-01T12:30:15.31' xmp:Rating='4'",
      "<exifEX:LensSpecification><rdf:Seq><rdf:li>24/1</rdf:li><rdf:li>105/1</rdf:li>"
      "<rdf:li>4</rdf:li><rdf:li>4</rdf:li></rdf:Seq></exifEX:LensSpecification>"
      "<dc:creator><rdf:Seq><rdf:li>Ada</rdf:li><rdf:li>Bo</rdf:li></rdf:Seq></dc:creator>"
      "<dc:description><rdf:Alt><rdf:li xml:lang='de'>Abend</rdf:li>"
      "<rdf:li xml:lang='x-default'>Evening</rdf:li></rdf:Alt></dc:description>");
  const std::string elements = packetOf(
      "",
      "<tiff:Make>L <![CDATA[&]]> M</tiff:Make><tiff:Orientation> 6\n</tiff:Orientation>"
      "<tiff:DateTime>2024:05:01 12:30:15</tiff:DateTime>"
      "<tiff:ImageDescription><rdf:Alt><rdf:li xml:lang='x-default'>A lake</rdf:li></rdf:Alt>"
      "</tiff:ImageDescription><exif:FNumber>1.8</exif:FNumber>"
      "<exif:ISOSpeedRatings>\n<rdf:Seq> <rdf:li>64</rdf:li> </rdf:Seq></exif:ISOSpeedRatings>"
      "<exif:ExposureBiasValue>-1/2</exif:ExposureBiasValue>"
      "<aux:LensInfo>24/1 105/1 4/1 4/1</aux:LensInfo>"
      "<exifEX:LensSpecification><rdf:Seq><rdf:li>24/1</rdf:li><rdf:li>105/1</rdf:li>"
      "<rdf:li>4/1</rdf:li><rdf:li>4/1</rdf:li></rdf:Seq></exifEX:LensSpecification>"
      "<exif:GPSLatitude>48,51.504N</exif:GPSLatitude>"
      "<exif:GPSLongitude>70,30.0W</exif:GPSLongitude><exif:GPSAltitude>141/4</exif:GPSAltitude>"
      "<exif:GPSAltitudeRef>1</exif:GPSAltitudeRef>"
      "<exif:GPSTimeStamp>2024-04-30T23:30:15Z</exif:GPSTimeStamp>"
      "<photoshop:City>Ulm</photoshop:City>"
      "<photoshop:DateCreated>2024-05-01T12:30:15</photoshop:DateCreated>"
      "<xmp:Rating>4</xmp:Rating>"
      "<dc:creator><rdf:Seq><rdf:li>Ada</rdf:li><rdf:li>Bo</rdf:li></rdf:Seq></dc:creator>"
      "<dc:description>Evening</dc:description>");
  EXPECT_EQ(read(attributes), expected);
  EXPECT_EQ(read(elements), expected);
}

TEST(XmpTest, FillsOnlyWhatIsMissingAndGroupsAsAWhole) {
  const std::string packet = packetOf(
      " tiff:Make='Xmp' tiff:Model='M1' exif:GPSLatitude='10,30.0S' exif:GPSLongitude='20,0.0E'"
      " xmp:CreatorTool='Basic' xmp:CreateDate='2024-05-01T12:30'"
      " photoshop:DateCreated='2024-05-01T12:30'");
  const Dictionary own{{"{TIFF}", Dictionary{{"Make", "Exif"}}},
                       {"{GPS}", Dictionary{{"Latitude", 1.5}}},
                       {"{IPTC}", Dictionary{{"TimeCreated", "000000"}}}};
  const Dictionary expected{
      {"{TIFF}", Dictionary{{"Make", "Exif"}, {"Model", "M1"}}},
      {"{GPS}", Dictionary{{"Latitude", 1.5}, {"Longitude", 20}, {"LongitudeRef", "E"}}},
      {"{IPTC}", Dictionary{{"TimeCreated", "000000"}}}};
  EXPECT_EQ(read(packet, own), expected);
}

TEST(XmpTest, LeavesOutWhatIsNoPropertyOfThePicture) {
  // In a structure, under a qualifier, of another namespace, empty, or of another form.
  EXPECT_EQ(read(packetOf(
                " own:Make='o' exif:FNumber='9/0' exif:ISOSpeedRatings='x' tiff:Orientation='6.5'"
                " exif:GPSLatitude='48.5' exif:GPSLongitude='181,0.0E' tiff:Artist=''"
                " tiff:DateTime='2024-02-30T10:00:00' exif:DateTimeOriginal='2024-05-01'",
                "<own:Parent><rdf:Description tiff:Make='inner'><tiff:Model>inner</tiff:Model>"
                "</rdf:Description></own:Parent><tiff:Model rdf:parseType='Resource'>"
                "<rdf:value>q</rdf:value></tiff:Model><tiff:Software/>"
                "<dc:subject><rdf:Bag/></dc:subject>")),
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

TEST(XmpTest, ChangesInPlace) {
  struct Case {
    std::string attributes, elements;
    Dictionary after;
    std::string newAttributes, newElements;
  };
  const auto iptc = [](const char* key, Value value) {
    return Dictionary{{"{IPTC}", Dictionary{{key, std::move(value)}}}};
  };
  const std::vector<Case> cases = {
      {" tiff:Make='A' own:x='&#65;' tiff:Model=\"B\"", "<!-- c --><own:y/>",
       Dictionary{{"{TIFF}", Dictionary{{"Make", "A'<\n"}, {"Model", "B"}}}},
       " tiff:Make='A&apos;&lt;&#10;' own:x='&#65;' tiff:Model=\"B\"", "<!-- c --><own:y/>"},
      {" tiff:Make='A'\n  tiff:Model='B'", "\n <tiff:Software>S</tiff:Software>\n <own:y>1</own:y>",
       Dictionary{}, "", "\n <own:y>1</own:y>"},
      {"", "<tiff:Software>S</tiff:Software>",
       Dictionary{{"{TIFF}", Dictionary{{"Software", "T & U"}}}}, "",
       "<tiff:Software>T &amp; U</tiff:Software>"},
      // The orientation at the top level is the one that counts.
      {" tiff:Orientation='6'", "",
       Dictionary{{"Orientation", 1}, {"{TIFF}", Dictionary{{"Orientation", 6}}}},
       " tiff:Orientation='1'", ""},
      {" exif:FNumber='9/5' exif:DateTimeOriginal='2024-05-01T12:30:15.31+02:00'", "",
       Dictionary{
           {"{Exif}", Dictionary{{"FNumber", 2.2}, {"DateTimeOriginal", "2025:01:02 03:04:05"}}}},
       " exif:FNumber='11/5' exif:DateTimeOriginal='2025-01-02T03:04:05'", ""},
      {" exif:GPSLatitude='48,51.504N' exif:GPSTimeStamp='2024-04-30T23:30:15Z'", "",
       Dictionary{{"{GPS}", Dictionary{{"Latitude", 0.9999999999},
                                       {"LatitudeRef", "S"},
                                       {"TimeStamp", "2025:01:02 03:04:05"}}}},
       " exif:GPSLatitude='1,0.000000S' exif:GPSTimeStamp='2025-01-02T03:04:05Z'", ""},
      // Below sea level without a reference: EXIF alone can say it.
      {" exif:GPSAltitude='10/1' exif:GPSAltitudeRef='0'", "",
       Dictionary{{"{GPS}", Dictionary{{"Altitude", -12.5}, {"AltitudeRef", 0}}}}, "", ""},
      {" exif:PixelXDimension='100' tiff:ImageLength='80'",
       "<tiff:ImageWidth>100</tiff:ImageWidth>"
       "<xmp:Thumbnails><rdf:Alt><rdf:li rdf:parseType='Resource'/></rdf:Alt></xmp:Thumbnails>",
       Dictionary{}, " exif:PixelXDimension='4032' tiff:ImageLength='3024'",
       "<tiff:ImageWidth>4032</tiff:ImageWidth>"},
      {"",
       "<dc:subject><rdf:Bag>\n <rdf:li>a</rdf:li>\n <rdf:li>b</rdf:li>\n</rdf:Bag></dc:subject>",
       iptc("Keywords", Value(Array{"c", "a", "d"})), "",
       "<dc:subject><rdf:Bag>\n <rdf:li>c</rdf:li>\n <rdf:li>a</rdf:li>\n <rdf:li>d</rdf:li>\n"
       "</rdf:Bag></dc:subject>"},
      // What an item says of itself is not said of the others, however long it is.
      {"",
       "<dc:subject><rdf:Bag><rdf:li xml:lang='de' >a</rdf:li ><!-- b "
       "--><rdf:li>b</rdf:li></rdf:Bag>"
       "</dc:subject>",
       iptc("Keywords", Value(Array{"c", "a"})), "",
       "<dc:subject><rdf:Bag><rdf:li>c</rdf:li><rdf:li>a</rdf:li></rdf:Bag></dc:subject>"},
      {"",
       "<dc:subject><rdf:Bag><r:li xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>a</r:li>"
       "</rdf:Bag></dc:subject>",
       iptc("Keywords", Value(Array{"b"})), "",
       "<dc:subject><rdf:Bag><rdf:li xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">b"
       "</rdf:li></rdf:Bag></dc:subject>"},
      {"", "\n<dc:subject><rdf:Bag><rdf:li>a</rdf:li></rdf:Bag></dc:subject>",
       iptc("Keywords", Value(Array{})), "", ""},
      {"",
       "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>T</rdf:li><rdf:li xml:lang='en'>T</rdf:li>"
       "<rdf:li xml:lang='de'>U</rdf:li></rdf:Alt></dc:title>",
       iptc("ObjectName", "V"), "",
       "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>V</rdf:li><rdf:li xml:lang='en'>V</rdf:li>"
       "<rdf:li xml:lang='de'>U</rdf:li></rdf:Alt></dc:title>"},
      // A value that the property cannot say takes the property away.
      {" tiff:Make='A'", "", Dictionary{{"{TIFF}", Dictionary{{"Make", 7}}}}, "", ""},
      {" photoshop:DateCreated='2024-05-01'", "",
       Dictionary{
           {"{IPTC}", Dictionary{{"DateCreated", "20250102"}, {"TimeCreated", "030405+0200"}}}},
       " photoshop:DateCreated='2025-01-02T03:04:05+02:00'", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.attributes + c.elements);
    EXPECT_EQ(mergedAfterRead(packetOf(c.attributes, c.elements), c.after),
              packetOf(c.newAttributes, c.newElements));
  }
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
  const std::string good = packetOf(" tiff:Make='A'");
  std::string nested;
  for (int i = 0; i < 100000; ++i) nested += "<own:a>";
  const std::vector<std::string> packets = {
      good.substr(0, good.size() / 2),
      good.substr(0, good.size() - 30),
      packetOf(" tiff:Make='\xC3'"),
      packetOf(" tiff:Make='\xED\xA0\x80'"),
      packetOf("", nested),
      packetOf("", nested + "<tiff:Make>A</tiff:Make>"),
      "<!DOCTYPE x [<!ENTITY a \"1\"><!ENTITY b \"&a;&a;&a;&a;\">]>" + good,
      "<!DOCTYPE x SYSTEM \"file:///etc/hostname\">" + good,
      packetOf(" tiff:Make='&b;'"),
      packetOf(" tiff:Make='A' tiff:Make='B'"),
      "http://ns.adobe.com/tiff/1.0/",
      std::string("\xFE\xFF\0<\xD8\0", 6),
      std::string("\xFF\xFE<", 3),
      "",
  };
  const Dictionary before{{"{TIFF}", Dictionary{{"Make", "A"}}}};
  for (const std::string& packet : packets) {
    SCOPED_TRACE(packet.substr(0, 60));
    EXPECT_EQ(read(packet), Dictionary());
    EXPECT_EQ(merged(packet, before, {}), packet);
  }
}

TEST(XmpTest, WrittenTextsReadBack) {
  const std::string packet = packetOf(" tiff:Make='A'", "<tiff:Model>B</tiff:Model>");
  for (const std::string text : {"<&>\"'", "]]>", " a\t\n\r ", "\xE6\xB9\x96 \xF0\x9F\x8C\x85"}) {
    const Dictionary after{{"{TIFF}", Dictionary{{"Make", text}, {"Model", text}}}};
    EXPECT_EQ(read(mergedAfterRead(packet, after)), after);
  }
  // Bytes that are no text must not break the packet.
  const Dictionary broken{{"{TIFF}", Dictionary{{"Make",
                                                 "a\x01\xFF"
                                                 "b\xEF\xBF\xBF"}}}};
  const Dictionary repaired{{"{TIFF}", Dictionary{{"Make",
                                                   "a\xEF\xBF\xBD"
                                                   "b"}}}};
  EXPECT_EQ(read(mergedAfterRead(packet, broken)), repaired);
}

TEST(XmpValuesTest, FractionsAreTheBest) {
  struct Case {
    double number;
    std::optional<std::string> text;
  };
  for (const Case& c : {Case{1.8, "9/5"},
                        {-0.5, "-1/2"},
                        {0, "0/1"},
                        {1.0 / 60, "1/60"},
                        {64, "64/1"},
                        {3.1415926535897931, "245850922/78256779"},
                        {1e300, std::nullopt},
                        {std::nan(""), std::nullopt},
                        {1e-300, "0/1"}}) {
    EXPECT_EQ(xmpRational(c.number), c.text) << c.number;
    if (c.text) {
      EXPECT_NEAR(parseXmpRational(*c.text).value_or(99), c.number, 1e-9);
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
