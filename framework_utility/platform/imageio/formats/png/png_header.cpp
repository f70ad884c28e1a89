#include <framework_utility/platform/imageio/formats/png/png_header.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/formats/dots_per_inch.h>
#include <framework_utility/platform/imageio/formats/png/png_chunks.h>
#include <framework_utility/platform/imageio/formats/png/png_text.h>
#include <framework_utility/platform/imageio/metadata/values/metadata_budget.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <new>
#include <string>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

/// Enough for 800 megabytes of pixels in pieces of 8 kB, and no more steps than a hostile file of
/// empty chunks is worth.
constexpr int maximumChunks = 100'000;
/// Of one chunk of metadata, and of all of them.
constexpr std::size_t maximumMetadata = std::size_t{32} << 20;

constexpr std::string_view exifPrefix{"Exif\0\0", 6};
constexpr std::string_view xmpPrefix{"http://ns.adobe.com/xap/1.0/\0", 29};
/// The head of the image resource that holds an IPTC record, up to its length.
constexpr std::string_view iptcResource{"8BIM\x04\x04\0\0", 8};

bool beginsWith(const Data& data, std::string_view prefix) {
  return asText(data).starts_with(prefix);
}

Data withoutPrefix(const Data& data, std::string_view prefix) {
  return beginsWith(data, prefix) ? suffix(data, prefix.size()) : data;
}

/// A bare IPTC record in the image resource where it belongs.
Data asImageResources(const Data& data) {
  if (!beginsWith(data, "\x1C")) return data;
  ByteWriter bytes;
  bytes.reserve(iptcResource.size() + 4 + data.size() + 1);
  bytes.put(iptcResource).putNumber(data.size(), 4).put(data).putNumber(0, data.size() % 2);
  return Data(bytes.takeBytes());
}

/// What may stay beside other pixels: the standard's mark of a type that is safe to copy. Not an
/// orientation, and no EXIF of another kind, which would contradict what is written.
bool isKept(std::uint32_t type) {
  constexpr std::uint32_t safeToCopy = 0x20;
  constexpr std::uint32_t ancillary = 0x2000'0000;
  return (type & safeToCopy) != 0 && (type & ancillary) != 0 && type != pngType("orNT") &&
         type != pngType("zxIf");
}

class HeaderReader {
 public:
  explicit HeaderReader(const ByteSource& source) : chunks_(source) {}

  ImageHeader read() {
    header_.status = CGImageSourceStatus::incomplete;
    for (int count = 0; count < maximumChunks; ++count) {
      const std::optional<PngChunk> chunk = chunks_.next();
      if (!chunk) {
        if (chunks_.isBroken() && !hasPixels_) return invalid();
        break;
      }
      if ((count == 0) != (chunk->type == pngType("IHDR"))) return invalid();
      if (chunk->type == pngType("IEND")) {
        if (!hasPixels_) return invalid();
        break;
      }
      if (chunk->type == pngType("IDAT")) {
        if (isIndexed() && !hasPalette_) return invalid();
        hasPixels_ = true;
      } else if (!take(*chunk)) {
        break;
      }
      if (isInvalid_) return invalid();
    }
    if (hasPixels_) complete();
    return std::move(header_);
  }

 private:
  /// False where the file ends.
  bool take(const PngChunk& chunk) {
    switch (chunk.type) {
      case pngType("IHDR"):
      case pngType("PLTE"):
      case pngType("tRNS"):
      case pngType("gAMA"):
      case pngType("cHRM"):
      case pngType("sRGB"):
      case pngType("pHYs"):
      case pngType("iCCP"):
      case pngType("tEXt"):
      case pngType("zTXt"):
      case pngType("iTXt"):
      case pngType("tIME"):
      case pngType("eXIf"):
        break;
      default:
        if (!isKept(chunk.type)) return true;
    }
    if (!chunks_.holds(chunk)) return false;
    if (chunk.length > metadataLeft_) {
      texts_.leaveOut(kCGImagePropertyPNGDictionary);
      return true;
    }
    metadataLeft_ -= chunk.length;
    const std::optional<Data> data = chunks_.data(chunk);
    if (data) {
      takeData(chunk.type, *data);
    } else if (chunk.type == pngType("IHDR")) {
      isInvalid_ = true;
    }
    return true;
  }

  void takeData(std::uint32_t type, const Data& data) {
    const ByteReader bytes(data);
    switch (type) {
      case pngType("IHDR"):
        return takeHeader(bytes);
      case pngType("PLTE"):
        hasPalette_ = true;
        return;
      case pngType("tRNS"):
        header_.hasAlpha = true;
        return;
      case pngType("gAMA"):
        if (data.size() == 4) set(kCGImagePropertyPNGGamma, bytes.at<std::uint32_t>(0) / 100000.0);
        return;
      case pngType("cHRM"):
        return takeChromaticities(bytes);
      case pngType("sRGB"):
        if (data.size() == 1) set(kCGImagePropertyPNGsRGBIntent, int{bytes.at<std::uint8_t>(0)});
        return;
      case pngType("pHYs"):
        return takeResolution(data);
      case pngType("iCCP"):
        if (header_.iccProfile.empty()) {
          header_.iccProfile = pngProfile(data, budget_).value_or(Data());
          tellInflation();
        }
        return;
      case pngType("tIME"):
        return takeTime(bytes);
      case pngType("eXIf"):
        if (header_.blocks.exif.empty()) header_.blocks.exif = withoutPrefix(data, exifPrefix);
        return;
      case pngType("tEXt"):
      case pngType("zTXt"):
      case pngType("iTXt"):
        return takeText(type, data);
      default:
        return keep(type, data);
    }
  }

  void keep(std::uint32_t type, const Data& data) {
    header_.blocks.formatParts.push_back({type, data});
  }

  void takeHeader(ByteReader bytes) {
    const bool isWhole = bytes.size() == 13;
    const auto width = bytes.take<std::uint32_t>();
    const auto height = bytes.take<std::uint32_t>();
    const unsigned depth = bytes.take<std::uint8_t>();
    colorType_ = bytes.take<std::uint8_t>();
    const unsigned methods = bytes.take<std::uint16_t>();  // of compression and of filtering
    const unsigned interlacing = bytes.take<std::uint8_t>();
    // The standard's table of bit depths: a bit for each depth.
    const unsigned depths = colorType_ == 0   ? 1 | 2 | 4 | 8 | 16
                            : colorType_ == 3 ? 1 | 2 | 4 | 8
                            : colorType_ == 2 || colorType_ == 4 || colorType_ == 6 ? 8 | 16
                                                                                    : 0;
    isInvalid_ = !isWhole || width == 0 || height == 0 || width > 0x7FFFFFFF ||
                 height > 0x7FFFFFFF || (depth & (depth - 1)) != 0 || (depth & depths) == 0 ||
                 methods != 0 || interlacing > 1;
    header_.size = {width, height};
    header_.bitsPerComponent = isIndexed() ? 8 : depth;  // a palette's entries have 8
    header_.isIndexed = isIndexed();
    header_.hasAlpha = colorType_ == 4 || colorType_ == 6;
    header_.model =
        colorType_ == 0 || colorType_ == 4 ? CGColorSpaceModel::monochrome : CGColorSpaceModel::rgb;
    set(kCGImagePropertyPNGInterlaceType, static_cast<int>(interlacing));
  }

  void takeChromaticities(ByteReader bytes) {
    if (bytes.size() != 32) return;
    Array values;
    while (bytes.size() > 0) values.emplace_back(bytes.take<std::uint32_t>() / 100000.0);
    set(kCGImagePropertyPNGChromaticities, Value(std::move(values)));
  }

  void takeResolution(const Data& data) {
    if (data.size() != 9) return;
    ByteReader bytes(data);
    const auto x = bytes.take<std::uint32_t>();
    const auto y = bytes.take<std::uint32_t>();
    const auto unit = bytes.take<std::uint8_t>();
    // A unit of 0 says only how wide pixels are for their height.
    if (unit == 0) keep(pngType("pHYs"), data);
    if (unit != 1 || x == 0 || y == 0) return;
    set(kCGImagePropertyPNGXPixelsPerMeter, x);
    set(kCGImagePropertyPNGYPixelsPerMeter, y);
    header_.formatProperties.set(kCGImagePropertyDPIWidth, dotsPerInch(x));
    header_.formatProperties.set(kCGImagePropertyDPIHeight, dotsPerInch(y));
  }

  void takeTime(ByteReader bytes) {
    if (bytes.size() != 7) return;
    const unsigned year = bytes.take<std::uint16_t>();
    std::array<unsigned, 5> rest;
    for (unsigned& number : rest) number = bytes.take<std::uint8_t>();
    char text[32];
    std::snprintf(text, sizeof text, "%04u:%02u:%02u %02u:%02u:%02u", year, rest[0], rest[1],
                  rest[2], rest[3], rest[4]);
    set(kCGImagePropertyPNGModificationTime, text);
  }

  void takeText(std::uint32_t type, const Data& data) {
    const std::string_view keyword = pngKeyword(data);
    const bool isProperty =
        std::find(pngTextKeywords.begin(), pngTextKeywords.end(), keyword) != pngTextKeywords.end();
    const bool isRaw = keyword.starts_with("Raw profile type ");
    if (!isRaw && keyword != pngXmpKeyword) keep(type, data);
    if (!isProperty && !isRaw && keyword != pngXmpKeyword) return;
    if (isProperty && png_.find(keyword)) return;
    const std::optional<PngText> text = pngText(type, data, budget_);
    tellInflation();
    if (!text) return;
    if (isProperty) {
      if (text->isWithin(texts_)) {
        set(keyword, text->utf8());
      } else {
        texts_.leaveOut(kCGImagePropertyPNGDictionary);
      }
    } else if (isRaw) {
      auto bytes = bytesOfRawProfile(asText(text->bytes));
      if (bytes) takeRawProfile(keyword, Data(*std::move(bytes)));
    } else if (header_.blocks.xmp.empty()) {
      header_.blocks.xmp = asUtf8(*text);
    }
  }

  /// It stands in an iTXt chunk, which is UTF-8; some writers choose another.
  static Data asUtf8(const PngText& text) {
    const auto isAscii = [](std::byte byte) { return (byte & std::byte{0x80}) == std::byte{0}; };
    if (!text.isLatin1 || std::all_of(text.bytes.begin(), text.bytes.end(), isAscii)) {
      return text.bytes;
    }
    const std::string utf8 = text.utf8();
    return Data(std::as_bytes(std::span(utf8)));
  }

  void tellInflation() {
    if (budget_.isExceeded) texts_.leaveOut(kCGImagePropertyPNGDictionary);
  }

  void takeRawProfile(std::string_view keyword, const Data& bytes) {
    const std::string_view name = keyword.substr(std::string_view("Raw profile type ").size());
    // "APP1" is a whole segment of a JPEG, whatever it holds.
    if (name == "xmp" || (name == "APP1" && beginsWith(bytes, xmpPrefix))) {
      if (raw_.xmp.empty()) raw_.xmp = withoutPrefix(bytes, xmpPrefix);
    } else if (name == "exif" || name == "APP1") {
      if (raw_.exif.empty()) raw_.exif = withoutPrefix(bytes, exifPrefix);
    } else if (name == "iptc" || name == "8bim") {
      if (raw_.imageResources.empty()) raw_.imageResources = asImageResources(bytes);
    }
  }

  void complete() {
    header_.status = CGImageSourceStatus::complete;
    if (header_.blocks.exif.empty()) header_.blocks.exif = raw_.exif;
    if (header_.blocks.xmp.empty()) header_.blocks.xmp = raw_.xmp;
    header_.blocks.imageResources = raw_.imageResources;
    header_.blocks.format = UTTypePNG.identifier();
    header_.formatProperties.set(kCGImagePropertyPNGDictionary, std::move(png_));
    texts_.tell(header_.formatProperties);
  }

  ImageHeader invalid() {
    ImageHeader header;
    header.status = CGImageSourceStatus::invalidData;
    return header;
  }

  bool isIndexed() const { return colorType_ == 3; }

  void set(std::string_view key, Value value) {
    if (!png_.find(key)) png_.set(key, std::move(value));
  }

  PngChunks chunks_;
  ImageHeader header_;
  Dictionary png_;
  MetadataBlocks raw_;  // of "Raw profile type" texts
  InflationBudget budget_;
  MetadataBudget texts_;
  std::size_t metadataLeft_ = maximumMetadata;
  unsigned colorType_ = 0;
  bool hasPalette_ = false;
  bool hasPixels_ = false;
  bool isInvalid_ = false;
};

}  // namespace

ImageHeader readPngHeader(const ByteSource& source) {
  try {
    if (!hasPngSignature(source.bytes(0, 8))) return {};
    return HeaderReader(source).read();
  } catch (const std::bad_alloc&) {
    ImageHeader header;
    header.status = CGImageSourceStatus::invalidData;
    return header;
  }
}

}  // namespace FrameworkUtility::detail
