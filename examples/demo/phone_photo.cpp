#include <examples/demo/phone_photo.h>

#include <examples/demo/exif_builder.h>
#include <examples/demo/scene.h>
#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

using namespace FrameworkUtility;
using namespace std::string_literals;

namespace demo {
namespace {

constexpr std::size_t width = 4032, height = 3024;
constexpr std::uint32_t sceneSeed = 7;
constexpr std::string_view camera = "Velmar 9";
constexpr std::string_view taken = "2024:05:06 20:41:07";

// Nothing here depends on input, so a failure is a fault of the program.
template <class T>
T need(std::optional<T> value, std::string_view what) {
  if (!value) {
    std::cerr << "demo: no " << what << '\n';
    std::exit(EXIT_FAILURE);
  }
  return *std::move(value);
}

CGImage sceneImage() {
  const CGImageLayout layout{.width = width,
                             .height = height,
                             .bytesPerRow = width * 4,
                             .alphaInfo = CGImageAlphaInfo::noneSkipLast};
  const auto space = need(CGColorSpace::createWithName(kCGColorSpaceDisplayP3), "colour space");
  return need(CGImage::create(layout, space, Data(renderScene(width, height, sceneSeed))), "image");
}

Data encoded(const CGImage& image, double quality) {
  const auto destination = CGImageDestination::createInMemory(UTTypeJPEG.identifier(), 1);
  if (!destination) return need(std::optional<Data>(), "JPEG encoder");
  destination->addImage(image, {{kCGImageDestinationLossyCompressionQuality, quality}});
  if (!destination->finalize()) return need(std::optional<Data>(), "encoded image");
  return need(destination->data(), "encoded bytes");
}

Bytes thumbnailOf(const Data& jpeg) {
  const auto source = need(CGImageSource::createWithData(jpeg), "image source");
  const CGImageSourceThumbnailOptions options{.createThumbnailFromImageAlways = true,
                                              .thumbnailMaxPixelSize = 160};
  const Data data = encoded(need(source.thumbnailAtIndex(0, options), "thumbnail"), 0.6);
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

// How long the phone had been running, as a binary property list: objects, where each begins, and
// a trailer with the counts.
Bytes runTime() {
  const auto shortText = [](std::string_view text) {
    return Bytes(1, static_cast<char>(0x50 + text.size())) + Bytes(text);
  };
  const std::vector<Bytes> objects = {
      "\xD4\1\2\3\4\5\6\7\10"s,  // a dictionary: objects 1 to 4 are its keys, 5 to 8 its values
      shortText("flags"),
      shortText("value"),
      shortText("timescale"),
      shortText("epoch"),
      "\x10\1"s,
      "\x13"s + bigEndian(97'200'123'456'789, 8),
      "\x12"s + bigEndian(1'000'000'000, 4),
      "\x10\0"s,
  };
  Bytes list = "bplist00", offsets;
  for (const Bytes& object : objects) {
    offsets += bigEndian(list.size(), 1);
    list += object;
  }
  const std::size_t offsetsBegin = list.size();
  return list + offsets + Bytes(6, '\0') + Bytes{1, 1} + bigEndian(objects.size(), 8) +
         bigEndian(0, 8) + bigEndian(offsetsBegin, 8);
}

// Offsets count from the start of the note.
Bytes makerNote() {
  const Bytes header = "Apple iOS\0\0\1MM"s;
  const std::vector<Field> fields = {
      signedNumber(1, 14),  // version
      undefined(3, runTime()),
      signedNumber(4, 1),                                             // exposure stable
      signedNumber(5, 172),                                           // exposure target
      signedNumber(6, 167),                                           // exposure average
      signedNumber(7, 1),                                             // focus stable
      signedRationals(8, {{-13, 1024}, {-1003, 1024}, {217, 1024}}),  // acceleration
      signedRationals(12, {{87, 256}, {112, 256}}),                   // focus distances
      text(17, "5B1E6C1E-3A44-4D0B-9C1F-7A54C0A1D2E3"),               // content identifier
      signedNumber(20, 12),                                           // capture type
      signedNumber(31, 0),
      text(43, "0D9A5B52-6A0E-4F7C-8E35-1B2C3D4E5F60"),  // photo identifier
      signedNumber(45, 3911),                            // colour temperature
      signedNumber(46, 1),                               // camera type
      undefined(231, "\x56\x4C\x01private\xFF"s),        // no reader's business
  };
  return header + directory(fields, static_cast<std::uint32_t>(header.size()));
}

std::vector<Field> exposureFields() {
  return {
      rationals(0x829A, {{1, 120}}),
      rationals(0x829D, {{9, 5}}),
      shorts(0x8822, {2}),   // normal program
      shorts(0x8827, {64}),  // ISO
      undefined(0x9000, "0232"),
      text(0x9003, taken),
      text(0x9004, taken),
      text(0x9010, "+02:00"),
      text(0x9011, "+02:00"),
      text(0x9012, "+02:00"),
      undefined(0x9101, "\1\2\3\0"s),
      signedRationals(0x9201, {{52305, 7573}}),  // shutter speed
      rationals(0x9202, {{54823, 32325}}),       // aperture
      signedRationals(0x9203, {{21641, 4613}}),  // brightness
      signedRationals(0x9204, {{0, 1}}),
      shorts(0x9207, {5}),   // metering: pattern
      shorts(0x9209, {16}),  // flash: off
      rationals(0x920A, {{251773, 37217}}),
      shorts(0x9214, {2013, 1511, 2217, 1330}),
      undefined(0x927C, makerNote()),
      text(0x9291, "482"),
      text(0x9292, "482"),
      undefined(0xA000, "0100"),
      shorts(0xA001, {65535}),  // neither sRGB nor Adobe RGB
      number(0xA002, width),
      number(0xA003, height),
      shorts(0xA217, {2}),
      undefined(0xA301, "\1"s),
      shorts(0xA402, {0}),
      shorts(0xA403, {0}),
      shorts(0xA405, {26}),
      shorts(0xA406, {0}),
      rationals(0xA432, {{807365, 524263}, {9, 1}, {9, 5}, {14, 5}}),
      text(0xA433, "Velmar"),
      text(0xA434, "Velmar 9 back triple camera 6.765mm f/1.8"),
      shorts(0xA460, {2}),
  };
}

std::vector<Field> positionFields() {
  return {
      bytes(0, {2, 3, 0, 0}),
      text(1, "N"),
      rationals(2, {{47, 1}, {33, 1}, {2988, 100}}),
      text(3, "E"),
      rationals(4, {{12, 1}, {58, 1}, {5880, 100}}),
      bytes(5, {0}),
      rationals(6, {{217083, 360}}),
      rationals(7, {{18, 1}, {41, 1}, {7, 1}}),
      text(12, "K"),
      rationals(13, {{0, 1}}),
      text(16, "T"),
      rationals(17, {{108214, 497}}),
      text(23, "T"),
      rationals(24, {{108214, 497}}),
      text(29, "2024:05:06"),
      rationals(31, {{47, 10}}),
  };
}

// The fields of IFD0, which point to the directories that follow.
std::vector<Field> photoFields(std::uint32_t exposure, std::uint32_t position) {
  return {
      text(0x010F, "Velmar"),        text(0x0110, camera),         shorts(0x0112, {1}),  // upright
      rationals(0x011A, {{72, 1}}),  rationals(0x011B, {{72, 1}}), shorts(0x0128, {2}),  // per inch
      text(0x0131, "Velmar OS 4.2"), text(0x0132, taken),          text(0x013C, camera),
      shorts(0x0213, {1}),           number(0x8769, exposure),     number(0x8825, position),
  };
}

std::vector<Field> thumbnailFields(std::uint32_t offset, std::size_t size) {
  return {
      shorts(0x0103, {6}),          rationals(0x011A, {{72, 1}}),
      rationals(0x011B, {{72, 1}}), shorts(0x0128, {2}),
      number(0x0201, offset),       number(0x0202, static_cast<std::uint32_t>(size)),
      shorts(0x0213, {1}),
  };
}

// Four directories in a row, then the thumbnail. Their sizes do not depend on the offsets in them.
Bytes exifBlock(const Bytes& thumbnail) {
  constexpr std::uint32_t photo = 8;
  const auto after = [](std::uint32_t offset, const Bytes& bytes) {
    return static_cast<std::uint32_t>(offset + bytes.size());
  };
  const std::uint32_t exposure = after(photo, directory(photoFields(0, 0), photo));
  const Bytes exposureBytes = directory(exposureFields(), exposure);
  const std::uint32_t position = after(exposure, exposureBytes);
  const Bytes positionBytes = directory(positionFields(), position);
  const std::uint32_t second = after(position, positionBytes);
  const std::uint32_t picture = after(second, directory(thumbnailFields(0, 0), second));
  return "MM\0*"s + bigEndian(photo, 4) +
         directory(photoFields(exposure, position), photo, second) + exposureBytes + positionBytes +
         directory(thumbnailFields(picture, thumbnail.size()), second) + thumbnail;
}

constexpr std::string_view xmpPacket = R"(<?xpacket begin=")"
                                       "\xEF\xBB\xBF"
                                       R"(" id="W5M0MpCehiHzreSzNTczkc9d"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/" x:xmptk="Velmar OS 4.2">
   <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
      <rdf:Description rdf:about=""
            xmlns:xmp="http://ns.adobe.com/xap/1.0/"
            xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/"
            xmlns:camera="http://ns.velmar.example/camera/1.0/">
         <xmp:CreateDate>2024-05-06T20:41:07+02:00</xmp:CreateDate>
         <xmp:CreatorTool>Velmar OS 4.2</xmp:CreatorTool>
         <xmp:ModifyDate>2024-05-06T20:41:07+02:00</xmp:ModifyDate>
         <photoshop:DateCreated>2024-05-06T20:41:07+02:00</photoshop:DateCreated>
         <camera:Scene>lake at dusk</camera:Scene>
      </rdf:Description>
   </rdf:RDF>
</x:xmpmeta>
<?xpacket end="w"?>)";

constexpr char startOfImage = '\xD8', application0 = '\xE0', application1 = '\xE1';

Bytes segment(char marker, const Bytes& contents) {
  return Bytes{'\xFF', marker} + bigEndian(contents.size() + 2, 2) + contents;
}

// The segments of an encoded file from the first that a camera keeps: not JFIF, nor metadata.
std::span<const std::byte> picturePart(const Data& jpeg) {
  std::span<const std::byte> rest(jpeg.data() + 2, jpeg.size() - 2);
  const auto marker = [&] { return static_cast<char>(rest[1]); };
  while (marker() == application0 || marker() == application1) {
    rest = rest.subspan(
        2 + (std::to_integer<std::size_t>(rest[2]) << 8 | std::to_integer<std::size_t>(rest[3])));
  }
  return rest;
}

}  // namespace

std::vector<std::byte> makePhonePhoto() {
  const Data jpeg = encoded(sceneImage(), 0.9);
  Bytes beginning{'\xFF', startOfImage};
  beginning += segment(application1, "Exif\0\0"s + exifBlock(thumbnailOf(jpeg)));
  beginning += segment(application1, "http://ns.adobe.com/xap/1.0/\0"s + Bytes(xmpPacket));
  const std::span<const std::byte> picture = picturePart(jpeg);
  const auto beginningBytes = std::as_bytes(std::span(beginning));
  std::vector<std::byte> file(beginningBytes.begin(), beginningBytes.end());
  file.insert(file.end(), picture.begin(), picture.end());
  return file;
}

}  // namespace demo
