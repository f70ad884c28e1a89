// Lists, archives and metadata whose parts share bytes, or are packed, so that little stands for
// much.

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <tests/amplification/expense.h>
#include <tests/platform/foundation/property_lists/binary_list.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/platform/imageio/formats/png_file.h>
#include <tests/platform/imageio/metadata/exif_block.h>
#include <tests/support/archives.h>
#include <tools/kvtool/console/json.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <numeric>

namespace FrameworkUtility {
namespace {

using namespace testing;
using detail::asText;
using detail::ByteWriter;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

std::string repeated(std::size_t times, std::string_view text) {
  std::string all;
  all.reserve(times * text.size());
  while (times-- > 0) all += text;
  return all;
}

// A value counts 8 of 16 times the size and takes a hundred bytes with what allocators add.
TEST(ArchiveAmplificationTest, ListsTakeMemoryInProportionToTheirSize) {
  const std::string padding = "\x4F\x12" + bigEndian(mebibyte, 4) + std::string(mebibyte, 'x');
  const auto array = [](std::size_t count, std::uint64_t element) {
    return "\xAF\x12" + bigEndian(count, 4) + repeated(count, bigEndian(element, 2));
  };
  const std::string text = "\x5F\x11" + bigEndian(5'000, 2) + std::string(5'000, 'x');
  const std::pair<const char*, std::string> lists[] = {
      {"arrays of arrays",
       BinaryList{{array(1'000, 1), array(2'100, 2), "\x10\1", padding}, 2}.bytes()},
      {"one array too many",
       BinaryList{{array(9'000, 1), array(9'000, 2), "\x10\1", padding}, 2}.bytes()},
      {"one text again and again", BinaryList{{array(3'500, 1), text, padding}, 2}.bytes()},
      {"XML", "<plist><array>" + repeated(mebibyte / 7, "<true/>") + "</array></plist>"},
      {"XML of texts",
       "<plist><array>" + repeated(mebibyte / 18, "<string>a</string>") + "</array></plist>"},
  };
  for (const auto& [name, list] : lists) {
    const Expense expense = expenseOf([] {},
                                      [bytes = std::as_bytes(std::span(list))] {
                                        static_cast<void>(propertyListWithData(bytes));
                                      });
    EXPECT_TRUE(expense.isDone) << name;
    EXPECT_LE(expense.memory, mebibyte + 200 * list.size()) << name;
  }
}

/// An array of `count` references to one object with `parts` parts.
Data archiveOfReferences(std::size_t count, std::size_t parts, const char* className) {
  Dictionary object;
  object.reserve(parts + 1);
  for (std::size_t i = 0; i < parts; ++i) object.append("key " + std::to_string(i), true);
  object.append("$class", reference(3));
  return archiveOf({Dictionary{{"NS.objects", references(std::vector<std::uint64_t>(count, 2))},
                               {"$class", reference(4)}},
                    Value(std::move(object)), classRecord(className), classRecord("NSArray")});
}

// Each of these looks at 10^10 parts and more, unless what is looked at counts.
TEST(ArchiveAmplificationTest, ArchivesAreRefusedSoon) {
  const Data archives[] = {archiveOfReferences(100'000, 100'000, "NSDate"),
                           archiveOfReferences(100'000, 100'000, "NSDictionary")};
  for (const Data& archive : archives) {
    EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClasses(
        {"NSArray", "NSDate", "NSDictionary", "NSURL"}, archive));
  }
}

/// A directory of records that all have this type and are all `value`, which stands behind it.
std::string directoryOf(const std::vector<std::size_t>& tags, std::uint16_t type, std::size_t start,
                        std::string_view value) {
  ByteWriter bytes;
  bytes.putNumber(tags.size(), 2);
  for (const std::size_t tag : tags) {
    bytes.putNumber(tag, 2).putNumber(type, 2).putNumber(value.size(), 4);
    bytes.putNumber(start + 2 + 12 * tags.size() + 4, 4);
  }
  return std::string(asText(bytes.putNumber(0, 4).put(value)));
}

/// An EXIF block with a maker note of 256 records that are all `value`.
std::string exifWithNote(std::uint16_t type, std::string_view value) {
  std::vector<std::size_t> tags(256);
  std::iota(tags.begin(), tags.end(), 0);
  TestBlock block;
  block.exif = {{0x927C, opaque("Apple iOS\0\0\1MM"s + directoryOf(tags, type, 14, value))}};
  return std::string(asText(block.bytes()));
}

/// One whose known texts are all `value`.
std::string exifWithTexts(std::string_view value) {
  const std::vector<std::size_t> tags{0x10D, 0x10E, 0x10F, 0x110, 0x131,
                                      0x132, 0x13B, 0x13C, 0x8298};
  return "MM\0*\0\0\0\x8"s + directoryOf(tags, 2, 8, value);
}

Data jpegWith(const std::string& segments) { return dataOf(jpegHeader(segments + jpegFrame())); }

/// Segments with this signature that hold `bytes` together; those of a profile are numbered.
std::string segments(unsigned marker, const std::string& signature, std::string_view bytes,
                     bool areNumbered = false) {
  constexpr std::size_t most = 65'000;
  const std::size_t count = (bytes.size() + most - 1) / most;
  std::string all;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = bigEndian(i + 1, 1) + bigEndian(count, 1);
    all += jpegSegment(marker, signature + (areNumbered ? number : "") +
                                   std::string(bytes.substr(i * most, most)));
  }
  return all;
}

std::string iptc(std::string_view record) {
  return ("8BIM\4\4\0\0"s + bigEndian(record.size(), 4)).append(record);
}

Data pngWith(const char* type, std::string_view beginning, std::string_view packed) {
  const testing::Bytes stream = deflated(packed);
  std::string chunk(beginning);
  chunk.append(reinterpret_cast<const char*>(stream.data()), stream.size());
  return PngFile().header(1, 1, 8, 0).chunk(type, chunk).pixelAndEnd().data();
}

Data pngWithExif(std::string_view block) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text = "\nexif\n" + std::to_string(block.size()) + "\n";
  for (const char c : block) (text += digits[c >> 4 & 15]) += digits[c & 15];
  return pngWith("zTXt", "Raw profile type exif\0\0"s, text);
}

Data pngWithXmp(const std::string& attributes, const std::string& elements) {
  const std::string packet =
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description"
      " xmlns:tiff='http://ns.adobe.com/tiff/1.0/' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
      " xmlns:dc='http://purl.org/dc/elements/1.1/'" +
      attributes + ">" + elements + "</rdf:Description></rdf:RDF>";
  return pngWith("iTXt", "XML:com.adobe.xmp\0\1\0\0\0"s, packet);
}

std::string profileNamed(const std::string& name) {
  const std::string tag = "desc\0\0\0\0"s + bigEndian(name.size(), 4) + name;
  std::string profile(128, '\0');
  profile.replace(36, 4, "acsp");
  return profile + bigEndian(1, 4) + "desc" + bigEndian(144, 4) + bigEndian(tag.size(), 4) + tag;
}

/// A list of 56 KB that stands for 110,000 values.
std::string sharedList() {
  const std::string number = "\x10\1";
  return BinaryList{{"\xAF\x11" + bigEndian(250, 2) + repeated(250, bigEndian(1, 2)),
                     "\xAF\x11" + bigEndian(440, 2) + repeated(440, bigEndian(2, 2)), number,
                     "\x4F\x11" + bigEndian(54'000, 2) + std::string(54'000, 'x')},
                    2}
      .bytes();
}

const std::string latin1 = "\xE9";
const std::string photoshop = "Photoshop 3.0\0"s;

/// Calls `visit` with the name and the bytes of each, one after the other: they are large.
void forEachFile(const std::function<void(const char*, const Data&)>& visit) {
  const auto exifSegment = [](const std::string& exif) {
    return jpegWith(jpegSegment(0xE1, "Exif\0\0"s + exif));
  };
  const auto list = [](const std::string& all) { return "<plist>" + all + "</plist>"; };
  const auto make = [](const std::string& text) { return "<tiff:Make>" + text + "</tiff:Make>"; };
  visit("maker-note records on one property list", exifSegment(exifWithNote(7, sharedList())));
  visit("maker-note records on one list in XML that is a comment",
        pngWithExif(exifWithNote(7, list("<!--" + std::string(7 * mebibyte, ' ') + "--><true/>"))));
  visit("maker-note records on one long text",
        pngWithExif(exifWithNote(2, std::string(7 * mebibyte, 'x'))));
  visit("tags on one text of Latin-1", pngWithExif(exifWithTexts(repeated(7 * mebibyte, latin1))));
  visit("tags on one text that just fits", pngWithExif(exifWithTexts(repeated(900'000, latin1))));
  visit("empty keywords",
        jpegWith(segments(0xED, photoshop, iptc(repeated(65'536, "\x1C\2\x19\0\0"s)))));
  const std::string keyword = "\x1C\2\x19\x7F\xFF" + repeated(0x7FFF, latin1);
  visit("keywords of Latin-1", jpegWith(segments(0xED, photoshop, iptc(repeated(500, keyword)))));
  visit("a Latin-1 text in a PNG",
        pngWith("zTXt", "Comment\0\0"s, repeated(15 * mebibyte, latin1)));
  visit("XMP with a long attribute",
        pngWithXmp(" tiff:Make='" + std::string(7 * mebibyte, 'x') + "'", ""));
  visit("XMP with a text that just fits", pngWithXmp("", make(std::string(7'000'000, 'x'))));
  visit("XMP with empty items",
        pngWithXmp("", "<exif:ISOSpeedRatings><rdf:Seq>" + repeated(65'000, "<rdf:li/>") +
                           "</rdf:Seq></exif:ISOSpeedRatings>"));
  visit("XMP with a long tag of its first keyword",
        pngWithXmp("", "<dc:subject><rdf:Bag><rdf:li a='" + std::string(7 * mebibyte, 'x') +
                           "'>a</rdf:li></rdf:Bag></dc:subject>"));
  visit("a profile's long name",
        jpegWith(
            segments(0xE2, "ICC_PROFILE\0"s, profileNamed(std::string(15 * mebibyte, 'x')), true)));
  visit("extended XMP", jpegWith(jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0<x/>"s) +
                                 segments(0xE1, "http://ns.adobe.com/xmp/extension/\0"s,
                                          std::string(33 * mebibyte, 'x'))));
  visit("image resources", jpegWith(segments(0xED, photoshop, std::string(17 * mebibyte, 'x'))));
  visit("small segments far apart",
        jpegWith(repeated(4'900, jpegSegment(0xED, photoshop + "x") +
                                     jpegSegment(0xFE, std::string(5'000, ' ')))));
}

std::optional<CGImageSource> source;
Dictionary properties;
std::shared_ptr<const MetadataBlocks> blocks;

void readProperties(const Data& file) {
  source = CGImageSource::createWithData(file);
  properties = source->propertiesAtIndex(0).value();
  blocks = source->metadataBlocksAtIndex(0);
}

void saveAsPng(const CGImage& image) {
  properties.subdictionary("{IPTC}").set("Keywords", Value(Array(50, Value("lake"))));
  const auto destination = CGImageDestination::createInMemory(UTTypePNG.identifier(), 1);
  destination->addImage(image, properties, blocks);
  if (!destination->finalize()) std::abort();
}

TEST(MetadataAmplificationTest, ReadingTakesAtMost64MebibytesBeyondTheFileSavingAndPrinting128) {
  const CGImage image = quarters(2, 2);
  const auto nowhere = [](std::string_view) {};
  forEachFile([&](const char* name, const Data& file) {
    const auto read = [&] { readProperties(file); };
    const Expense reading = expenseOf([] {}, read);
    EXPECT_TRUE(reading.isDone) << name;
    EXPECT_LE(reading.memory, 64 * mebibyte) << name;
    const Expense saving = expenseOf(read, [&] {
      kvtool::writeJson(properties, nowhere);
      saveAsPng(image);
    });
    EXPECT_TRUE(saving.isDone) << name;
    EXPECT_LE(saving.memory, 128 * mebibyte) << name;
  });
}

TEST(MetadataAmplificationTest, ASaveKeepsWhatWasLeftOut) {
  int cases = 0;
  forEachFile([&](const char* name, const Data& file) {
    SCOPED_TRACE(name);
    readProperties(file);
    if (!properties.find(kKvImagePropertyMetadataLeftOut) || !blocks) return;
    ++cases;
    const auto destination = CGImageDestination::createInMemory(*source->type(), 1);
    destination->addImage(quarters(1, 1), properties, blocks);
    ASSERT_TRUE(destination->finalize());
    const auto again = CGImageSource::createWithData(*destination->data());
    const auto kept = again->metadataBlocksAtIndex(0);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->xmp, blocks->xmp);
    EXPECT_EQ(kept->imageResources, blocks->imageResources);
  });
  EXPECT_GE(cases, 8);
}

}  // namespace
}  // namespace FrameworkUtility
