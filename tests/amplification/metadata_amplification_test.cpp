// Files whose metadata shares bytes, or is packed, so that little stands for much.

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <tests/platform/foundation/property_lists/binary_list.h>
#include <tests/platform/imageio/formats/jpeg_file.h>
#include <tests/platform/imageio/formats/png_file.h>
#include <tests/support/expense.h>
#include <tools/kvtool/console/json.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace testing;
using namespace std::string_literals;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

std::string repeated(std::size_t times, std::string_view text) {
  std::string all;
  all.reserve(times * text.size());
  while (times-- > 0) all += text;
  return all;
}

struct Record {
  std::uint64_t tag, type, count, offset;
};

std::string directory(const std::vector<Record>& records) {
  std::string bytes = bigEndian(records.size(), 2);
  for (const auto& [tag, type, count, offset] : records) {
    bytes += bigEndian(tag, 2) + bigEndian(type, 2) + bigEndian(count, 4) + bigEndian(offset, 4);
  }
  return bytes + bigEndian(0, 4);
}

/// An EXIF block with a maker note of 256 records that are all `value`.
std::string exifWithNote(std::uint64_t type, std::string_view value) {
  constexpr std::size_t count = 256, start = 14;
  std::vector<Record> records;
  for (std::size_t tag = 0; tag < count; ++tag) {
    records.push_back({tag, type, value.size(), start + 2 + 12 * count + 4});
  }
  std::string note = "Apple iOS\0\0\1MM"s + directory(records);
  note += value;
  return "MM\0*\0\0\0\x8"s + directory({{0x8769, 4, 1, 26}}) +
         directory({{0x927C, 7, note.size(), 44}}) + note;
}

/// One whose known texts are all `value`.
std::string exifWithTexts(std::string_view value) {
  std::vector<Record> records;
  for (const std::uint64_t tag :
       {0x10Du, 0x10Eu, 0x10Fu, 0x110u, 0x131u, 0x132u, 0x13Bu, 0x13Cu, 0x8298u}) {
    records.push_back({tag, 2, value.size(), 8 + 2 + 9 * 12 + 4});
  }
  return ("MM\0*\0\0\0\x8"s + directory(records)).append(value);
}

Data jpegWith(const std::string& segments) { return dataOf(jpegHeader(segments + jpegFrame())); }

/// Segments with this signature that hold `bytes` together.
std::string segments(unsigned marker, const std::string& signature, std::string_view bytes) {
  constexpr std::size_t most = 65'000;
  std::string all;
  for (std::size_t at = 0; at < bytes.size(); at += most) {
    all += jpegSegment(marker, signature + std::string(bytes.substr(at, most)));
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

std::string profileSegments(std::string_view profile) {
  constexpr std::size_t most = 65'000;
  const std::size_t count = (profile.size() + most - 1) / most;
  std::string all;
  for (std::size_t i = 0; i < count; ++i) {
    all += jpegSegment(0xE2, "ICC_PROFILE\0"s + bigEndian(i + 1, 1) + bigEndian(count, 1) +
                                 std::string(profile.substr(i * most, most)));
  }
  return all;
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

struct File {
  const char* name;
  std::function<Data()> data;
};

const std::string latin1 = "\xE9";

const std::vector<File>& files() {
  static const std::vector<File> all{
      {"maker-note records on one property list",
       [] { return jpegWith(jpegSegment(0xE1, "Exif\0\0"s + exifWithNote(7, sharedList()))); }},
      {"maker-note records on one list in XML",
       [] {
         return jpegWith(jpegSegment(
             0xE1, "Exif\0\0"s + exifWithNote(7, "<plist><array>" + repeated(7'000, "<true/>") +
                                                     "</array></plist>")));
       }},
      {"maker-note records on one list in XML that is a comment",
       [] {
         return pngWithExif(exifWithNote(
             7, "<plist><!--" + std::string(7 * mebibyte, ' ') + "--><true/></plist>"));
       }},
      {"maker-note records on one long text",
       [] { return pngWithExif(exifWithNote(2, std::string(7 * mebibyte, 'x'))); }},
      {"tags on one text of Latin-1",
       [] { return pngWithExif(exifWithTexts(repeated(7 * mebibyte, latin1))); }},
      {"tags on one text that just fits",
       [] { return pngWithExif(exifWithTexts(repeated(900'000, latin1))); }},
      {"empty keywords",
       [] {
         return jpegWith(
             segments(0xED, "Photoshop 3.0\0"s, iptc(repeated(65'536, "\x1C\2\x19\0\0"s))));
       }},
      {"keywords of Latin-1",
       [] {
         const std::string keyword = "\x1C\2\x19\x7F\xFF" + repeated(0x7FFF, latin1);
         return jpegWith(segments(0xED, "Photoshop 3.0\0"s, iptc(repeated(500, keyword))));
       }},
      {"a Latin-1 text in a PNG",
       [] { return pngWith("zTXt", "Comment\0\0"s, repeated(15 * mebibyte, latin1)); }},
      {"XMP that is too large",
       [] {
         return pngWithXmp("", "<tiff:Make>" + std::string(15 * mebibyte, 'x') + "</tiff:Make>");
       }},
      {"XMP with a long text",
       [] {
         return pngWithXmp("", "<tiff:Make>" + std::string(7 * mebibyte, 'x') + "</tiff:Make>");
       }},
      {"XMP with a long attribute",
       [] { return pngWithXmp(" tiff:Make='" + std::string(7 * mebibyte, 'x') + "'", ""); }},
      {"XMP with a text that just fits",
       [] { return pngWithXmp("", "<tiff:Make>" + std::string(7'000'000, 'x') + "</tiff:Make>"); }},
      {"XMP with empty items",
       [] {
         return pngWithXmp("", "<exif:ISOSpeedRatings><rdf:Seq>" + repeated(65'000, "<rdf:li/>") +
                                   "</rdf:Seq></exif:ISOSpeedRatings>");
       }},
      {"XMP with a long tag of its first keyword",
       [] {
         return pngWithXmp("", "<dc:subject><rdf:Bag><rdf:li a='" + std::string(7 * mebibyte, 'x') +
                                   "'>a</rdf:li></rdf:Bag></dc:subject>");
       }},
      {"a profile's long name",
       [] { return jpegWith(profileSegments(profileNamed(std::string(15 * mebibyte, 'x')))); }},
      {"extended XMP",
       [] {
         return jpegWith(jpegSegment(0xE1, "http://ns.adobe.com/xap/1.0/\0<x/>"s) +
                         segments(0xE1, "http://ns.adobe.com/xmp/extension/\0"s,
                                  std::string(33 * mebibyte, 'x')));
       }},
      {"image resources",
       [] {
         return jpegWith(segments(0xED, "Photoshop 3.0\0"s, std::string(17 * mebibyte, 'x')));
       }},
      {"small segments far apart",
       [] {
         return jpegWith(repeated(4'900, jpegSegment(0xED, "Photoshop 3.0\0x"s) +
                                             jpegSegment(0xFE, std::string(5'000, ' '))));
       }},
  };
  return all;
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

TEST(MetadataAmplificationTest, ReadingTakesAtMost64MebibytesBeyondTheFile) {
  for (const auto& [name, make] : files()) {
    const Data file = make();
    const Expense reading = expenseOf([] {}, [&] { readProperties(file); });
    EXPECT_TRUE(reading.isDone) << name;
    EXPECT_LE(reading.memory, 64 * mebibyte) << name;
  }
}

TEST(MetadataAmplificationTest, SavingAndPrintingTakeAtMost128Mebibytes) {
  const CGImage image = quarters(2, 2);
  const auto nowhere = [](std::string_view) {};
  for (const auto& [name, make] : files()) {
    const Data file = make();
    const Expense expense = expenseOf([&] { readProperties(file); },
                                      [&] {
                                        kvtool::writeJson(properties, nowhere);
                                        saveAsPng(image);
                                      });
    EXPECT_TRUE(expense.isDone) << name;
    EXPECT_LE(expense.memory, 128 * mebibyte) << name;
  }
}

TEST(MetadataAmplificationTest, ASaveKeepsWhatWasLeftOut) {
  int cases = 0;
  for (const auto& [name, make] : files()) {
    readProperties(make());
    const Value* leftOut = properties.find(kKvImagePropertyMetadataLeftOut);
    if (!leftOut || !blocks) continue;
    ++cases;
    const auto destination = CGImageDestination::createInMemory(*source->type(), 1);
    destination->addImage(quarters(1, 1), properties, blocks);
    ASSERT_TRUE(destination->finalize()) << name;
    const auto again = CGImageSource::createWithData(*destination->data());
    const auto kept = again->metadataBlocksAtIndex(0);
    ASSERT_TRUE(kept) << name;
    EXPECT_EQ(kept->xmp, blocks->xmp) << name;
    EXPECT_EQ(kept->imageResources, blocks->imageResources) << name;
    // What is there again is left out again. A block above a megabyte is laid out anew, without
    // values that share bytes.
    const Dictionary read = again->propertiesAtIndex(0).value();
    const Value* leftOutAgain = read.find(kKvImagePropertyMetadataLeftOut);
    if (!blocks->exif.empty() && blocks->exif.size() <= mebibyte) {
      EXPECT_TRUE(leftOutAgain && *leftOutAgain == *leftOut) << name;
    }
  }
  EXPECT_GE(cases, 8);
}

}  // namespace
}  // namespace FrameworkUtility
